// What makes the picture: exposure, picture properties, and the Wi-Fi camera's stills.
#include <windows.h>

#include <algorithm>
#include <cstdlib>
#include <fstream>
#include <iterator>

#include "cameras.h"
#include "readings.h"
#include "selftest.h"
#include "stills.h"

namespace qvxctl {

namespace {

namespace files = std::filesystem;

// A number that can be set and read back, of a device or a property.
struct Control {
  qvx_long (*get)(int which);
  void (*set)(int which, qvx_long value);
  qvx_long tolerance;
};

// Not constexpr: the address of an imported function is known at run time.
const Control exposureTime = {GetExposureValue, SetExposureValue, 1};
const Control exposureTarget = {GetAETarget, SetAETarget, 0};
const Control automaticExposure = {GetAutoExposure, SetAutoExposure, 0};
const Control pictureProperty = {GetVideoProcAmp, SetVideoProcAmp, 0};

// Sets each value and finally the previous one, and reads after each.
Finding setAndRestore(std::string step, const Control& control, int which,
                      std::vector<qvx_long> values) {
  values.push_back(control.get(which));
  bool same = true;
  std::string set, read;
  for (const qvx_long value : values) {
    control.set(which, value);
    const qvx_long now = control.get(which);
    same = same && std::abs(now - value) <= control.tolerance;
    append(set, value);
    append(read, now);
  }
  return compared(std::move(step), same, set, read);
}

bool hasExposure(const Model& camera) {
  return camera.exposure.time != ExposureTime::none;
}

Finding testProperty(const Property& property) {
  const std::string name(property.name);
  const auto setting = settingOf(property);
  if (!setting || setting->min >= setting->max) return skipped(name);
  const qvx_long step = std::max<qvx_long>(setting->step, 1);
  const qvx_long other =
      setting->value + step <= setting->max ? setting->value + step : setting->value - step;
  return setAndRestore(name, pictureProperty, property.number, {other});
}

// The size in the frame header of a JPEG file; zero without a header.
Size sizeOfJpeg(const files::path& path) {
  std::ifstream file(path, std::ios::binary);
  const std::string content{std::istreambuf_iterator<char>(file), {}};
  const auto word = [&content](std::size_t at) {
    const auto byte = [&](std::size_t i) { return static_cast<unsigned char>(content[i]); };
    return static_cast<qvx_long>(byte(at) << 8 | byte(at + 1));
  };
  constexpr std::size_t startMarker = 2, headerLength = 9;
  constexpr qvx_long baseline = 0xFFC0, progressive = 0xFFC2;
  std::size_t at = startMarker;
  while (at + headerLength <= content.size()) {
    const qvx_long marker = word(at);
    if (marker == baseline || marker == progressive) return {word(at + 7), word(at + 5)};
    at += 2 + static_cast<std::size_t>(word(at + 2));
  }
  return {};
}

// The size of a still, zero unless it is whole. The name is relative, as the library does not take
// every path.
Size sizeOfStill() {
  files::current_path(files::temp_directory_path());
  const std::string name = "qvxctl-selftest-" + std::to_string(GetCurrentProcessId()) + ".jpg";
  std::error_code ignored;
  Size size{};
  if (GetWiFiImage(name.c_str()) && isWholeJpeg(name)) size = sizeOfJpeg(name);
  files::remove(name, ignored);
  return size;
}

Finding testMode(const Size& size) {
  const bool taken = SetWiFiVideoRes(size.width, size.height);
  const Size still = sizeOfStill();
  return compared("still", taken && still == size, textOf(size), textOf(still));
}

}  // namespace

Findings testAutomaticExposure(const Model& camera) {
  if (!hasExposure(camera)) return {skipped("automatic exposure")};
  return {setAndRestore("automatic exposure", automaticExposure, camera.device, {0, 1})};
}

Findings testExposureTarget(const Model& camera) {
  if (!hasExposure(camera)) return {skipped("exposure target")};
  return {setAndRestore("exposure target", exposureTarget, camera.device, {100, 120})};
}

Findings testExposure(const Model& camera) {
  const ExposureTime time = camera.exposure.time;
  Finding finding = skipped("exposure time");
  if (time != ExposureTime::settable && time != ExposureTime::perhapsFixed) return {finding};
  const qvx_long automatic = GetAutoExposure(camera.device);
  SetAutoExposure(camera.device, 0);
  const qvx_long before = GetExposureValue(camera.device);
  Finding tried = setAndRestore(finding.step, exposureTime, camera.device, {100, 500});
  SetAutoExposure(camera.device, automatic);
  const std::string now = std::to_string(before);
  const bool fixed =
      time == ExposureTime::perhapsFixed && tried.read == now + ' ' + now + ' ' + now;
  return {fixed ? finding : tried};
}

// Where the power-line property holds the setting, it is restored. Other cameras are left to detect
// the frequency, or at 50 Hz if they cannot.
Findings testFlicker(const Model& camera) {
  const qvx_long before = GetVideoProcAmp(QVX_POWER_LINE_FREQUENCY);
  if (camera.exposure.flicker == Flicker::none) return {skipped("flicker")};
  for (const qvx_long mode : {1, 2, 0}) SetFlicker(camera.device, mode);
  if (before >= 0 && camera.device != QVX_WIFI_CAMERA)
    SetVideoProcAmp(QVX_POWER_LINE_FREQUENCY, before);
  return {sent("flicker", "1 2 0")};
}

Findings testPicture(const Model& /*camera*/) {
  Findings findings;
  for (const Property& property : propertyTable()) findings.push_back(testProperty(property));
  return findings;
}

// The size of the first still is the one to restore.
Findings testStills(const Model& camera) {
  const auto sizes = camera.device == QVX_WIFI_CAMERA ? sizesOffered() : std::vector<Size>();
  if (sizes.empty()) return {skipped("video modes"), skipped("still")};
  const Size before = sizeOfStill();
  const bool known = std::ranges::find(sizes, before) != sizes.end();
  Findings findings = {
      {"video modes", Outcome::ok, "", std::to_string(sizes.size())},
      compared("still", known, "", textOf(before)),
  };
  for (const Size& size : sizes) findings.push_back(testMode(size));
  if (known) SetWiFiVideoRes(before.width, before.height);
  return findings;
}

}  // namespace qvxctl
