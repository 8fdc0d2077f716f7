// What the simulated machine has: tests and tools furnish it.
#pragma once

#include <memory>
#include <set>

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

// What carries bytes to a simulated camera, by whichever of its interfaces; all that it does not
// have refuses.
class CameraPort {
 public:
  virtual ~CameraPort() = default;

  // A node of its capture filter's topology.
  virtual bool supports(const PropertySetId& /*set*/) { return false; }
  virtual bool setProperty(const PropertySetId& /*set*/, std::uint32_t /*selector*/,
                           Bytes /*data*/) {
    return false;
  }
  virtual bool getProperty(const PropertySetId& /*set*/, std::uint32_t /*selector*/,
                           Room /*data*/) {
    return false;
  }

  // Its feature reports; byte 0 is the id.
  virtual bool setFeature(Bytes /*report*/) { return false; }
  virtual bool getFeature(Room /*report*/) { return false; }

  // Control transfers. Returns the bytes moved, or nothing when the camera stalls the request.
  virtual std::optional<std::size_t> transfer(const UsbSetup& /*setup*/, Room /*buffer*/) {
    return std::nullopt;
  }
};

struct VideoInput {
  std::wstring path;
  std::optional<std::wstring> name;
  // Vendor-specific nodes by their place in the topology; a place without one is another kind of
  // node. Empty: the filter has no topology.
  std::vector<std::shared_ptr<CameraPort>> nodes;
  PictureControls* picture = nullptr;  // null: the filter has no picture properties
  bool opens = true;
};

struct HidInterface {
  std::string path;
  std::optional<std::size_t> featureItems;  // nothing: does not let itself be described
  std::vector<std::uint8_t> featureReportIds;
  std::shared_ptr<CameraPort> device;  // null: cannot be opened
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
