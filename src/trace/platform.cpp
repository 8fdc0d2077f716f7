// The platform as everybody above it knows it: the system's own functions, with a line of the trace
// for each. Nothing is decided here.
#include <atomic>
#include <cstdio>
#include <utility>

#include "platform/system.h"
#include "platform/text.h"
#include "trace/trace.h"

namespace qvx::platform {

using trace::Line;

namespace {

template <class Byte>
std::span<const std::uint8_t> view(const Byte* data, std::size_t size) {
  return {static_cast<const std::uint8_t*>(static_cast<const void*>(data)), size};
}

// Distinguishes handles in the trace. The system may give the same one again.
std::int64_t numberOf(const void* handle) {
  return static_cast<std::int64_t>(reinterpret_cast<std::uintptr_t>(handle));
}

std::string textOf(const PropertySet& set) {
  const auto& d = set.data4;
  char text[40];
  std::snprintf(text, sizeof text, "%08X-%04X-%04X-%02X%02X%02X%02X%02X%02X%02X%02X",
                unsigned{set.data1}, unsigned{set.data2}, unsigned{set.data3}, unsigned{d[0]},
                unsigned{d[1]}, unsigned{d[2]}, unsigned{d[3]}, unsigned{d[4]}, unsigned{d[5]},
                unsigned{d[6]}, unsigned{d[7]});
  return text;
}

}  // namespace

// The Wi-Fi camera.

InternetHandle openUrl(InternetHandle session, const std::wstring& url) {
  Line line("http");
  InternetHandle request = system::openUrl(session, url);
  line.result(request != nullptr).text("url", url).number("request", numberOf(request));
  return request;
}

bool readUrl(InternetHandle request, void* buffer, std::uint32_t capacity,
             std::uint32_t& received) {
  Line line("answer");
  const bool done = system::readUrl(request, buffer, capacity, received);
  line.result(done).number("request", numberOf(request)).number("size", received);
  line.content(view(buffer, received));
  return done;
}

// USB 3 cameras.

namespace {

using OpenDevice = KUSB_BOOL (*)(KUSB_HANDLE*, const KLST_DEVINFO*);
std::atomic<OpenDevice> openDevice = nullptr;  // of the driver that was loaded last

KUSB_BOOL openTraced(KUSB_HANDLE* interfaceHandle, const KLST_DEVINFO* deviceInfo) {
  Line line("usb3-open");
  const KUSB_BOOL done = openDevice.load()(interfaceHandle, deviceInfo);
  line.result(done != 0).text("path", deviceInfo->DevicePath);
  return done;
}

bool traced(bool done, KLST_DEVINFO** deviceInfo, Line& line) {
  line.result(done);
  if (!line.isOn() || !done || *deviceInfo == nullptr) return done;
  const KLST_DEVINFO& device = **deviceInfo;
  line.hex("vid", static_cast<std::uint32_t>(device.Common.Vid), 4)
      .hex("pid", static_cast<std::uint32_t>(device.Common.Pid), 4)
      .text("instance", ansiToWide(device.Common.InstanceID))
      .text("name", ansiToWide(device.DeviceDesc))
      .text("path", ansiToWide(device.DevicePath));
  return done;
}

}  // namespace

bool LstK_Init(KLST_HANDLE* deviceList, int flags) {
  Line line("usb3-list");
  const bool done = system::LstK_Init(deviceList, flags);
  line.result(done);
  return done;
}

bool LstK_FindByVidPid(KLST_HANDLE deviceList, int vid, int pid, KLST_DEVINFO** deviceInfo) {
  Line line("usb3-find");
  return traced(system::LstK_FindByVidPid(deviceList, vid, pid, deviceInfo), deviceInfo, line);
}

bool LstK_MoveNext(KLST_HANDLE deviceList, KLST_DEVINFO** deviceInfo) {
  Line line("usb3-next");
  return traced(system::LstK_MoveNext(deviceList, deviceInfo), deviceInfo, line);
}

bool LibK_LoadDriverAPI(KUSB_DRIVER_API* driverApi, int driverId) {
  const bool done = system::LibK_LoadDriverAPI(driverApi, driverId);
  if (done && trace::isOn() && driverApi->Init != nullptr) {
    openDevice = std::exchange(driverApi->Init, openTraced);
  }
  return done;
}

bool UsbK_ControlTransfer(KUSB_HANDLE interfaceHandle, WINUSB_SETUP_PACKET setup,
                          std::uint8_t* buffer, std::uint32_t length, std::uint32_t* transferred) {
  Line line("usb3");
  const bool isOut = (setup.RequestType & 0x80) == 0;
  const bool done =
      system::UsbK_ControlTransfer(interfaceHandle, setup, buffer, length, transferred);
  line.result(done)
      .hex("type", setup.RequestType, 2)
      .hex("request", setup.Request, 2)
      .hex("value", setup.Value, 4)
      .hex("index", setup.Index, 4)
      .number("length", setup.Length);
  if (isOut || done) line.bytes(isOut ? "sent" : "received", view(buffer, length));
  if (done && transferred != nullptr) line.number("moved", *transferred);
  return done;
}

// Bridge cameras.

namespace {

class TracedFilter final : public TopologyFilter {
 public:
  explicit TracedFilter(std::shared_ptr<TopologyFilter> filter) : filter_(std::move(filter)) {}

  std::vector<std::uint32_t> vendorNodes() override { return filter_->vendorNodes(); }

  PropertyOutcome supports(std::uint32_t node, const PropertySet& set) override {
    Line line("unit-supports");
    const PropertyOutcome outcome = filter_->supports(node, set);
    tell(line, outcome, node, set);
    return outcome;
  }

  PropertyOutcome getProperty(std::uint32_t node, const PropertySet& set, std::uint32_t id,
                              void* data, std::uint32_t size) override {
    Line line("unit-get");
    const PropertyOutcome outcome = filter_->getProperty(node, set, id, data, size);
    tell(line, outcome, node, set).number("id", id).number("size", size);
    if (outcome) line.bytes("received", view(data, size));
    return outcome;
  }

  PropertyOutcome setProperty(std::uint32_t node, const PropertySet& set, std::uint32_t id,
                              const void* data, std::uint32_t size) override {
    Line line("unit-set");
    const PropertyOutcome outcome = filter_->setProperty(node, set, id, data, size);
    tell(line, outcome, node, set).number("id", id).bytes("sent", view(data, size));
    return outcome;
  }

 private:
  static Line& tell(Line& line, PropertyOutcome outcome, std::uint32_t node,
                    const PropertySet& set) {
    line.hex("result", static_cast<std::uint32_t>(outcome.code), 8).number("node", node);
    return line.isOn() ? line.word("set", textOf(set)) : line;
  }

  std::shared_ptr<TopologyFilter> filter_;
};

class TracedHidDevice final : public HidDevice {
 public:
  explicit TracedHidDevice(std::unique_ptr<HidDevice> device) : device_(std::move(device)) {}

  bool setFeature(const std::uint8_t* report, std::uint32_t size) override {
    Line line("hid-set");
    const bool done = device_->setFeature(report, size);
    line.result(done).number("device", numberOf(this)).bytes("sent", view(report, size));
    return done;
  }

  bool getFeature(std::uint8_t* report, std::uint32_t size) override {
    Line line("hid-get");
    const std::uint8_t id = *report;
    const bool done = device_->getFeature(report, size);
    line.result(done).number("device", numberOf(this)).hex("id", id, 2).number("size", size);
    if (done) line.bytes("received", view(report, size));
    return done;
  }

 private:
  std::unique_ptr<HidDevice> device_;
};

class TracedMutex final : public NamedMutex {
 public:
  explicit TracedMutex(std::shared_ptr<NamedMutex> mutex) : mutex_(std::move(mutex)) {}

  bool acquire(std::uint32_t limit_ms) override {
    Line line("busy");
    const bool acquired = mutex_->acquire(limit_ms);
    line.number("limit_ms", limit_ms);
    if (acquired) line.drop();
    return acquired;
  }
  void release() override { mutex_->release(); }

 private:
  std::shared_ptr<NamedMutex> mutex_;
};

}  // namespace

std::vector<std::shared_ptr<TopologyFilter>> openTopologyFilters() {
  Line line("unit-list");
  auto filters = system::openTopologyFilters();
  line.number("count", static_cast<std::int64_t>(filters.size()));
  if (!line.isOn()) return filters;
  for (auto& filter : filters) filter = std::make_shared<TracedFilter>(std::move(filter));
  return filters;
}

std::optional<std::vector<std::string>> listHidInterfaces() {
  Line line("hid-list");
  auto paths = system::listHidInterfaces();
  line.result(paths.has_value());
  if (!line.isOn() || !paths) return paths;
  for (const std::string& path : *paths) line.text("path", ansiToWide(path));
  return paths;
}

std::unique_ptr<HidDevice> openHid(const std::string& path) {
  Line line("hid-open");
  auto device = system::openHid(path);
  if (!line.isOn()) return device;
  device = std::make_unique<TracedHidDevice>(std::move(device));
  line.number("device", numberOf(device.get())).text("path", ansiToWide(path));
  return device;
}

std::shared_ptr<NamedMutex> openNamedMutex(const char* name) {
  auto mutex = system::openNamedMutex(name);
  if (!trace::isOn() || mutex == nullptr) return mutex;
  return std::make_shared<TracedMutex>(std::move(mutex));
}

std::optional<std::uint32_t> runOnWorker(std::function<std::uint32_t()> task,
                                         std::uint32_t limit_ms) {
  Line line("late");  // or not to be had at all
  const auto result = system::runOnWorker(std::move(task), limit_ms);
  line.number("limit_ms", limit_ms);
  if (result) line.drop();
  return result;
}

// Video inputs and their picture properties.

std::vector<VideoInput> listVideoInputs() {
  std::vector<VideoInput> inputs;
  {
    Line line("inputs");
    inputs = system::listVideoInputs();
    line.number("count", static_cast<std::int64_t>(inputs.size()));
  }
  for (const VideoInput& input : inputs)
    Line("input").text("path", input.displayName).text("name", input.friendlyName);
  return inputs;
}

void setProperty(VideoProcAmp& amplifier, PictureProperty property, std::int32_t value) {
  Line line("picture-set");
  system::setProperty(amplifier, property, value);
  line.number("property", static_cast<std::int32_t>(property)).number("value", value);
}

std::optional<std::int32_t> getProperty(VideoProcAmp& amplifier, PictureProperty property) {
  Line line("picture-get");
  const auto value = system::getProperty(amplifier, property);
  line.result(value.has_value()).number("property", static_cast<std::int32_t>(property));
  if (value) line.number("value", *value);
  return value;
}

std::optional<PropertyRange> getPropertyRange(VideoProcAmp& amplifier, PictureProperty property) {
  Line line("picture-range");
  const auto range = system::getPropertyRange(amplifier, property);
  line.result(range.has_value()).number("property", static_cast<std::int32_t>(property));
  if (range) {
    line.number("min", range->min)
        .number("max", range->max)
        .number("step", range->step)
        .number("default", range->defaultValue);
  }
  return range;
}

// Time, and other things of the machine.

void tellDebugger(const std::string& line) {
  Line("note").text("text", std::string_view(line));
  system::tellDebugger(line);
}

void pause(std::uint32_t milliseconds) {
  Line line("pause");
  system::pause(milliseconds);
  line.number("ms", milliseconds);
}

void startThreadTimer(std::uintptr_t identifier, std::uint32_t period_ms,
                      TimerProcedure procedure) {
  Line line("timer");
  system::startThreadTimer(identifier, period_ms, procedure);
  line.number("identifier", static_cast<std::int64_t>(identifier)).number("period_ms", period_ms);
}

}  // namespace qvx::platform
