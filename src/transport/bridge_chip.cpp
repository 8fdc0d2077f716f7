#include "transport/bridge_chip.h"

#include "base/bytes.h"
#include "etlib2/etLib2.h"

namespace qvx {

namespace {

enum Command : std::uint8_t { parameterRead = 29, parameterWrite = 30, bodyControl = 0xF0 };

// Byte 0 of body control: a SegmentFunction, or one of these.
enum ButtonCode : std::uint8_t { otherButtonAnswer = 0xF4, buttonQuery = 0xF5 };

// A command's data. All of it goes out, and comes back from a read.
constexpr std::uint8_t blockSize = 32;
using Block = std::array<std::uint8_t, blockSize>;

void read(int deviceNumber, Command command, Block& block) {
  etLib2_Custom_CMD_Read(static_cast<std::uint32_t>(deviceNumber), command, blockSize,
                         block.data());
}

void write(int deviceNumber, Command command, const Block& block) {
  etLib2_Custom_CMD_Write(static_cast<std::uint32_t>(deviceNumber), command, blockSize,
                          block.data());
}

// The parameter's number, its size of one byte, its value.
Block parameterBlock(ExposureParameter parameter, std::uint8_t value = 0) {
  return {0, 0, static_cast<std::uint8_t>(parameter), 1, value};
}

}  // namespace

std::uint32_t readBridge(int deviceNumber, const BridgeRegister& reg) {
  std::uint32_t value = 0;
  etLib2_RegRead_DevNum(static_cast<std::uint32_t>(deviceNumber), reg.address, reg.bytes, &value);
  return value;
}

void writeBridge(int deviceNumber, const BridgeRegister& reg, std::uint32_t value) {
  etLib2_RegWrite_DevNum(static_cast<std::uint32_t>(deviceNumber), reg.address, reg.bytes, &value);
}

void sendSegmentCommand(int deviceNumber, SegmentFunction function) {
  write(deviceNumber, bodyControl, {static_cast<std::uint8_t>(function), 1});
}

bool saysSegmentMode(int deviceNumber) {
  Block block{};
  // The second question goes out with the first answer still in the block, which the firmware
  // expects.
  const auto isOn = [&](SegmentFunction function) {
    block[0] = static_cast<std::uint8_t>(function);
    read(deviceNumber, bodyControl, block);
    return block[2] == 1 || block[1] == 1;
  };
  const bool ringOn = isOn(SegmentFunction::ring);
  const bool powerOn = isOn(SegmentFunction::power);
  return ringOn && powerOn;
}

bool takeButtonPress(int deviceNumber) {
  Block block = {buttonQuery};
  read(deviceNumber, bodyControl, block);
  const bool pressed = (block[0] == otherButtonAnswer || block[0] == buttonQuery) && block[2] == 1;
  if (!pressed) return false;
  block[0] = buttonQuery;
  write(deviceNumber, bodyControl, block);
  return true;
}

void writeParameter(int deviceNumber, ExposureParameter parameter, std::int32_t value) {
  write(deviceNumber, parameterWrite, parameterBlock(parameter, lowByte(value)));
}

std::uint8_t readParameter(int deviceNumber, ExposureParameter parameter) {
  Block block = parameterBlock(parameter);
  read(deviceNumber, parameterRead, block);
  return block[0];
}

}  // namespace qvx
