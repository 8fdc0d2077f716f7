// What the simulated machine has: tests and tools furnish it.
#pragma once

#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <set>
#include <span>
#include <string>
#include <vector>

#include "simulator/model/picture_controls.h"
#include "simulator/model/property_sets.h"
#include "simulator/model/usb3_function.h"

namespace qvx::simulator {

// What answers at an address, and how.
struct HttpAnswer {
  bool reachable = true;
  std::vector<std::string> chunks;  // what successive reads give; after the last, the end
  bool breaksOff = false;           // a read after the last chunk fails instead
};
using HttpServer = std::function<HttpAnswer(const std::string& url)>;

// A node of a capture filter's topology, or a device with feature reports: what carries the bytes
// to a simulated bridge.
class PropertyNode {
 public:
  virtual ~PropertyNode() = default;
  virtual bool supports(const PropertySetId& set) = 0;
  virtual bool set(const PropertySetId& set, std::uint32_t selector,
                   std::span<const std::uint8_t> bytes) = 0;
  virtual bool get(const PropertySetId& set, std::uint32_t selector,
                   std::span<std::uint8_t> bytes) = 0;
};

class FeatureDevice {
 public:
  virtual ~FeatureDevice() = default;
  virtual bool set(std::span<const std::uint8_t> report) = 0;
  virtual bool get(std::span<std::uint8_t> report) = 0;  // byte 0 is the report id asked for
};

struct VideoInput {
  std::wstring path;
  std::optional<std::wstring> name;
  // Vendor-specific nodes by their place in the topology; a place without one is another kind of
  // node. Empty: the filter has no topology.
  std::vector<std::shared_ptr<PropertyNode>> nodes;
  PictureControls* picture = nullptr;  // null: the filter has no picture properties
  bool opens = true;
};

struct HidInterface {
  std::string path;
  std::optional<std::size_t> featureItems;  // nothing: does not let itself be described
  std::vector<std::uint8_t> featureReportIds;
  std::shared_ptr<FeatureDevice> device;  // null: cannot be opened
};

struct UsbPipe {
  std::uint8_t id;
  int type;
  unsigned interval, maximumPacketSize;
};

// What carries control transfers to a simulated USB 3 camera. Returns the bytes moved, or nothing
// when the camera stalled the request.
class ControlEndpoint {
 public:
  virtual ~ControlEndpoint() = default;
  virtual std::optional<std::size_t> transfer(const UsbSetup& setup,
                                              std::span<std::uint8_t> buffer) = 0;
};

struct UsbDevice {
  int vendorId = 0, productId = 0;
  std::string instance, description, maker;
  std::vector<UsbPipe> pipes;
  bool opens = true;
  std::shared_ptr<ControlEndpoint> endpoint;
};

struct Furniture {
  HttpServer wifi;  // none: nothing answers
  std::map<std::string, std::string> environment;
  bool libusbkInstalled = true;
  std::vector<UsbDevice> usbDevices;
  std::vector<VideoInput> videoInputs;
  std::optional<std::vector<HidInterface>> hidInterfaces{std::in_place};
  bool threadsStart = true;
  std::set<std::wstring> folders{L""};  // those that exist; L"" is the current one
  std::optional<std::size_t> diskRoom;  // bytes that still fit; nothing: as many as there are
  std::map<std::wstring, std::string> files;
};

}  // namespace qvx::simulator
