// What the header promises of each export, whatever cameras and callers do.
#pragma once

#include <cstdint>
#include <string>

#include "tests/support/every_export.h"

namespace qvx::fuzz {

// Ends the process, as a sanitizer does, when a call broke its promise or took longer than it may.
void checkPromise(std::size_t place, const tests::Arguments& arguments, const std::string& result,
                  std::uint64_t took_ms);

[[noreturn]] void broken(const char* what, const std::string& how);

}  // namespace qvx::fuzz
