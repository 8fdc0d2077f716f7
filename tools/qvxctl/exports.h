// The exports that `call` knows.
#pragma once

#include <span>
#include <string>
#include <vector>

#include "signature.h"

namespace qvxctl {

struct Export {
  std::string name;
  std::string results;  // "-> number", for help
  std::vector<Parameter> parameters;
  Call (*define)(const std::vector<Parameter>& parameters, CLI::App& command);
};

// In the order of the library's header.
std::span<const Export> exportTable();

}  // namespace qvxctl
