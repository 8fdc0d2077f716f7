// Plugging virtual HID devices into a Wine prefix. They are there while the process that plugged
// them in, or another ordinary one of the same prefix, is running.
#pragma once

#include <cstddef>
#include <optional>
#include <span>
#include <string>
#include <string_view>

#include "simulator/hid_bridge/device_settings.h"

namespace qvx::simulator {

// Plugs the devices in, in place of those that were, with the driver at that path, and waits until
// the system lists them all. False, and what is wrong, otherwise. The system orders them by path.
bool plugHidDevices(std::span<const std::string> texts, const std::wstring& driver,
                    std::string& problem);

// Waits until the system lists none of them.
void unplugHidDevices();

// The driver where it is built: in the folder of the running program.
std::wstring driverBesideProgram();

// The text of the device that was the n-th to be plugged in; nothing when there is none.
std::optional<std::string> hidDeviceText(std::size_t device);

// Adds options to a device's text: clients that run see its new zoom, button and fault at once.
bool changeHidDevice(std::size_t device, std::string_view options, std::string& problem);

// What the device is like after its last transfer; nothing before its first.
std::optional<HidDeviceState> hidDeviceState(std::size_t device);

}  // namespace qvx::simulator
