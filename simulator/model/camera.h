// One simulated camera. The transports (Wi-Fi, USB 3, extension unit, HID) access it through this
// class and advance its time; it reads no clock itself.
#pragma once

#include <functional>

#include "simulator/model/controller.h"
#include "simulator/model/gpio.h"
#include "simulator/model/lens.h"
#include "simulator/model/picture_controls.h"
#include "simulator/model/sensor.h"
#include "simulator/model/video_modes.h"
#include "simulator/model/zoom_ring.h"

namespace qvx::simulator {

// A device and its address on the I2C bus.
struct BusPlace {
  std::uint8_t address;  // in its 8-bit write form
  std::uint8_t subAddressLength;
  I2cDevice* device;
};

// A tap on the camera's bus: receives a description of each access, and can drop writes.
struct BusTap {
  std::function<void(std::string)> tell;
  bool losesWrites = false;  // writes are acknowledged but not executed
};

// "read  bridge 0x0085 -> 0x80"
std::string inWords(bool isWrite, const std::string& target, Bytes data);
// "read  controller 0x80 -> 0x56  feature register"
std::string inWords(bool isWrite, std::uint8_t address, Bytes subAddress, Bytes data,
                    bool acknowledged);

// Automatic exposure of a sensor that leaves it to the camera's firmware.
struct FirmwareExposure {
  bool automatic = true;
  std::uint8_t target = 0x40;  // brightness
};

class Camera {
 public:
  explicit Camera(std::uint16_t productId);

  std::uint16_t productId() const { return productId_; }

  // The device at an I2C address, if any.
  std::optional<BusPlace> placeAt(std::uint8_t address) const;

  // Bus accesses, seen by the tap; each returns whether the device acknowledged.
  bool write(const BusPlace& place, Bytes subAddress, Bytes data) const;
  bool read(const BusPlace& place, Bytes subAddress, Room data) const;

  // Advances the camera's clock, and the zoom ring with it. Time counts from power-up and never
  // decreases.
  void advanceTo(std::uint64_t now_ms);

  // Takes effect at once. Ignored by a camera without a zoom encoder.
  void setZoom(const ZoomMotion& motion);
  bool hasZoomRing() const;

  // The magnification that an ideal client computes from the encoder; 0 without a zoom ring.
  double magnification() const;

  Violations violations;
  Controller controller;
  Gpio gpio;
  FocusLens lens;
  Sensor sensor;
  FirmwareExposure firmwareExposure;
  PictureControls picture;
  VideoOutput video;
  BusTap tap;

 private:
  void turnRing();

  std::uint16_t productId_;
  const Calibration& calibration_;
  std::uint64_t now_ms_ = 0, motionStart_ms_ = 0;
  ZoomMotion motion_{50, 50, 0};
  int quarters_ = 0;
  std::vector<BusPlace> bus_;
};

}  // namespace qvx::simulator
