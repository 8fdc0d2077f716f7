#include "simulator/model/usb3_function.h"

#include <algorithm>

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

std::optional<std::size_t> Usb3Function::transfer(const UsbSetup& setup,
                                                  std::span<std::uint8_t> buffer) {
  const std::size_t length = std::min<std::size_t>(setup.length, buffer.size());
  const auto data = buffer.first(length);
  bool done = false;
  if (setup.requestType == fromDevice && setup.request == getDescriptor &&
      setup.value == deviceDescriptor) {
    return describe(data);
  }
  if (setup.index == vendorEntity && setup.requestType == toInterface &&
      setup.request == setCurrent) {
    done = set(setup.value, data);
  } else if (setup.index == vendorEntity && setup.requestType == fromInterface &&
             setup.request == getCurrent) {
    done = get(setup.value, data);
  }
  if (!done) {
    camera_.violations().add({"usb 3: request that the camera does not have"});
    return std::nullopt;
  }
  return length;
}

bool Usb3Function::set(std::uint16_t selector, std::span<const std::uint8_t> data) {
  if (selector == writeOnBusControl) return writeOnBus(data);
  if (selector == sensorReadControl) return chooseSensorRegister(data);
  if (selector == lensDriverControl) return writeToLens(data);
  if (selector == lensPositionControl) return moveLens(data);
  if (selector == buttonSampleControl) return armButton(data);
  if (selector == buttonAcknowledgeControl) return !data.empty() && data[0] == buttonCode;
  if (selector != controllerReadControl || data.size() != 2 || data[0] != controllerAddress) {
    return false;
  }
  controllerRegister_ = data[1];
  return true;
}

bool Usb3Function::get(std::uint16_t selector, std::span<std::uint8_t> data) {
  if (selector == sensorReadControl) return readSensor(data);
  if (selector == buttonSampleControl) return sampleButton(data);
  if (selector != controllerReadControl || data.size() != 1 || !controllerRegister_) return false;
  const std::uint8_t reg = *controllerRegister_;
  controllerRegister_.reset();
  return camera_.deviceAt(controllerAddress)->read({&reg, 1}, data);
}

// {address, register, value}; a sensor's register has two bytes.
bool Usb3Function::writeOnBus(std::span<const std::uint8_t> data) {
  if (data.size() != 3 && data.size() != 4) return false;
  I2cDevice* const device = camera_.deviceAt(data[0]);
  return device != nullptr && device->write(data.subspan(1, data.size() - 2), data.last(1));
}

// {address, register high, register low}
bool Usb3Function::chooseSensorRegister(std::span<const std::uint8_t> data) {
  if (data.size() != 3 || !camera_.sensor().answersAt(data[0])) return false;
  sensorAddress_ = data[0];
  sensorRegister_ = {data[1], data[2]};
  return true;
}

bool Usb3Function::readSensor(std::span<std::uint8_t> data) {
  if (data.size() != 1 || !sensorRegister_) return false;
  const std::array<std::uint8_t, 2> reg = *sensorRegister_;
  sensorRegister_.reset();
  I2cDevice* const sensor = camera_.deviceAt(sensorAddress_);
  return sensor != nullptr && sensor->read(reg, data);
}

// {address, two bytes}, for what moves a voice coil.
bool Usb3Function::writeToLens(std::span<const std::uint8_t> data) {
  const bool isAddressed =
      data.size() == 3 &&
      (data[0] == voiceCoilAddress ||
       (data[0] == controllerAddress && data[1] == controller_register::lensDirection));
  return isAddressed && writeOnBus(data);
}

// {address, position}
bool Usb3Function::moveLens(std::span<const std::uint8_t> data) {
  if (data.size() != 2 || data[0] != lensControllerAddress) return false;
  I2cDevice* const device = camera_.deviceAt(data[0]);
  return device != nullptr && device->write({}, data.last(1));
}

bool Usb3Function::armButton(std::span<const std::uint8_t> data) {
  buttonArmed_ = data.size() == 1 && data[0] == buttonCode;
  return buttonArmed_;
}

// 1 while it is touched.
bool Usb3Function::sampleButton(std::span<std::uint8_t> data) {
  if (data.size() != 1 || !buttonArmed_) return false;
  buttonArmed_ = false;
  data[0] = camera_.gpio().buttonIsTouched() ? 1 : 0;
  return true;
}

std::optional<std::size_t> Usb3Function::describe(std::span<std::uint8_t> buffer) const {
  const std::uint16_t pid = camera_.productId();
  const std::array<std::uint8_t, 18> descriptor = {18,
                                                   1,
                                                   0x00,
                                                   0x03,  // USB 3.0
                                                   0xEF,
                                                   0x02,
                                                   0x01,
                                                   9,
                                                   0x7E,
                                                   0x3C,
                                                   static_cast<std::uint8_t>(pid),
                                                   static_cast<std::uint8_t>(pid >> 8),
                                                   0x00,
                                                   0x01,
                                                   1,
                                                   2,
                                                   0,
                                                   1};
  const std::size_t length = std::min(buffer.size(), descriptor.size());
  std::copy_n(descriptor.begin(), length, buffer.begin());
  return length;
}

}  // namespace qvx::simulator
