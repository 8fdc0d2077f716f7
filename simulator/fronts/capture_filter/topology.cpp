#include "simulator/fronts/capture_filter/topology.h"

#include <bit>

namespace qvx::simulator {

namespace {

constexpr GUID cameraTerminal = {STATIC_KSNODETYPE_VIDEO_CAMERA_TERMINAL};
constexpr GUID processingUnit = {STATIC_KSNODETYPE_VIDEO_PROCESSING};
constexpr GUID streamingTerminal = {STATIC_KSNODETYPE_VIDEO_STREAMING};
constexpr GUID extensionUnit = {STATIC_KSNODETYPE_DEV_SPECIFIC};

struct Node {
  const GUID& type;
  const PropertySetId* set;  // the one property set that it has
};

// An extension unit of another maker stands first: a client must ask each for the set it wants.
constexpr Node bridgeNodes[] = {
    {cameraTerminal, nullptr},          {extensionUnit, nullptr},
    {processingUnit, nullptr},          {extensionUnit, &bridgeRegisterSet},
    {extensionUnit, &bridgeCommandSet}, {streamingTerminal, nullptr},
};
constexpr Node variant1Nodes[] = {
    {cameraTerminal, nullptr},
    {processingUnit, nullptr},
    {extensionUnit, &bridgeVariant1Set},
    {streamingTerminal, nullptr},
};
constexpr Node foreignNodes[] = {
    {cameraTerminal, nullptr},
    {processingUnit, nullptr},
    {extensionUnit, nullptr},
    {streamingTerminal, nullptr},
};
constexpr Node plainNodes[] = {
    {cameraTerminal, nullptr},
    {processingUnit, nullptr},
    {streamingTerminal, nullptr},
};

std::span<const Node> nodesOf(const VirtualCamera& camera) {
  switch (static_cast<Unit>(camera.description().unit)) {
    case Unit::bridge:
      return bridgeNodes;
    case Unit::variant1:
      return variant1Nodes;
    case Unit::foreign:
      return foreignNodes;
    default:
      return plainNodes;
  }
}

HRESULT failure(DWORD error) {
  return HRESULT_FROM_WIN32(error);
}

}  // namespace

STDMETHODIMP Topology::get_NumCategories(DWORD* count) {
  *count = 1;
  return S_OK;
}

STDMETHODIMP Topology::get_Category(DWORD index, GUID* category) {
  if (index != 0) return E_INVALIDARG;
  *category = {STATIC_KSCATEGORY_VIDEO};
  return S_OK;
}

STDMETHODIMP Topology::get_NumConnections(DWORD* count) {
  *count = 0;
  return S_OK;
}

STDMETHODIMP Topology::get_ConnectionInfo(DWORD, KSTOPOLOGY_CONNECTION*) {
  return E_INVALIDARG;
}

STDMETHODIMP Topology::get_NodeName(DWORD, WCHAR*, DWORD, DWORD* length) {
  *length = 0;
  return E_NOTIMPL;
}

STDMETHODIMP Topology::get_NumNodes(DWORD* count) {
  *count = static_cast<DWORD>(nodesOf(camera_).size());
  return S_OK;
}

STDMETHODIMP Topology::get_NodeType(DWORD node, GUID* type) {
  const auto nodes = nodesOf(camera_);
  if (node >= nodes.size()) return E_INVALIDARG;
  *type = nodes[node].type;
  return S_OK;
}

STDMETHODIMP Topology::CreateNodeInstance(DWORD node, REFIID iid, void** object) {
  const auto nodes = nodesOf(camera_);
  if (node >= nodes.size()) return E_INVALIDARG;
  return QueryInterface(iid, object);
}

STDMETHODIMP Topology::KsProperty(PKSPROPERTY property, ULONG propertySize, LPVOID data,
                                  ULONG dataSize, ULONG* returned) {
  if (returned == nullptr) return E_POINTER;
  *returned = 0;
  const bool ofNode = (property->Flags & KSPROPERTY_TYPE_TOPOLOGY) != 0;
  if (!ofNode || propertySize < sizeof(KSP_NODE)) return failure(ERROR_INVALID_PARAMETER);
  const ULONG node = reinterpret_cast<const KSP_NODE*>(property)->NodeId;
  const auto nodes = nodesOf(camera_);
  if (node >= nodes.size()) return failure(ERROR_INVALID_PARAMETER);
  const GUID& set = property->Set;
  if (nodes[node].set == nullptr || *nodes[node].set != std::bit_cast<PropertySetId>(set))
    return failure(ERROR_SET_NOT_FOUND);

  auto* const bytes = static_cast<std::uint8_t*>(data);
  std::optional<std::size_t> moved;
  switch (property->Flags & ~KSPROPERTY_TYPE_TOPOLOGY) {
    case KSPROPERTY_TYPE_SETSUPPORT:
      return S_OK;
    case KSPROPERTY_TYPE_SET:
      moved = camera_.set(set, property->Id, {bytes, dataSize});
      break;
    case KSPROPERTY_TYPE_GET:
      moved = camera_.get(set, property->Id, {bytes, dataSize});
      *returned = static_cast<ULONG>(moved.value_or(0));
      break;
    default:
      return failure(ERROR_NOT_SUPPORTED);
  }
  return moved ? S_OK : failure(ERROR_GEN_FAILURE);
}

STDMETHODIMP Topology::KsMethod(PKSMETHOD, ULONG, LPVOID, ULONG, ULONG*) {
  return E_NOTIMPL;
}

STDMETHODIMP Topology::KsEvent(PKSEVENT, ULONG, LPVOID, ULONG, ULONG*) {
  return E_NOTIMPL;
}

}  // namespace qvx::simulator
