// The focus lens and its drivers: a lens controller that takes an 8-bit position, and on some
// cameras a voice-coil driver that takes a 10-bit value, whose direction the microcontroller sets.
#pragma once

#include "simulator/model/controller.h"

namespace qvx::simulator {

enum : std::uint8_t { voiceCoilAddress = 0x18, lensControllerAddress = 0x46 };  // 8-bit write form

constexpr double coilStepsPerUnit = 21;

class FocusLens {
 public:
  FocusLens(std::uint16_t productId, const Controller& controller, Violations& violations);
  FocusLens(const FocusLens&) = delete;
  FocusLens& operator=(const FocusLens&) = delete;

  // The driver at an I2C address; null if the camera has none there.
  I2cDevice* driverAt(std::uint8_t address);

  const Lens kind;
  const double zero;  // in units of the lens controller

  // Distance of the lens from its zero position, in units of the lens controller.
  double offset = 0;

 private:
  // Drivers are write-only.
  class Driver final : public I2cDevice {
   public:
    using Take = bool (FocusLens::*)(Bytes, Bytes);

    Driver(FocusLens& lens, Take take) : lens_(lens), take_(take) {}
    bool write(Bytes subAddress, Bytes data) override { return (lens_.*take_)(subAddress, data); }
    bool read(Bytes subAddress, Room data) override;

   private:
    FocusLens& lens_;
    Take take_;
  };

  bool takePosition(Bytes reg, Bytes data);
  bool takeCoilWord(Bytes first, Bytes second);

  const Controller& controller_;
  Violations& violations_;
  Driver lensController_, voiceCoil_;
};

}  // namespace qvx::simulator
