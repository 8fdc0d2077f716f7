#include "controls/device_selection.h"
#include "controls/exposure.h"
#include "controls/family_rows.h"
#include "controls/video_proc_amp.h"
#include "transport/sensor.h"
#include "transport/sensor_registers.h"

namespace qvx {

namespace {

enum FlickerMode : std::int32_t { detect = 0, mains60Hz = 1, mains50Hz = 2 };

struct FlickerWrite {
  std::int32_t mode;
  std::uint32_t reg, value;
};

constexpr FlickerWrite writes78[] = {
    {detect, sensor78::mainsDetection, 0x34},    {mains60Hz, sensor78::mainsDetection, 0xB4},
    {mains60Hz, sensor78::mainsFrequency, 0x00}, {mains50Hz, sensor78::mainsDetection, 0xB4},
    {mains50Hz, sensor78::mainsFrequency, 0x04},
};

constexpr FlickerWrite writes42[] = {
    {mains60Hz, sensor42::mainsFrequency, 0x7F},
    {mains60Hz, sensor42::mainsBands, 3},
    {mains50Hz, sensor42::mainsFrequency, 0x99},
    {mains50Hz, sensor42::mainsBands, 2},
};

void setFlicker78(int deviceNumber, std::int32_t mode) {
  for (const FlickerWrite& write : writes78) {
    if (write.mode == mode) WriteTo90x(deviceNumber, write.reg, write.value);
  }
}

void setFlicker42(int deviceNumber, std::int32_t mode) {
  for (const FlickerWrite& write : writes42) {
    if (write.mode == mode) WriteTo88x(deviceNumber, write.reg, write.value);
  }
}

// There is no detection: any other mode writes back what is there.
void setFlicker48(int deviceNumber, std::int32_t mode) {
  std::uint32_t value = ReadFrom88x(deviceNumber, sensor48::mainsFrequency);
  if (mode == mains60Hz) value |= 0x01;
  if (mode == mains50Hz) value &= 0xFE;
  WriteTo88x(deviceNumber, sensor48::mainsFrequency, value);
}

// The camera's own property, of the current device whatever the index.
void setFlicker4xx7(int /*deviceNumber*/, std::int32_t mode) {
  constexpr std::int32_t at50Hz = 1, at60Hz = 2;
  if (mode == mains60Hz) setVideoProcAmp(PictureProperty::powerLineFrequency, at60Hz);
  if (mode == mains50Hz) setVideoProcAmp(PictureProperty::powerLineFrequency, at50Hz);
}

constexpr FamilyRow<void(int, std::int32_t)> flickerSetters[] = {
    {isVk4xx7Series, setFlicker4xx7},
    {within<range(0x900, 0x909), range(0x920, 0x94F), range(0x960, 0x99F)>, setFlicker78},
    {isVK73xxxSeries, setFlicker78},
    {within<range(0x870, 0x88F), range(0x910, 0x91F), range(0x9C0, 0x9CF)>, setFlicker48},
    {isVK3xxxR4Series, setFlicker42},
    {isVR3xxxSeries, setFlicker42},
};

}  // namespace

void setFlicker(int deviceIndex, std::int32_t mode) {
  runRowFor(nPid, flickerSetters, deviceNumberOf(deviceIndex), mode);
}

}  // namespace qvx
