#include "transport/wifi_camera.h"

#include <cstdlib>
#include <iterator>

#include "platform/files.h"
#include "state/device_state.h"
#include "state/kept_state.h"
#include "transport/camera_bus.h"
#include "transport/http_request.h"
#include "transport/wifi.h"

namespace qvx {

namespace {

constexpr std::uint32_t probeTimeout_ms = 2000;
constexpr int lightPort = 0;

// In the order they are built.
const struct {
  std::string* url;
  std::uint32_t reg;
} readUrls[] = {
    {&sReg00, 0x00}, {&sReg01, 0x01}, {&sReg02, 0x02}, {&sRegC0, 0xC0}, {&sRegC1, 0xC1},
    {&sRegC2, 0xC2}, {&sRegC3, 0xC3}, {&sRegC4, 0xC4}, {&sRegC5, 0xC5}, {&sReg60, 0x60},
    {&sReg61, 0x61}, {&sReg62, 0x62}, {&sReg63, 0x63}, {&sReg64, 0x64}, {&sReg65, 0x65},
    {&sReg66, 0x66}, {&sReg67, 0x67}, {&sReg68, 0x68}, {&sReg69, 0x69}, {&sReg6A, 0x6A},
    {&sReg6B, 0x6B}, {&sReg6C, 0x6C}, {&sReg6D, 0x6D}, {&sReg6E, 0x6E}, {&sReg6F, 0x6F},
    {&sReg40, 0x40}, {&sReg41, 0x41}, {&sReg42, 0x42}, {&sReg43, 0x43}, {&sReg44, 0x44},
    {&sReg45, 0x45}, {&sReg46, 0x46}, {&sReg47, 0x47}, {&sReg48, 0x48}, {&sReg49, 0x49},
    {&sReg4A, 0x4A}, {&sReg4B, 0x4B}, {&sReg80, 0x80}, {&sReg81, 0x81}, {&sReg83, 0x83},
    {&sReg84, 0x84}, {&sReg50, 0x50},
};

// By property number: the name in the control document, and the id in commands, which is that of
// the control in Video4Linux.
constexpr struct {
  const char* name;
  int id;
} properties[] = {
    {"Brightness", 9963776}, {"Contrast", 9963777},  {"Hue", 9963779},
    {"Saturation", 9963778}, {"Sharpness", 9963803}, {"Gamma", 9963792},
};

std::size_t placeOf(platform::PictureProperty property) {
  return static_cast<std::uint32_t>(property);
}

// Looks for the maker's vendor id in one part of the camera's device list; the product id's four
// digits follow at a fixed distance. The last camera of the list wins.
void takeProductIdsIn(const std::string& part) {
  constexpr char vendorId[] = "0x3c7e";
  constexpr std::size_t digitsOffset = 25, digitsLength = 4;
  for (std::size_t at = part.find(vendorId); at != std::string::npos;
       at = part.find(vendorId, at + 1)) {
    if (at + digitsOffset + digitsLength > part.size()) return;
    const std::string digits = part.substr(at + digitsOffset, digitsLength);
    nCurrPid = static_cast<int>(std::strtol(digits.c_str(), nullptr, 16));
    nPid = nCurrPid;
  }
}

// The parts of the picture as they come. Neither a camera that stops nor a full disk is reported:
// the file keeps what there was. The end is written, too, as a part of no bytes.
void copy(HttpRequest& request, platform::FileHandle file) {
  constexpr std::uint32_t partSize = 2000;
  std::string part;
  do {
    part = request.read(partSize);
    platform::writeFile(file, part.data(), static_cast<std::uint32_t>(part.size()));
  } while (!part.empty());
}

}  // namespace

bool wifiCameraAnswers() {
  HttpRequest request;
  request.limitTime(probeTimeout_ms);
  const bool answers = request.open(s_mainhttp);
  // Nobody reads the camera's home page: the request goes with its session.
  request.leaveRequestOpen();
  return answers;
}

void readWifiDeviceList() {
  HttpRequest request;
  request.open(s_mainhttp + "usbdevlist.json");
  for (std::string part = request.read(); !part.empty(); part = request.read()) {
    takeProductIdsIn(part.c_str());  // as text, up to the first NUL
  }
}

void buildReadUrls() {
  for (const auto& [url, reg] : readUrls) *url = wifiReadUrl(s_mainhttp, chip::controller, reg);
}

void setLightPins(int mask, int levels) {
  loadUrlwWininet(CMD_GPIO_W(s_mainhttp, lightPort, mask, levels));
}

bool isWifiProperty(platform::PictureProperty property) {
  return placeOf(property) < std::size(properties);
}

void setWifiProperty(platform::PictureProperty property, std::int32_t value) {
  const int id = properties[placeOf(property)].id;
  sendUnread(commandUrl(wifiBaseUrl(), id, WifiGroup::picture, value));
}

// Each read is taken as a document of its own, and skipped if it is none.
std::optional<PictureControl> askWifiProperty(platform::PictureProperty property) {
  HttpRequest request;
  request.open(wifiBaseUrl() + "input_0_control.json");
  for (std::string part = request.read(); !part.empty(); part = request.read()) {
    const auto control = controlIn(part, properties[placeOf(property)].name);
    if (!control) continue;
    request.leaveOpen();
    return control;
  }
  return std::nullopt;
}

void chooseWifiVideoMode(int number) {
  loadUrlwWininet(commandUrl(wifiBaseUrl(), 0, WifiGroup::videoMode, number));
}

bool saveWifiImage(const std::string& path) {
  HttpRequest request(HttpRequest::Proxy::none);
  if (!request.open(wifiBaseUrl() + "?action=snapshot")) {
    request.leaveOpen();
    return true;
  }
  const platform::FileHandle file = platform::createFile(widen(path));
  if (file != nullptr) {
    copy(request, file);
    platform::closeFile(file);
  }
  request.closeSession();
  return file != nullptr;
}

}  // namespace qvx
