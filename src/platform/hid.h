// Human-interface devices and their feature reports.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace qvx::platform {

// What a device says of its feature reports.
struct HidFeatures {
  std::size_t dataCount;                     // data items in all feature reports
  std::vector<std::uint8_t> valueReportIds;  // report id of each value capability, in order
};

// Paths of the HID interfaces that are present. Nothing when the list cannot be had.
std::optional<std::vector<std::string>> listHidInterfaces();

// Opens the device for query only and asks for its feature reports. Nothing when the device does
// not let itself be described.
std::optional<HidFeatures> describeHidFeatures(const std::string& path);

// An opened device. Its reports fail when it could not be opened or is gone. Any thread may call.
class HidDevice {
 public:
  virtual ~HidDevice() = default;

  // Sends or fetches one feature report; byte 0 of the `size` bytes is the report id.
  virtual bool setFeature(const std::uint8_t* report, std::uint32_t size) = 0;
  virtual bool getFeature(std::uint8_t* report, std::uint32_t size) = 0;
};

// Opens the path for reading and writing, shared. Never null.
std::unique_ptr<HidDevice> openHid(const std::string& path);

}  // namespace qvx::platform
