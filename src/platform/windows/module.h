// The module that this code is part of: the library, or a program that is linked with its parts.
#pragma once

#include <windows.h>

namespace qvx::platform {

HMODULE ownModule();

}  // namespace qvx::platform
