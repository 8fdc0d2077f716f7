#include "simulator/model/usb3_function.h"

#include <array>
#include <cstdio>

namespace qvx::simulator {

namespace {

enum RequestType : std::uint8_t { toInterface = 0x21, fromDevice = 0x80, fromInterface = 0xA1 };
enum Request : std::uint8_t { setCurrent = 0x01, getDescriptor = 0x06, getCurrent = 0x81 };
enum Selector : std::uint16_t {
  buttonAcknowledgeControl = 0x0200,
  buttonSampleControl = 0x0201,
  writeOnBusControl = 0x0300,
  sensorReadControl = 0x0301,
  lensDriverControl = 0x0302,
  controllerReadControl = 0x0303,
  lensPositionControl = 0x0304,
};

constexpr std::uint16_t vendorEntity = 0x0300;
constexpr std::uint16_t deviceDescriptor = 0x0100;
constexpr std::uint8_t buttonCode = 0x13;

}  // namespace

std::string inWords(const UsbSetup& setup) {
  char text[32];
  std::snprintf(text, sizeof text, "%02X %02X %04X %04X %u", setup.requestType, setup.request,
                setup.value, setup.index, setup.length);
  return text;
}

std::optional<std::size_t> Usb3Function::transfer(const UsbSetup& setup, Room buffer) {
  const Room data = buffer.first(std::min<std::size_t>(setup.length, buffer.size()));
  const auto is = [&setup](RequestType type, Request request) {
    return setup.requestType == type && setup.request == request;
  };
  if (is(fromDevice, getDescriptor) && setup.value == deviceDescriptor) return describe(data);
  const bool toCamera = setup.index == vendorEntity;
  if (toCamera && is(toInterface, setCurrent) && set(setup.value, data)) return data.size();
  if (toCamera && is(fromInterface, getCurrent) && get(setup.value, data)) return data.size();
  camera_.violations.emplace_back("usb 3: request that the camera does not have");
  return std::nullopt;
}

bool Usb3Function::set(std::uint16_t selector, Bytes data) {
  if (data.empty()) return false;
  const std::uint8_t first = data[0];  // usually the I2C address
  const std::size_t size = data.size();
  const bool setsDirection =
      first == controllerAddress && size > 1 && data[1] == controller_register::lensDirection;
  switch (selector) {
    case buttonAcknowledgeControl:
      return first == buttonCode;
    case buttonSampleControl:
      asked_.erase(selector);
      return size == 1 && first == buttonCode && ask(selector, data);
    case controllerReadControl:
      return size == 2 && first == controllerAddress && ask(selector, data);
    case sensorReadControl:
      return size == 3 && camera_.sensor.answersAt(first) && ask(selector, data);
    case writeOnBusControl:
      return (size == 3 || size == 4) && writeOnBus(data);
    case lensDriverControl:  // of voice-coil drivers
      return size == 3 && (first == voiceCoilAddress || setsDirection) && writeOnBus(data);
    case lensPositionControl:
      return size == 2 && first == lensControllerAddress && writeOnBus(data);
    default:
      return false;
  }
}

bool Usb3Function::ask(std::uint16_t selector, Bytes data) {
  asked_[selector].assign(data.begin(), data.end());
  return true;
}

bool Usb3Function::get(std::uint16_t selector, Room data) {
  if (data.size() != 1 || !asked_.contains(selector)) return false;
  const std::vector<std::uint8_t> asked = asked_.extract(selector).mapped();
  if (selector == buttonSampleControl) {
    data[0] = camera_.gpio.buttonIsTouched() ? 1 : 0;
    return true;
  }
  const auto place = camera_.placeAt(asked[0]);
  return place && camera_.read(*place, Bytes(asked).subspan(1), data);
}

// {I2C address, register, value}; the register takes 0 to 2 bytes.
bool Usb3Function::writeOnBus(Bytes data) {
  const auto place = camera_.placeAt(data[0]);
  return place && camera_.write(*place, data.subspan(1, data.size() - 2), data.last(1));
}

std::size_t Usb3Function::describe(Room buffer) const {
  const std::uint16_t pid = camera_.productId();
  const auto low = static_cast<std::uint8_t>(pid), high = static_cast<std::uint8_t>(pid >> 8);
  // USB 3.0, vendor id 0x3C7E.
  const std::array<std::uint8_t, 18> descriptor = {18,   1,   0x00, 0x03, 0xEF, 0x02, 0x01, 9, 0x7E,
                                                   0x3C, low, high, 0x00, 0x01, 1,    2,    0, 1};
  const std::size_t length = std::min(buffer.size(), descriptor.size());
  std::copy_n(descriptor.begin(), length, buffer.begin());
  return length;
}

}  // namespace qvx::simulator
