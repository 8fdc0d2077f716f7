// The etLib2 call layer: the only door to cameras built on a USB video bridge chip. Every access
// runs on a short-lived worker thread and costs the caller at most a fixed time: a camera that
// stops answering can be slow, but never hangs the application.
//
// Any thread may call. Functions that return a status return 0, or 0x80004005 for any failure:
// library not open, no such device, a length beyond its field, a null pointer, a worker that could
// not start or was late, a mutex held elsewhere, a transfer that the device refused. A worker that
// is late finishes its access, but never writes into the caller's memory any more.
#pragma once

#include <cstdint>

namespace qvx {

// Opens the bridge cameras: those with an extension unit, or else those with a HID interface.
// Closes what was open. Returns nonzero when at least one camera was found.
int etLib2_Init();

// Closes what is open.
void etLib2_Release();

// Number of cameras, 0 when closed.
int etLib2_GetDevTotalNum();

// Puts the chip's I2C bus switch on bus 1 or (any other value) bus 2 and sets the speed of the I2C
// transfers that follow, of every device. Chips of generation 2 have no switch: nothing changes.
// Takes at most 1.5 s.
void etLib2_SelectI2cBus_DevNum(std::uint32_t DevNum, std::uint8_t bus, std::uint32_t fast);

// Bridge registers: low 16 bits of the address, 1 to 4 bytes, little-endian. A failed read leaves
// the value as it was. At most 500 ms.
std::uint32_t etLib2_RegRead_DevNum(std::uint32_t DevNum, std::uint32_t address,
                                    std::uint32_t length, std::uint32_t* value);
std::uint32_t etLib2_RegWrite_DevNum(std::uint32_t DevNum, std::uint32_t address,
                                     std::uint32_t length, const std::uint32_t* value);

// I2C transfers behind the bridge: slave address in 8-bit form, at most 64 sub-address bytes and 64
// data bytes. A failed read leaves the data as it was. On generation 0 chips an access to the
// EEPROM (slave 0xA0) swaps the first two bytes of the caller's sub-address. At most 500 ms.
std::uint32_t etLib2_I2cRead_DevNum(std::uint32_t DevNum, std::uint32_t slave,
                                    std::uint32_t subAddressLength, std::uint8_t* subAddress,
                                    std::uint32_t dataLength, std::uint8_t* data);
std::uint32_t etLib2_I2cWrite_DevNum(std::uint32_t DevNum, std::uint32_t slave,
                                     std::uint32_t subAddressLength, std::uint8_t* subAddress,
                                     std::uint32_t dataLength, const std::uint8_t* data);

// Custom commands of the camera's firmware: a code and 32 data bytes, of which the first `length`
// (32 for anything longer) come from the buffer and the rest are 0. A read needs a buffer of 32
// bytes and fills all of them, whatever the status, unless it is late. At most 1 s.
std::uint32_t etLib2_Custom_CMD_Read(std::uint32_t DevNum, std::uint8_t command,
                                     std::uint8_t length, std::uint8_t* buffer);
std::uint32_t etLib2_Custom_CMD_Write(std::uint32_t DevNum, std::uint8_t command,
                                      std::uint8_t length, const std::uint8_t* buffer);

}  // namespace qvx
