#include "platform/system.h"

#include <windows.h>
// mingw-w64's HID headers do not say that the library is C.
extern "C" {
#include <hidsdi.h>
}
#include <setupapi.h>

namespace qvx::platform {

namespace {

class Handle {
 public:
  explicit Handle(HANDLE handle) : handle_(handle) {}
  ~Handle() {
    if (valid()) CloseHandle(handle_);
  }
  Handle(const Handle&) = delete;
  Handle& operator=(const Handle&) = delete;

  bool valid() const { return handle_ != INVALID_HANDLE_VALUE; }
  HANDLE get() const { return handle_; }

 private:
  HANDLE handle_;
};

HANDLE openPath(const std::string& path, DWORD access) {
  return CreateFileA(path.c_str(), access, FILE_SHARE_READ | FILE_SHARE_WRITE, nullptr,
                     OPEN_EXISTING, 0, nullptr);
}

class SystemHidDevice final : public HidDevice {
 public:
  explicit SystemHidDevice(const std::string& path)
      : handle_(openPath(path, GENERIC_READ | GENERIC_WRITE)) {}

  bool setFeature(const std::uint8_t* report, std::uint32_t size) override {
    return HidD_SetFeature(handle_.get(), const_cast<std::uint8_t*>(report), size) != FALSE;
  }
  bool getFeature(std::uint8_t* report, std::uint32_t size) override {
    return HidD_GetFeature(handle_.get(), report, size) != FALSE;
  }

 private:
  Handle handle_;
};

// One data item per usage: a capability over a range of usages counts for each.
std::size_t itemsIn(const HIDP_VALUE_CAPS& value) {
  if (!value.IsRange) return 1;
  return static_cast<std::size_t>(value.Range.UsageMax - value.Range.UsageMin) + 1;
}

// The button or value capabilities of one kind of report, by `query`. Nothing when they cannot be
// had; a device that has none of the kind is not asked.
template <class Caps, class Query>
std::optional<std::vector<Caps>> capsOf(Query query, HIDP_REPORT_TYPE type, USHORT count,
                                        PHIDP_PREPARSED_DATA preparsed) {
  std::vector<Caps> caps(count);
  if (count != 0 && query(type, caps.data(), &count, preparsed) != HIDP_STATUS_SUCCESS) {
    return std::nullopt;
  }
  caps.resize(count);
  return caps;
}

std::optional<HidFeatures> featuresOf(PHIDP_PREPARSED_DATA preparsed) {
  HIDP_CAPS caps{};
  if (HidP_GetCaps(preparsed, &caps) != HIDP_STATUS_SUCCESS) return std::nullopt;
  const struct {
    HIDP_REPORT_TYPE type;
    USHORT buttons, values;
  } reports[] = {{HidP_Input, caps.NumberInputButtonCaps, caps.NumberInputValueCaps},
                 {HidP_Output, caps.NumberOutputButtonCaps, caps.NumberOutputValueCaps},
                 {HidP_Feature, caps.NumberFeatureButtonCaps, caps.NumberFeatureValueCaps}};
  std::optional<std::vector<HIDP_VALUE_CAPS>> values;
  for (const auto& report : reports) {
    if (!capsOf<HIDP_BUTTON_CAPS>(HidP_GetButtonCaps, report.type, report.buttons, preparsed)) {
      return std::nullopt;
    }
    values = capsOf<HIDP_VALUE_CAPS>(HidP_GetValueCaps, report.type, report.values, preparsed);
    if (!values) return std::nullopt;
  }
  HidFeatures features{caps.NumberFeatureButtonCaps, {}};
  for (const HIDP_VALUE_CAPS& value : *values) {  // those of the feature reports, asked last
    features.dataCount += itemsIn(value);
    features.valueReportIds.push_back(value.ReportID);
  }
  return features;
}

std::optional<std::string> devicePath(HDEVINFO devices, SP_DEVICE_INTERFACE_DATA& found) {
  DWORD size = 0;
  SetupDiGetDeviceInterfaceDetailA(devices, &found, nullptr, 0, &size, nullptr);
  std::vector<std::uint64_t> storage(size / sizeof(std::uint64_t) + 1);
  auto* const detail = reinterpret_cast<SP_DEVICE_INTERFACE_DETAIL_DATA_A*>(storage.data());
  detail->cbSize = sizeof(SP_DEVICE_INTERFACE_DETAIL_DATA_A);
  if (!SetupDiGetDeviceInterfaceDetailA(devices, &found, detail, size, nullptr, nullptr)) {
    return std::nullopt;
  }
  return std::string(detail->DevicePath);
}

}  // namespace

std::optional<std::vector<std::string>> system::listHidInterfaces() {
  GUID hid{};
  HidD_GetHidGuid(&hid);
  const HDEVINFO devices =
      SetupDiGetClassDevsA(&hid, nullptr, nullptr, DIGCF_PRESENT | DIGCF_DEVICEINTERFACE);
  if (devices == INVALID_HANDLE_VALUE) return std::nullopt;
  std::vector<std::string> paths;
  SP_DEVICE_INTERFACE_DATA found{};
  found.cbSize = sizeof found;
  for (DWORD i = 0; SetupDiEnumDeviceInterfaces(devices, nullptr, &hid, i, &found); ++i) {
    if (auto path = devicePath(devices, found)) paths.push_back(std::move(*path));
  }
  SetupDiDestroyDeviceInfoList(devices);
  return paths;
}

std::optional<HidFeatures> describeHidFeatures(const std::string& path) {
  const Handle device(openPath(path, 0));
  PHIDP_PREPARSED_DATA preparsed = nullptr;
  HIDD_ATTRIBUTES attributes{};
  attributes.Size = sizeof attributes;
  if (!device.valid() || !HidD_GetPreparsedData(device.get(), &preparsed)) return std::nullopt;
  std::optional<HidFeatures> features;
  if (HidD_GetAttributes(device.get(), &attributes)) features = featuresOf(preparsed);
  HidD_FreePreparsedData(preparsed);
  return features;
}

std::unique_ptr<HidDevice> system::openHid(const std::string& path) {
  return std::make_unique<SystemHidDevice>(path);
}

}  // namespace qvx::platform
