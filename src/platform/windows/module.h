// The module that this code is part of: the library, or a program that is linked with its parts.
#pragma once

#include <windows.h>

#include <string>

namespace qvx::platform {

HMODULE ownModule();

// Full path of a module; null is the application.
std::wstring pathOf(HMODULE module);

// Of the libusbK.dll that is loaded at need, empty when there is none.
std::wstring usbLibraryPath();

}  // namespace qvx::platform
