#include "platform/system.h"

#include <windows.h>
// The kernel-streaming headers in the order they need.
#include <dshow.h>
#include <ks.h>
#include <ksmedia.h>
#include <ksproxy.h>

#include <wrl/client.h>

#include "platform/windows/topology_info.h"
#include "platform/windows/video_monikers.h"

namespace qvx::platform {

using Microsoft::WRL::ComPtr;

namespace {

GUID guidOf(const PropertySet& set) {
  GUID guid{set.data1, set.data2, set.data3, {}};
  for (std::size_t i = 0; i < set.data4.size(); ++i) guid.Data4[i] = set.data4[i];
  return guid;
}

class KsFilter final : public TopologyFilter {
 public:
  KsFilter(ComPtr<IKsTopologyInfo> topology, ComPtr<IKsControl> control)
      : topology_(std::move(topology)), control_(std::move(control)) {}

  std::vector<std::uint32_t> vendorNodes() override {
    std::vector<std::uint32_t> nodes;
    DWORD count = 0;
    if (FAILED(topology_->get_NumNodes(&count))) return nodes;
    for (DWORD node = 0; node < count; ++node) {
      GUID type{};
      if (SUCCEEDED(topology_->get_NodeType(node, &type)) &&
          IsEqualGUID(type, KSNODETYPE_DEV_SPECIFIC)) {
        nodes.push_back(node);
      }
    }
    return nodes;
  }

  PropertyOutcome supports(std::uint32_t node, const PropertySet& set) override {
    return request(node, set, 0, KSPROPERTY_TYPE_SETSUPPORT, nullptr, 0);
  }

  PropertyOutcome getProperty(std::uint32_t node, const PropertySet& set, std::uint32_t id,
                              void* data, std::uint32_t size) override {
    return request(node, set, id, KSPROPERTY_TYPE_GET, data, size);
  }

  PropertyOutcome setProperty(std::uint32_t node, const PropertySet& set, std::uint32_t id,
                              const void* data, std::uint32_t size) override {
    return request(node, set, id, KSPROPERTY_TYPE_SET, const_cast<void*>(data), size);
  }

 private:
  PropertyOutcome request(std::uint32_t node, const PropertySet& set, std::uint32_t id, ULONG type,
                          void* data, std::uint32_t size) {
    KSP_NODE property{};
    property.Property.Set = guidOf(set);
    property.Property.Id = id;
    property.Property.Flags = type | KSPROPERTY_TYPE_TOPOLOGY;
    property.NodeId = node;
    ULONG returned = 0;
    return static_cast<std::int32_t>(
        control_->KsProperty(&property.Property, sizeof property, data, size, &returned));
  }

  ComPtr<IKsTopologyInfo> topology_;
  ComPtr<IKsControl> control_;
};

std::shared_ptr<TopologyFilter> openFilter(IMoniker& moniker) {
  ComPtr<IBaseFilter> filter;
  ComPtr<IKsTopologyInfo> topology;
  ComPtr<IKsControl> control;
  if (FAILED(moniker.BindToObject(nullptr, nullptr, IID_IBaseFilter, &filter)) ||
      FAILED(filter->QueryInterface(IID_IKsTopologyInfo, &topology)) ||
      FAILED(filter->QueryInterface(IID_IKsControl, &control))) {
    return nullptr;
  }
  return std::make_shared<KsFilter>(std::move(topology), std::move(control));
}

}  // namespace

std::vector<std::shared_ptr<TopologyFilter>> system::openTopologyFilters() {
  std::vector<std::shared_ptr<TopologyFilter>> filters;
  forEachVideoMoniker([&filters](IMoniker& moniker) {
    if (auto filter = openFilter(moniker)) filters.push_back(std::move(filter));
    return true;
  });
  return filters;
}

}  // namespace qvx::platform
