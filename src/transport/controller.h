// Registers of the camera's microcontroller (I2C address 0x62), over whichever transport the camera
// has. A register is one byte with a one-byte address.
#pragma once

#include <cstdint>

namespace qvx {

constexpr std::uint8_t controllerAddress = 0x62;

// The camera's bus behind the bridge that carries the controller and the sensors.
constexpr std::uint8_t cameraBus = 2;

// The register's byte. A failed read gives 0, or 255 on USB 3.
std::uint32_t ReadFromPIC(int deviceNumber, std::uint32_t reg);

// The same from the Wi-Fi camera, whichever device is current.
std::uint32_t ReadPIC(std::uint32_t reg);

// Writes any controller register, not only those of the segmented light it is named after. Returns
// 0 for Wi-Fi; the error of the last failed open for USB 3; else 1, or 0 when the bridge refused.
// A model that has no controller to write to gets nothing and the answer 1.
int WriteToSEG(int deviceNumber, std::uint32_t reg, std::uint32_t value);

}  // namespace qvx
