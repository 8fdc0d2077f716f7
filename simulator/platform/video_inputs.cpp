// Video inputs, their topologies and HID devices of the simulated machine.
#include "platform/system.h"

#include <cstdio>
#include <utility>

#include "simulator/platform/world.h"

namespace qvx::platform {

namespace {

using simulator::FeatureDevice;
using simulator::hex;
using simulator::PropertyNode;
using simulator::world;

simulator::PropertySetId idOf(const PropertySet& set) {
  return {set.data1, set.data2, set.data3, set.data4};
}

// "set 5A215226/26": a request's set, by its first field, and its selector.
std::string lineOf(const char* verb, const PropertySet& set, std::uint32_t id) {
  char line[64];
  std::snprintf(line, sizeof line, "%s %08X/%u", verb, set.data1, id);
  return line;
}

class SimulatedFilter final : public TopologyFilter {
 public:
  explicit SimulatedFilter(std::vector<std::shared_ptr<PropertyNode>> nodes)
      : nodes_(std::move(nodes)) {
    const std::lock_guard<std::mutex> lock(world().guard);
    ++world().open.filters;
  }
  ~SimulatedFilter() override {
    const std::lock_guard<std::mutex> lock(world().guard);
    --world().open.filters;
  }

  std::vector<std::uint32_t> vendorNodes() override {
    std::vector<std::uint32_t> ids;
    if (!world().grants()) return ids;
    for (std::uint32_t id = 0; id < nodes_.size(); ++id) {
      if (nodes_[id] != nullptr) ids.push_back(id);
    }
    return ids;
  }

  PropertyOutcome supports(std::uint32_t node, const PropertySet& set) override {
    return world().grants() && isThere() && nodes_.at(node)->supports(idOf(set));
  }

  PropertyOutcome getProperty(std::uint32_t node, const PropertySet& set, std::uint32_t id,
                              void* data, std::uint32_t size) override {
    const auto line = [&] { return lineOf("get", set, id) + " " + std::to_string(size); };
    return world().operate(line) && isThere() &&
           nodes_.at(node)->get(idOf(set), id, {static_cast<std::uint8_t*>(data), size});
  }

  PropertyOutcome setProperty(std::uint32_t node, const PropertySet& set, std::uint32_t id,
                              const void* data, std::uint32_t size) override {
    const std::span bytes(static_cast<const std::uint8_t*>(data), size);
    const auto line = [&] { return lineOf("set", set, id) + ": " + hex(bytes); };
    return world().operate(line) && isThere() && nodes_.at(node)->set(idOf(set), id, bytes);
  }

 private:
  bool isThere() const { return connection_ == world().connection(); }

  std::vector<std::shared_ptr<PropertyNode>> nodes_;
  const unsigned connection_ = world().connection();  // of the cameras, when it was opened
};

class SimulatedHidDevice final : public HidDevice {
 public:
  explicit SimulatedHidDevice(std::shared_ptr<FeatureDevice> device) : device_(std::move(device)) {
    const std::lock_guard<std::mutex> lock(world().guard);
    ++world().open.hidDevices;
  }
  ~SimulatedHidDevice() override {
    const std::lock_guard<std::mutex> lock(world().guard);
    --world().open.hidDevices;
  }

  bool setFeature(const std::uint8_t* report, std::uint32_t size) override {
    const std::span bytes(report, size);
    return world().operate([&] { return "set feature " + hex(bytes); }) && isThere() &&
           device_->set(bytes);
  }
  bool getFeature(std::uint8_t* report, std::uint32_t size) override {
    const std::span bytes(report, size);
    const auto line = [&] {
      return "get feature " + hex(bytes.first(1)) + " " + std::to_string(size);
    };
    return world().operate(line) && isThere() && device_->get(bytes);
  }

 private:
  bool isThere() const { return device_ != nullptr && connection_ == world().connection(); }

  std::shared_ptr<FeatureDevice> device_;
  const unsigned connection_ = world().connection();  // of the cameras, when it was opened
};

// Null for one that is not there, or that the system does not open.
const simulator::HidInterface* hidInterfaceAt(const std::string& path) {
  if (!world().grants() || !world().pluggedIn()) return nullptr;
  for (const auto& interface : *world().hidInterfaces) {
    if (interface.path == path) return &interface;
  }
  return nullptr;
}

}  // namespace

std::vector<VideoInput> system::listVideoInputs() {
  std::vector<VideoInput> list;
  if (!world().grants() || !world().pluggedIn()) return list;
  for (const auto& input : world().videoInputs) {
    if (input.name) list.push_back({input.path, *input.name});
  }
  return list;
}

std::vector<std::shared_ptr<TopologyFilter>> system::openTopologyFilters() {
  std::vector<std::shared_ptr<TopologyFilter>> filters;
  if (!world().grants() || !world().pluggedIn()) return filters;
  for (const auto& input : world().videoInputs) {
    const bool opens = !input.nodes.empty() && world().grants();
    if (opens) filters.push_back(std::make_shared<SimulatedFilter>(input.nodes));
  }
  return filters;
}

std::optional<std::vector<std::string>> system::listHidInterfaces() {
  if (!world().hidInterfaces || !world().grants()) return std::nullopt;
  std::vector<std::string> paths;
  if (!world().pluggedIn()) return paths;
  for (const auto& interface : *world().hidInterfaces) paths.push_back(interface.path);
  return paths;
}

std::optional<HidFeatures> describeHidFeatures(const std::string& path) {
  const auto* const interface = hidInterfaceAt(path);
  if (interface == nullptr || !interface->featureItems) return std::nullopt;
  return HidFeatures{*interface->featureItems, interface->featureReportIds};
}

std::unique_ptr<HidDevice> system::openHid(const std::string& path) {
  const auto* const interface = hidInterfaceAt(path);
  return std::make_unique<SimulatedHidDevice>(interface == nullptr ? nullptr : interface->device);
}

}  // namespace qvx::platform
