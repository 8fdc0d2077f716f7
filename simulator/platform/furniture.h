// The equipment of the simulated machine: devices, files, environment. Tests and tools fill it in.
#pragma once

#include <memory>
#include <set>

#include "simulator/model/picture_controls.h"
#include "simulator/model/property_sets.h"
#include "simulator/model/usb3_function.h"

namespace qvx::simulator {

// The response to a request.
struct HttpAnswer {
  bool reachable = true;
  std::vector<std::string> chunks;  // results of successive reads; then the end
  bool breaksOff = false;           // a read after the last chunk fails
};
using HttpServer = std::function<HttpAnswer(const std::string& url)>;

// Transfers bytes to and from a simulated camera over any of its interfaces; an interface that the
// camera lacks refuses.
class CameraPort {
 public:
  virtual ~CameraPort() = default;

  // A node in the topology of its capture filter.
  virtual bool supports(const PropertySetId& /*set*/) { return false; }
  virtual bool setProperty(const PropertySetId& /*set*/, std::uint32_t /*selector*/,
                           Bytes /*data*/) {
    return false;
  }
  virtual bool getProperty(const PropertySetId& /*set*/, std::uint32_t /*selector*/,
                           Room /*data*/) {
    return false;
  }

  // Feature reports; byte 0 is the id.
  virtual bool setFeature(Bytes /*report*/) { return false; }
  virtual bool getFeature(Room /*report*/) { return false; }

  // Control transfers. Returns the number of bytes moved, or nothing when the camera stalls the
  // request.
  virtual std::optional<std::size_t> transfer(const UsbSetup& /*setup*/, Room /*buffer*/) {
    return std::nullopt;
  }
};

struct VideoInput {
  std::wstring path;
  std::optional<std::wstring> name;
  // Vendor-specific nodes by their index in the topology; null stands for a node of another kind.
  // Empty: the filter has no topology.
  std::vector<std::shared_ptr<CameraPort>> nodes;
  PictureControls* picture = nullptr;  // null: the filter has no picture properties
  bool opens = true;
};

struct HidInterface {
  std::string path;
  std::optional<std::size_t> featureItems;  // nothing: its capabilities cannot be read
  std::vector<std::uint8_t> featureReportIds;
  std::shared_ptr<CameraPort> device;  // null if it cannot be opened
};

struct UsbPipe {
  std::uint8_t id;
  int type;
  unsigned interval, maximumPacketSize;
};

struct UsbDevice {
  int vendorId = 0, productId = 0;
  std::string instance, description, maker;
  std::vector<UsbPipe> pipes;
  bool opens = true;
  std::shared_ptr<CameraPort> endpoint;
};

struct Furniture {
  HttpServer wifi;  // empty: no server
  std::map<std::string, std::string> environment;
  bool libusbkInstalled = true;
  std::vector<UsbDevice> usbDevices;
  std::vector<VideoInput> videoInputs;
  std::optional<std::vector<HidInterface>> hidInterfaces{std::in_place};
  bool threadsStart = true;
  std::set<std::wstring> folders{L""};  // existing folders; L"" is the current one
  std::optional<std::size_t> diskRoom;  // free space in bytes; nothing: unlimited
  std::map<std::wstring, std::string> files;
};

}  // namespace qvx::simulator
