#include "etlib2/etLib2.h"

#include <algorithm>
#include <atomic>
#include <memory>
#include <mutex>
#include <optional>

#include "etlib2/access.h"
#include "platform/com.h"

namespace qvx {

namespace {

constexpr std::uint32_t workerLimit_ms = 500;
constexpr std::uint32_t workerLimitForCommands_ms = 1000;

// Never destroyed: when the process ends, COM and the cameras' drivers may be gone already.
struct OpenCameras {
  std::mutex guard;
  std::shared_ptr<Bridges> bridges;     // null = closed
  std::optional<platform::ComUse> com;  // what opening took; the opening thread's
};

OpenCameras& openCameras() {
  static auto& cameras = *new OpenCameras;
  return cameras;
}

std::shared_ptr<Bridges> currentBridges() {
  const std::lock_guard<std::mutex> lock(openCameras().guard);
  return openCameras().bridges;
}

void replaceBridges(std::shared_ptr<Bridges> bridges) {
  {
    const std::lock_guard<std::mutex> lock(openCameras().guard);
    openCameras().bridges.swap(bridges);
  }
  if (bridges == nullptr) return;
  // A late worker may still be using the camera's COM objects: their libraries must stay.
  if (bridges.use_count() > 1) openCameras().com->keep();
  bridges.reset();
  openCameras().com.reset();
}

std::shared_ptr<Bridges> open(BridgeInterface kind) {
  auto& com = openCameras().com;
  com.emplace();
  try {
    std::shared_ptr<Bridges> bridges = Bridges::open(kind);
    if (bridges == nullptr) com.reset();
    return bridges;
  } catch (...) {
    com.reset();
    throw;
  }
}

// Runs an access on a worker; nothing when the worker did not start or was late. The access must
// own everything it touches.
template <class Access>
std::optional<std::uint32_t> onWorker(std::uint32_t limit_ms, Access access) {
  return platform::runOnWorker(
      [access]() -> std::uint32_t {
        try {
          return access();
        } catch (...) {
          return statusFailed;
        }
      },
      limit_ms);
}

bool validRegister(std::uint8_t length) {
  return length <= sizeof(std::uint32_t);
}

bool validField(std::uint32_t length, const std::uint8_t* bytes) {
  return length <= i2cFieldSize && (length == 0 || bytes != nullptr);
}

std::shared_ptr<I2cBlock> makeI2cBlock(std::uint32_t slave, std::uint32_t subAddressLength,
                                       const std::uint8_t* subAddress, std::uint32_t dataLength) {
  auto block = std::make_shared<I2cBlock>();
  block->slave = static_cast<std::uint8_t>(slave);
  block->subAddressLength = static_cast<std::uint8_t>(subAddressLength);
  block->dataLength = static_cast<std::uint8_t>(dataLength);
  std::copy_n(subAddress, subAddressLength, block->subAddress.begin());
  speedTable.entries[0].slave.store(block->slave, std::memory_order_relaxed);
  speedTable.entries[0].speed.store(i2cSpeed.load(std::memory_order_relaxed),
                                    std::memory_order_relaxed);
  return block;
}

std::shared_ptr<CommandBlock> makeCommand(std::uint8_t code, std::uint8_t length,
                                          const std::uint8_t* buffer) {
  auto command = std::make_shared<CommandBlock>();
  command->code = code;
  std::copy_n(buffer, std::min<std::size_t>(length, commandDataSize), command->data.begin());
  return command;
}

// 0 when the chip does not answer in time.
std::uint8_t askChipGeneration(const std::shared_ptr<Bridges>& bridges, std::uint32_t DevNum) {
  auto generation = std::make_shared<std::uint8_t>();
  const auto status = onWorker(workerLimit_ms, [bridges, DevNum, generation] {
    return bridges->readChipGeneration(DevNum, *generation);
  });
  return status == statusOk ? *generation : std::uint8_t{0};
}

}  // namespace

int etLib2_Init() {
  replaceBridges(nullptr);
  std::shared_ptr<Bridges> bridges = open(BridgeInterface::extensionUnit);
  if (bridges == nullptr) bridges = open(BridgeInterface::hid);
  const bool found = bridges != nullptr;
  replaceBridges(std::move(bridges));
  return found ? 1 : 0;
}

void etLib2_Release() {
  replaceBridges(nullptr);
}

int etLib2_GetDevTotalNum() {
  const std::shared_ptr<Bridges> bridges = currentBridges();
  return bridges == nullptr ? 0 : bridges->deviceCount();
}

void etLib2_SelectI2cBus_DevNum(std::uint32_t DevNum, std::uint8_t bus, std::uint32_t fast) {
  const std::shared_ptr<Bridges> bridges = currentBridges();
  if (bridges == nullptr || askChipGeneration(bridges, DevNum) != 0) return;
  std::uint32_t select = 0;
  if (etLib2_RegRead_DevNum(DevNum, bridge_register::busSelect, 1, &select) != statusOk) return;
  select = bus == 1 ? select & ~busSelectBit : select | busSelectBit;
  if (etLib2_RegWrite_DevNum(DevNum, bridge_register::busSelect, 1, &select) != statusOk) return;
  i2cSpeed.store(fast != 0 ? fastSpeed : standardSpeed, std::memory_order_relaxed);
}

std::uint32_t etLib2_RegRead_DevNum(std::uint32_t DevNum, std::uint32_t address,
                                    std::uint32_t length, std::uint32_t* value) {
  const std::shared_ptr<Bridges> bridges = currentBridges();
  const auto bytes = static_cast<std::uint8_t>(length);
  if (bridges == nullptr || value == nullptr || !validRegister(bytes)) return statusFailed;
  auto transfer = std::make_shared<RegisterTransfer>();
  *transfer = {static_cast<std::uint16_t>(address), bytes, 0};
  const auto status = onWorker(workerLimit_ms, [bridges, DevNum, transfer] {
    return bridges->readRegister(DevNum, *transfer);
  });
  if (status == statusOk) *value = transfer->value;
  return status.value_or(statusFailed);
}

std::uint32_t etLib2_RegWrite_DevNum(std::uint32_t DevNum, std::uint32_t address,
                                     std::uint32_t length, const std::uint32_t* value) {
  const std::shared_ptr<Bridges> bridges = currentBridges();
  const auto bytes = static_cast<std::uint8_t>(length);
  if (bridges == nullptr || value == nullptr || !validRegister(bytes)) return statusFailed;
  const RegisterTransfer transfer{static_cast<std::uint16_t>(address), bytes, *value};
  return onWorker(workerLimit_ms,
                  [bridges, DevNum, transfer] { return bridges->writeRegister(DevNum, transfer); })
      .value_or(statusFailed);
}

namespace {

// The block of a finished I2C access; a null block means that the worker was late or never ran.
struct I2cResult {
  std::uint32_t status = statusFailed;
  std::shared_ptr<I2cBlock> block;
};

enum class Direction { read, write };

I2cResult transferI2c(Direction direction, std::uint32_t DevNum, std::uint32_t slave,
                      std::uint32_t subAddressLength, std::uint8_t* subAddress,
                      std::uint32_t dataLength, const std::uint8_t* written) {
  const std::shared_ptr<Bridges> bridges = currentBridges();
  if (bridges == nullptr || !validField(subAddressLength, subAddress)) return {};
  const auto block = makeI2cBlock(slave, subAddressLength, subAddress, dataLength);
  if (written != nullptr) std::copy_n(written, dataLength, block->data.begin());
  const auto status = onWorker(workerLimit_ms, [bridges, DevNum, block, direction] {
    return direction == Direction::read ? bridges->readI2c(DevNum, *block)
                                        : bridges->writeI2c(DevNum, *block);
  });
  if (!status) return {};
  // The caller sees the sub-address as it went out.
  std::copy_n(block->subAddress.begin(), subAddressLength, subAddress);
  return {*status, block};
}

}  // namespace

std::uint32_t etLib2_I2cRead_DevNum(std::uint32_t DevNum, std::uint32_t slave,
                                    std::uint32_t subAddressLength, std::uint8_t* subAddress,
                                    std::uint32_t dataLength, std::uint8_t* data) {
  if (!validField(dataLength, data)) return statusFailed;
  const I2cResult result = transferI2c(Direction::read, DevNum, slave, subAddressLength, subAddress,
                                       dataLength, nullptr);
  if (result.status == statusOk) std::copy_n(result.block->data.begin(), dataLength, data);
  return result.status;
}

std::uint32_t etLib2_I2cWrite_DevNum(std::uint32_t DevNum, std::uint32_t slave,
                                     std::uint32_t subAddressLength, std::uint8_t* subAddress,
                                     std::uint32_t dataLength, const std::uint8_t* data) {
  if (!validField(dataLength, data)) return statusFailed;
  return transferI2c(Direction::write, DevNum, slave, subAddressLength, subAddress, dataLength,
                     data)
      .status;
}

std::uint32_t etLib2_Custom_CMD_Read(std::uint32_t DevNum, std::uint8_t command,
                                     std::uint8_t length, std::uint8_t* buffer) {
  const std::shared_ptr<Bridges> bridges = currentBridges();
  if (bridges == nullptr || buffer == nullptr) return statusFailed;
  const auto block = makeCommand(command, length, buffer);
  const auto status = onWorker(workerLimitForCommands_ms, [bridges, DevNum, block] {
    return bridges->readCommand(DevNum, *block);
  });
  if (status) std::copy(block->data.begin(), block->data.end(), buffer);
  return status.value_or(statusFailed);
}

std::uint32_t etLib2_Custom_CMD_Write(std::uint32_t DevNum, std::uint8_t command,
                                      std::uint8_t length, const std::uint8_t* buffer) {
  const std::shared_ptr<Bridges> bridges = currentBridges();
  if (bridges == nullptr || buffer == nullptr) return statusFailed;
  const auto block = makeCommand(command, length, buffer);
  return onWorker(workerLimitForCommands_ms,
                  [bridges, DevNum, block] { return bridges->writeCommand(DevNum, *block); })
      .value_or(statusFailed);
}

}  // namespace qvx
