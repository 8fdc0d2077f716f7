#include "controls/video_proc_amp.h"

#include <array>
#include <cstdio>
#include <functional>
#include <string>

#include "controls/control_document.h"
#include "platform/com.h"
#include "state/device_state.h"
#include "transport/enumeration.h"
#include "transport/wifi.h"

namespace qvx {

namespace {

constexpr std::int32_t unavailable = -1;

struct WifiProperty {
  const char* name;  // in the control document
  int id;            // in commands, as Video4Linux numbers its controls
};

// By property number. The camera has no others.
constexpr WifiProperty wifiProperties[] = {
    {"Brightness", 9963776}, {"Contrast", 9963777},  {"Hue", 9963779},
    {"Saturation", 9963778}, {"Sharpness", 9963803}, {"Gamma", 9963792},
};

const WifiProperty* wifiProperty(PictureProperty property) {
  const auto position = static_cast<std::uint32_t>(property);
  return position < std::size(wifiProperties) ? &wifiProperties[position] : nullptr;
}

// Every negative index stands for the Wi-Fi camera here, not only -1.
bool isWifiCurrent() {
  return VideoDeviceIndex < 0 || VideoDeviceIndex == wifiDeviceIndex;
}

// The camera's description of a property, as soon as a read gives a document that has it: each read
// is taken as a document of its own, and what is none is passed over.
std::optional<Control> askWifiCamera(const WifiProperty& property) {
  const platform::InternetHandle session = platform::openInternetSession(downloadAgent);
  const platform::InternetHandle request =
      openCameraUrl(session, wifiBaseUrl() + "input_0_control.json");
  if (request == nullptr) {
    platform::closeInternetHandle(session);
    return std::nullopt;
  }
  std::array<char, answerCapacity> chunk;
  std::uint32_t received = 0;
  while (platform::readUrl(request, chunk.data(), answerCapacity, received) && received != 0) {
    // The request and its session stay open: the channel leaves both to the process.
    if (const auto control = controlIn({chunk.data(), received}, property.name)) return control;
  }
  platform::closeInternetHandle(request);
  platform::closeInternetHandle(session);
  return std::nullopt;
}

bool isCurrentDevice(const std::wstring& displayName) {
  std::string path;
  Wchar_tToString(path, displayName.c_str());
  return path == entryOf(strOrvaDevice, VideoDeviceIndex);
}

using AmplifierUse = std::function<void(platform::VideoProcAmp&)>;

// Returns the graph for release. The builder, the stream settings and the amplifier stay open, as
// the filter does: all four are left to the process.
platform::FilterGraph* useAmplifier(platform::CaptureFilter& filter, const AmplifierUse& use) {
  platform::FilterGraph* const graph = platform::createFilterGraph();
  platform::CaptureBuilder* const builder = platform::createCaptureBuilder();
  // Never taken back: COM must outlast what stays open.
  platform::initializeCom();
  platform::StreamConfig* const config =
      builder == nullptr ? nullptr : platform::findStreamConfig(*builder, filter);
  if (config != nullptr) platform::countCapabilities(*config);
  platform::VideoProcAmp* const amplifier = platform::queryVideoProcAmp(filter);
  if (amplifier == nullptr) {
    std::printf("\nDevice does not support IAMVideoProcAmp!\n");
  } else {
    use(*amplifier);
  }
  return graph;
}

// Uses the amplifier of the current device, if there is one. Returns whether the system has any
// video input.
bool withAmplifier(const AmplifierUse& use) {
  const platform::ComUse com;
  platform::InputList* const inputs = platform::openInputList();
  platform::CaptureFilter* filter = nullptr;
  if (inputs == nullptr) {
    std::printf("No Device Found!\n");
  } else {
    filter = platform::openFilter(*inputs, isCurrentDevice);
  }
  platform::FilterGraph* const graph = filter == nullptr ? nullptr : useAmplifier(*filter, use);
  platform::release(graph);
  platform::release(inputs);
  return inputs != nullptr;
}

}  // namespace

void setVideoProcAmp(PictureProperty property, std::int32_t value) {
  if (!isWifiCurrent()) {
    withAmplifier([=](platform::VideoProcAmp& amplifier) {
      platform::setProperty(amplifier, property, value);
    });
  } else if (const WifiProperty* const wanted = wifiProperty(property)) {
    sendUnread(commandUrl(wifiBaseUrl(), wanted->id, WifiGroup::picture, value));
  }
}

std::int32_t getVideoProcAmp(PictureProperty property) {
  if (isWifiCurrent()) {
    const WifiProperty* const wanted = wifiProperty(property);
    if (wanted == nullptr) return unavailable;
    const std::optional<Control> control = askWifiCamera(*wanted);
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
    const WifiProperty* const wanted = wifiProperty(property);
    if (wanted == nullptr) return none;
    const std::optional<Control> control = askWifiCamera(*wanted);
    return control ? std::optional(control->range) : std::nullopt;
  }
  std::optional<platform::PropertyRange> range;
  withAmplifier([&](platform::VideoProcAmp& amplifier) {
    range = platform::getPropertyRange(amplifier, property).value_or(none);
  });
  return range;
}

}  // namespace qvx
