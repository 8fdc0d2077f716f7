// Registers of the image sensor, on the same bus as the controller. A register is one byte; which
// of three arrangements a camera has depends on its family:
//
//   address 0x78, two-byte registers   7xxx and 73xxx families
//   address 0x48, two-byte registers   4xxx families
//   address 0x42, one-byte registers   3xxx families
//
// Device number 90 is the Wi-Fi camera. Unless said otherwise the family is that of `nPid`. A read
// that fails gives 0, or 255 on USB 3; nothing shows whether a write arrived.
#pragma once

#include <cstdint>

namespace qvx {

// The sensor at 0x78. From the Wi-Fi camera the sensor of its family is read, but 0x78 is written.
std::uint32_t ReadFrom90x(int deviceNumber, std::uint32_t reg);

// Returns whether the last open of a USB 3 camera failed, when that is where it writes.
bool WriteTo90x(int deviceNumber, std::uint32_t reg, std::uint32_t value);

// The sensor at 0x42 or 0x48, whichever the family has; any other family reads as 0 and takes no
// write. Both set `nPid` and `nTmpIdx` for the device. The write returns 0.
std::uint32_t ReadFrom88x(int deviceNumber, std::uint32_t reg);
int WriteTo88x(int deviceNumber, std::uint32_t reg, std::uint32_t value);

// The sensor at 0x34, which 4xx7 cameras have behind their bridge, on whichever bus was selected
// last.
void writeSensor34(int deviceNumber, std::uint32_t reg, int value);
int readSensor34(int deviceNumber, std::uint32_t reg);

// The Wi-Fi camera's sensor, whichever it is and whichever device is current.
std::uint32_t ReadEmpia_Sensor(std::uint32_t reg);
void WriteEmpia_Sensor(std::uint32_t reg, std::uint32_t value);

}  // namespace qvx
