// The simulated machine: what src/platform finds when the library runs natively. Tests and tools
// furnish it with cameras, let the library run, and read in the journal what a camera would have
// seen.
#pragma once

#include <algorithm>
#include <atomic>
#include <concepts>
#include <cstdint>
#include <deque>
#include <functional>
#include <limits>
#include <map>
#include <memory>
#include <mutex>
#include <optional>
#include <random>
#include <set>
#include <span>
#include <string>
#include <thread>
#include <typeindex>
#include <utility>
#include <vector>

#include "simulator/model/bridge_chip_extension_unit.h"
#include "simulator/model/picture_controls.h"
#include "simulator/model/usb3_function.h"
#include "simulator/platform/clock.h"

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

// What the library does to the machine, as faults count it.
enum class Operation {
  access,      // of a device; the journal has them all
  systemCall,  // that the system may refuse; not in the journal
};

// What goes wrong, counted in operations from the moment it is set: number 1 is the next.
struct Fault {
  enum Kind { none, fails, stalls, unplugs } kind = none;
  std::uint64_t first = 1;
  std::uint64_t count = Clock::forever;
  std::uint64_t stall_ms = 0;
  std::optional<Operation> only = Operation::access;  // nothing: operations of either kind
  unsigned percent = 100;  // of these operations suffer, as the machine's own dice have it
};

// Objects that are open at the moment.
struct OpenCounts {
  int internetSessions = 0, internetRequests = 0;
  int deviceLists = 0, usbHandles = 0;
  int hidDevices = 0, filters = 0;
  int mutexHandles = 0;
  int comInitializations = 0;
  int inputLists = 0, captureFilters = 0, filterGraphs = 0, captureBuilders = 0;
  int streamConfigs = 0, videoProcAmps = 0;
  int files = 0;

  bool operator==(const OpenCounts&) const = default;
};

class World {
 public:
  World();

  Clock& clock;  // outlives the machine: a worker's last step may still be on its way out of it

  // Furniture.
  HttpServer wifi;  // none: nothing answers
  std::map<std::string, std::string> environment;
  bool libusbkInstalled = true;
  std::vector<UsbDevice> usbDevices;
  std::vector<VideoInput> videoInputs;
  std::optional<std::vector<HidInterface>> hidInterfaces{std::in_place};
  bool threadsStart = true;
  std::set<std::wstring> folders{L""};  // those that exist; L"" is the current one
  std::optional<std::size_t> diskRoom;  // bytes that still fit; nothing: as many as there are

  // What happened.
  OpenCounts open;
  int threadsStarted = 0;
  std::map<std::wstring, std::string> files;
  std::vector<std::string> takeJournal();
  std::uint64_t operations(Operation kind = Operation::access) const;
  std::uint64_t stalled_ms = 0;  // what stalls have cost the thread that made the machine

  // From the next operation on.
  void set(Fault fault);

  // All cameras come and go together. What was opened while they were there stays dead afterwards.
  // Odd while they are gone.
  unsigned connection() const { return connection_; }
  bool pluggedIn() const { return connection_ % 2 == 0; }
  void unplug() { connection_ += pluggedIn() ? 1 : 0; }
  void plugIn() { connection_ += pluggedIn() ? 0 : 1; }

  // For long runs. No journal; of the objects that the library leaves open only so many of each
  // kind are kept, the others merely counted; workers run on their caller's thread, which is the
  // same as long as nothing stalls: where a stall is near they get threads all the same.
  bool keepsJournal = true;
  std::size_t objectsKept = std::numeric_limits<std::size_t>::max();
  bool workersInline = false;

  // For fuzzing. Asked at every operation whether it may succeed, and with workersInline at every
  // worker whether it comes late; may also throw.
  std::function<bool()> permits, workerIsLate;

  // Lets the message loop run: dispatches the timers that fall due.
  void pumpMessages(std::uint64_t milliseconds);

  // For the platform's functions: notes what is done, and says whether it may succeed.
  template <std::invocable Line>
  void note(const Line& line) {
    if (keepsJournal) write(line());
  }
  template <std::invocable Line>
  bool operate(const Line& line) {
    note(line);
    return proceeds(Operation::access);
  }
  bool grants() { return proceeds(Operation::systemCall); }
  bool runsInline() const;

  // Objects that the library has opened, kept reachable as the system keeps them.
  template <class Object>
  Object* keep(Object object) {
    auto kept = std::make_shared<Object>(std::move(object));
    std::deque<std::shared_ptr<void>>& all = opened_[typeid(Object)];
    if (all.size() >= objectsKept) all.pop_front();
    all.push_back(kept);
    return kept.get();
  }
  template <class Object>
  Object* kept(const void* handle) {
    const auto& all = opened_[typeid(Object)];
    const auto found = std::find_if(
        all.rbegin(), all.rend(), [handle](const auto& object) { return object.get() == handle; });
    return found == all.rend() ? nullptr : static_cast<Object*>(found->get());
  }
  template <class Object>
  bool drop(const Object* object) {
    return std::erase_if(opened_[typeid(Object)],
                         [object](const auto& other) { return other.get() == object; }) != 0;
  }

  struct Timer {
    std::uint64_t period_ms, due_ms;
    std::function<void()> run;
  };
  std::vector<Timer> timers;

  // Guards everything but the clock; never held across a wait.
  mutable std::mutex guard;

 private:
  void write(std::string line);
  bool proceeds(Operation kind);
  Fault countedFault(Operation kind);

  const std::thread::id maker_ = std::this_thread::get_id();
  std::vector<std::string> journal_;
  Fault fault_;
  std::map<Operation, std::uint64_t> operations_;
  std::uint64_t faultCounted_ = 0;
  std::mt19937 dice_;
  std::atomic<unsigned> connection_ = 0;
  std::map<std::type_index, std::deque<std::shared_ptr<void>>> opened_;
};

// The one machine of this process.
World& world();

// Lets late workers finish and makes a new, empty machine; the old one is gone.
void resetWorld();

// Bytes as a person writes them: "62 80".
std::string hex(std::span<const std::uint8_t> bytes);

}  // namespace qvx::simulator
