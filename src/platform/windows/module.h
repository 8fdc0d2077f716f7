// The library's own module.
#pragma once

#include <windows.h>

namespace qvx::platform {

HMODULE ownModule();

}  // namespace qvx::platform
