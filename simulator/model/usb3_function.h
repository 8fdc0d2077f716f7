// The vendor controls of a USB 3 camera: class requests to entity 3 of interface 0 that reach the
// devices on its I2C bus.
#pragma once

#include <map>

#include "simulator/model/camera.h"
#include "simulator/model/property_sets.h"

namespace qvx::simulator {

// "21 01 0303 0300 2"
std::string inWords(const UsbSetup& setup);

class Usb3Function {
 public:
  explicit Usb3Function(Camera& camera) : camera_(camera) {}

  // One control transfer; `buffer` holds the data to send or receives the reply. Returns the number
  // of bytes moved, or nothing when the camera stalls the request.
  std::optional<std::size_t> transfer(const UsbSetup& setup, Room buffer);

 private:
  bool set(std::uint16_t selector, Bytes data);
  bool get(std::uint16_t selector, Room data);
  bool ask(std::uint16_t selector, Bytes data);
  bool writeOnBus(Bytes data);
  std::size_t describe(Room buffer) const;

  Camera& camera_;
  // Replies not fetched yet, by selector.
  std::map<std::uint16_t, std::vector<std::uint8_t>> asked_;
};

}  // namespace qvx::simulator
