// Capture filters as topologies of nodes, and the properties of their vendor-specific nodes (the
// extension units of a USB video camera).
#pragma once

#include <array>
#include <cstdint>
#include <memory>
#include <vector>

namespace qvx::platform {

// A property set's GUID, in the usual four fields.
struct PropertySet {
  std::uint32_t data1;
  std::uint16_t data2, data3;
  std::array<std::uint8_t, 8> data4;

  bool operator==(const PropertySet&) const = default;
};

// How a property request ended: true unless it was refused, and the system's own code for it.
struct PropertyOutcome {
  std::int32_t code;  // an HRESULT

  PropertyOutcome(std::int32_t result) : code(result) {}
  PropertyOutcome(bool done) : code(done ? 0 : -0x7FFFBFFB) {}  // unspecified failure
  operator bool() const { return code >= 0; }
};

// One video input's filter. Any thread may call; a filter whose camera is gone refuses everything.
class TopologyFilter {
 public:
  virtual ~TopologyFilter() = default;

  // Ids of the vendor-specific nodes, in the topology's order.
  virtual std::vector<std::uint32_t> vendorNodes() = 0;

  // Whether the node answers that it supports the set.
  virtual PropertyOutcome supports(std::uint32_t node, const PropertySet& set) = 0;

  // One property request to a node with exactly `size` bytes. A refused or short get may have
  // changed any of the bytes.
  virtual PropertyOutcome getProperty(std::uint32_t node, const PropertySet& set, std::uint32_t id,
                                      void* data, std::uint32_t size) = 0;
  virtual PropertyOutcome setProperty(std::uint32_t node, const PropertySet& set, std::uint32_t id,
                                      const void* data, std::uint32_t size) = 0;
};

// A filter for every video input that can be opened and has a topology, in the system's order.
// Needs COM on the calling thread.
std::vector<std::shared_ptr<TopologyFilter>> openTopologyFilters();

}  // namespace qvx::platform
