// The exports that `call` knows.
#pragma once

#include <span>
#include <string>
#include <vector>

#include "signature.h"

namespace qvxctl {

struct Export {
  std::string name;
  std::string usage;  // "FOVx <deviceIndex:int> <fMag:number> -> number"
  std::vector<Parameter> parameters;
  Call (*bind)(const std::vector<Parameter>& parameters, ArgumentWords& words);
};

// In the order of the library's header.
std::span<const Export> exportTable();

}  // namespace qvxctl
