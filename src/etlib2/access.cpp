#include "etlib2/access.h"

#include <utility>

namespace qvx {

namespace {

constexpr char mutexName[] = "Empia VideoClass HidClass Library";
constexpr std::uint32_t mutexLimit_ms = 1000;
constexpr std::uint32_t mutexLimitForCommands_ms = 100;

constexpr std::uint8_t eepromSlave = 0xA0;

// Bytes beyond the length of a register are 0, whatever the device put there.
std::uint32_t lowBytes(std::uint32_t value, std::uint8_t length) {
  return length >= 4 ? value : value & ((1u << (8 * length)) - 1);
}

class Lock {
 public:
  Lock(platform::NamedMutex& mutex, std::uint32_t limit_ms)
      : mutex_(mutex), obtained_(mutex.acquire(limit_ms)) {}
  ~Lock() {
    if (obtained_) mutex_.release();
  }
  Lock(const Lock&) = delete;
  Lock& operator=(const Lock&) = delete;

  explicit operator bool() const { return obtained_; }

 private:
  platform::NamedMutex& mutex_;
  bool obtained_;
};

std::vector<std::unique_ptr<Bridge>> findBridges(BridgeInterface kind) {
  return kind == BridgeInterface::extensionUnit ? findExtensionUnitBridges() : findHidBridges();
}

}  // namespace

std::uint8_t SpeedTable::speedOf(std::uint8_t slave) const {
  for (const Entry& entry : entries) {
    if (entry.slave.load(std::memory_order_relaxed) == slave) {
      return entry.speed.load(std::memory_order_relaxed);
    }
  }
  return standardSpeed;
}

Bridges::Bridges(std::shared_ptr<platform::NamedMutex> mutex, Devices devices)
    : mutex_(std::move(mutex)), devices_(std::move(devices)) {}

std::shared_ptr<Bridges> Bridges::open(BridgeInterface kind) {
  std::shared_ptr<platform::NamedMutex> mutex = platform::openNamedMutex(mutexName);
  if (mutex == nullptr) return nullptr;
  const Lock lock(*mutex, mutexLimit_ms);
  if (!lock) return nullptr;
  Devices devices = findBridges(kind);
  if (devices.empty()) return nullptr;
  for (const auto& device : devices) {
    device->chipGeneration = device->readChipGeneration().value_or(0);
  }
  return std::shared_ptr<Bridges>(new Bridges(mutex, std::move(devices)));
}

template <class Transfer>
std::uint32_t Bridges::exclusively(std::uint32_t device, std::uint32_t limit_ms,
                                   Transfer transfer) {
  currentDevice.store(device, std::memory_order_relaxed);
  if (device >= devices_.size()) return statusFailed;
  const Lock lock(*mutex_, limit_ms);
  return lock && transfer(*devices_[device]) ? statusOk : statusFailed;
}

std::uint32_t Bridges::readChipGeneration(std::uint32_t device, std::uint8_t& generation) {
  return exclusively(device, mutexLimit_ms, [&](Bridge& bridge) {
    const std::optional<std::uint8_t> answer = bridge.readChipGeneration();
    if (answer) generation = *answer;
    return answer.has_value();
  });
}

std::uint32_t Bridges::readRegister(std::uint32_t device, RegisterTransfer& transfer) {
  return exclusively(device, mutexLimit_ms, [&](Bridge& bridge) {
    if (!bridge.readRegister(transfer)) return false;
    transfer.value = lowBytes(transfer.value, transfer.length);
    return true;
  });
}

std::uint32_t Bridges::writeRegister(std::uint32_t device, const RegisterTransfer& transfer) {
  return exclusively(device, mutexLimit_ms,
                     [&](Bridge& bridge) { return bridge.writeRegister(transfer); });
}

std::uint32_t Bridges::readI2c(std::uint32_t device, I2cBlock& block) {
  prepareI2c(device, block);
  return exclusively(device, mutexLimit_ms, [&](Bridge& bridge) { return bridge.readI2c(block); });
}

std::uint32_t Bridges::writeI2c(std::uint32_t device, I2cBlock& block) {
  prepareI2c(device, block);
  return exclusively(device, mutexLimit_ms, [&](Bridge& bridge) { return bridge.writeI2c(block); });
}

std::uint32_t Bridges::readCommand(std::uint32_t device, CommandBlock& command) {
  return exclusively(device, mutexLimitForCommands_ms,
                     [&](Bridge& bridge) { return bridge.readCommand(command); });
}

std::uint32_t Bridges::writeCommand(std::uint32_t device, const CommandBlock& command) {
  return exclusively(device, mutexLimitForCommands_ms,
                     [&](Bridge& bridge) { return bridge.writeCommand(command); });
}

void Bridges::prepareI2c(std::uint32_t device, I2cBlock& block) {
  const bool eeprom = block.slave == eepromSlave && device < devices_.size() &&
                      devices_[device]->chipGeneration == 0;
  if (eeprom) {
    // The EEPROM hangs on bus 1, always runs at standard speed and takes its 16-bit address high
    // byte first.
    selectEepromBus(device);
    if (block.subAddressLength >= 2) std::swap(block.subAddress[0], block.subAddress[1]);
  } else {
    block.flags = speedTable.speedOf(block.slave);
  }
  if (block.subAddressLength != 0) block.flags |= I2cBlock::withSubAddress;
}

void Bridges::selectEepromBus(std::uint32_t device) {
  RegisterTransfer select{bridge_register::busSelect, 1, 0};
  // A value that could not be read is not written back.
  if (readRegister(device, select) != statusOk) return;
  select.value &= ~busSelectBit;
  writeRegister(device, select);
}

}  // namespace qvx
