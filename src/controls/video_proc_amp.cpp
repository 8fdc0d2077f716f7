#include "controls/video_proc_amp.h"

#include "state/device_state.h"
#include "transport/capture_driver.h"
#include "transport/wifi_camera.h"

namespace qvx {

namespace {

constexpr std::int32_t unavailable = -1;

// Every negative index stands for the Wi-Fi camera here, not only -1.
bool isWifiCurrent() {
  return VideoDeviceIndex < 0 || VideoDeviceIndex == wifiDeviceIndex;
}

}  // namespace

void setVideoProcAmp(PictureProperty property, std::int32_t value) {
  if (!isWifiCurrent()) {
    withAmplifier([=](platform::VideoProcAmp& amplifier) {
      platform::setProperty(amplifier, property, value);
    });
  } else if (isWifiProperty(property)) {
    setWifiProperty(property, value);
  }
}

std::int32_t getVideoProcAmp(PictureProperty property) {
  if (isWifiCurrent()) {
    if (!isWifiProperty(property)) return unavailable;
    const std::optional<PictureControl> control = askWifiProperty(property);
    return control ? control->value : 0;
  }
  std::int32_t value = unavailable;
  const bool anyInput = withAmplifier([&](platform::VideoProcAmp& amplifier) {
    value = platform::getProperty(amplifier, property).value_or(unavailable);
  });
  return anyInput ? value : 0;
}

std::optional<platform::PropertyRange> getVideoProcAmpRange(PictureProperty property) {
  constexpr platform::PropertyRange none = {unavailable, unavailable, unavailable, unavailable};
  if (isWifiCurrent()) {
    if (!isWifiProperty(property)) return none;
    const std::optional<PictureControl> control = askWifiProperty(property);
    return control ? std::optional(control->range) : std::nullopt;
  }
  std::optional<platform::PropertyRange> range;
  withAmplifier([&](platform::VideoProcAmp& amplifier) {
    range = platform::getPropertyRange(amplifier, property).value_or(none);
  });
  return range;
}

}  // namespace qvx
