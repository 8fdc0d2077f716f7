// The access layer: the bridge cameras that one kind of interface reaches, behind the mutex that
// all processes using the library share.
#pragma once

#include <atomic>
#include <cstdint>
#include <memory>
#include <vector>

#include "etlib2/bridge.h"
#include "platform/workers.h"

namespace qvx {

// Results in the style of COM.
constexpr std::uint32_t statusOk = 0;
constexpr std::uint32_t statusFailed = 0x80004005;

constexpr std::uint8_t standardSpeed = 0x00;
constexpr std::uint8_t fastSpeed = 0x10;

// Shared by all threads without a lock: the last writer wins.
struct SpeedTable {
  struct Entry {
    std::atomic<std::uint8_t> slave{0}, speed{standardSpeed};
  };
  std::array<Entry, 4> entries;  // only the first is ever written

  std::uint8_t speedOf(std::uint8_t slave) const;
};
inline SpeedTable speedTable;
inline std::atomic<std::uint8_t> i2cSpeed{standardSpeed};  // of the transfers to come
inline std::atomic<std::uint32_t> currentDevice{0};        // the device of the last access

enum class BridgeInterface : std::uint8_t { none = 0, extensionUnit = 1, hid = 2 };

// The opened cameras. Accesses may run on any thread and may outlast the closing of the library:
// each shares ownership of the cameras it started on.
class Bridges {
 public:
  // Enumerates the cameras of one kind. Null when there are none or another process holds the
  // mutex for too long.
  static std::shared_ptr<Bridges> open(BridgeInterface kind);

  int deviceCount() const { return static_cast<int>(devices_.size()); }

  // Each returns statusOk or statusFailed. A device number beyond the count fails.
  std::uint32_t readChipGeneration(std::uint32_t device, std::uint8_t& generation);
  std::uint32_t readRegister(std::uint32_t device, RegisterTransfer& transfer);
  std::uint32_t writeRegister(std::uint32_t device, const RegisterTransfer& transfer);
  std::uint32_t readI2c(std::uint32_t device, I2cBlock& block);
  std::uint32_t writeI2c(std::uint32_t device, I2cBlock& block);
  std::uint32_t readCommand(std::uint32_t device, CommandBlock& command);
  std::uint32_t writeCommand(std::uint32_t device, const CommandBlock& command);

 private:
  using Devices = std::vector<std::unique_ptr<Bridge>>;

  Bridges(std::shared_ptr<platform::NamedMutex> mutex, Devices devices);

  template <class Transfer>
  std::uint32_t exclusively(std::uint32_t device, std::uint32_t limit_ms, Transfer transfer);
  void prepareI2c(std::uint32_t device, I2cBlock& block);
  void selectEepromBus(std::uint32_t device);

  std::shared_ptr<platform::NamedMutex> mutex_;
  Devices devices_;
};

}  // namespace qvx
