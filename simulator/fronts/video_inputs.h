// The virtual video cameras as the system's registry knows them.
#pragma once

#include <windows.h>

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace qvx::simulator {

// {957935F7-A643-4C53-8BA7-F561BB42D7B5}
inline constexpr CLSID captureFilterClass = {
    0x957935F7, 0xA643, 0x4C53, {0x8B, 0xA7, 0xF5, 0x61, 0xBB, 0x42, 0xD7, 0xB5}};

// Below the machine's part of the registry.
inline constexpr wchar_t videoInputs[] =
    L"Software\\Classes\\CLSID\\{860BB310-5D01-11D0-BD3B-00A0C911CE86}\\Instance\\";

// Values of a camera's key, beside pipeValueName.
inline constexpr wchar_t instanceValueName[] = L"SimulatorInstance";  // the key's own name
inline constexpr wchar_t friendlyNameValue[] = L"FriendlyName";
inline constexpr wchar_t orderValueName[] = L"SimulatorOrder";  // in which they are listed

struct VideoInput {
  std::wstring instance;  // "usb#vid_3c7e&pid_0970&mi_00#...", unique
  std::wstring name, pipe;
  std::uint64_t order;
};

// In their order; also those that nobody serves any longer.
std::vector<VideoInput> registeredInputs();
std::optional<VideoInput> registeredInput(const std::wstring& instance);

// The part of the display name that stands for the device.
std::wstring devicePathOf(const VideoInput& input);

}  // namespace qvx::simulator
