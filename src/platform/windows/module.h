// The module that this code is part of: the library, or a program that is linked with its parts.
#pragma once

#include <windows.h>

namespace qvx::platform {

HMODULE ownModule();

// The same with one more reference, so that it stays loaded. Null on failure.
HMODULE holdOwnModule();

}  // namespace qvx::platform
