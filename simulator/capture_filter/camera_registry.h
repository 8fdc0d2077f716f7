// The virtual video cameras as the system's registry knows them. Registering needs the rights of an
// administrator.
#pragma once

#include <windows.h>

#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace qvx::simulator {

// {957935F7-A643-4C53-8BA7-F561BB42D7B5}
inline constexpr CLSID captureFilterClass = {
    0x957935F7, 0xA643, 0x4C53, {0x8B, 0xA7, 0xF5, 0x61, 0xBB, 0x42, 0xD7, 0xB5}};

// The value by which a filter learns from its property bag which instance it is for.
inline constexpr wchar_t instanceValueName[] = L"VirtualInstance";

struct RegisteredCamera {
  std::wstring instance;       // its key: "usb#vid_3c7e&pid_0970&mi_00#...", unique
  std::string text;            // what it is, as bridgeSpecFrom takes it
  std::uint64_t registration;  // another one each time it is registered
};

enum class Naming {
  system,      // the system's own enumerator makes up the names: "@device:sw:{...}\usb#..."
  devicePath,  // our enumerator takes its place and names the cameras as Windows names real ones:
               // "@device:pnp:\\?\usb#...\global", in the order of their registration
};

// Registers the cameras in place of those that were, with the filter's DLL at that path. False, and
// what is wrong, when a text is no camera or the registry refused.
bool registerCameras(std::span<const std::string> texts, Naming naming,
                     const std::wstring& filterDll, std::string& problem);
void unregisterCameras();

// The filter's DLL where it is built: in the folder of the running program.
std::wstring filterBesideProgram();

// In the order of their registration.
std::vector<RegisteredCamera> registeredCameras();

std::optional<RegisteredCamera> registeredCamera(const std::wstring& instance);

// Adds options to a camera's text: clients that run see its new zoom, button and fault at once.
bool changeCamera(const RegisteredCamera& camera, std::string_view options, std::string& problem);

// The part of the display name that stands for the device.
std::wstring devicePathOf(const RegisteredCamera& camera);

}  // namespace qvx::simulator
