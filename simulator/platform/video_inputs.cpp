// Video inputs, their topologies and HID devices of the simulated machine.
#include "platform/system.h"

#include "simulator/platform/world.h"

namespace qvx::platform {

namespace {

using namespace simulator;

simulator::PropertySetId idOf(const PropertySet& set) {
  return {set.data1, set.data2, set.data3, set.data4};
}

class SimulatedFilter final : public TopologyFilter {
 public:
  using Nodes = std::vector<std::shared_ptr<CameraPort>>;

  explicit SimulatedFilter(Nodes nodes) : nodes_(std::move(nodes)) {}

  std::vector<std::uint32_t> vendorNodes() override {
    std::vector<std::uint32_t> ids;
    if (!world().grants()) return ids;
    for (std::uint32_t id = 0; id < nodes_.size(); ++id) {
      if (nodes_[id] != nullptr) ids.push_back(id);
    }
    return ids;
  }

  PropertyOutcome supports(std::uint32_t node, const PropertySet& set) override {
    return world().grants() && connection_.isThere() && nodes_.at(node)->supports(idOf(set));
  }

  PropertyOutcome getProperty(std::uint32_t node, const PropertySet& set, std::uint32_t id,
                              void* data, std::uint32_t size) override {
    return world().operate("get ", PropertyId{idOf(set), id}, " ", size) && connection_.isThere() &&
           nodes_.at(node)->getProperty(idOf(set), id, {static_cast<std::uint8_t*>(data), size});
  }

  PropertyOutcome setProperty(std::uint32_t node, const PropertySet& set, std::uint32_t id,
                              const void* data, std::uint32_t size) override {
    const Bytes bytes(static_cast<const std::uint8_t*>(data), size);
    return world().operate("set ", PropertyId{idOf(set), id}, ": ", bytes) &&
           connection_.isThere() && nodes_.at(node)->setProperty(idOf(set), id, bytes);
  }

 private:
  Nodes nodes_;
  std::shared_ptr<void> open_ = openObject(&OpenCounts::filters);
  CameraConnection connection_;
};

class SimulatedHidDevice final : public HidDevice {
 public:
  explicit SimulatedHidDevice(std::shared_ptr<CameraPort> device) : device_(std::move(device)) {}

  bool setFeature(const std::uint8_t* report, std::uint32_t size) override {
    const Bytes bytes(report, size);
    return world().operate("set feature ", bytes) && isThere() && device_->setFeature(bytes);
  }
  bool getFeature(std::uint8_t* report, std::uint32_t size) override {
    return world().operate("get feature ", Bytes(report, 1), " ", size) && isThere() &&
           device_->getFeature({report, size});
  }

 private:
  bool isThere() const { return device_ != nullptr && connection_.isThere(); }

  std::shared_ptr<CameraPort> device_;
  std::shared_ptr<void> open_ = openObject(&OpenCounts::hidDevices);
  CameraConnection connection_;
};

// Null if the device does not exist or cannot be opened.
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
