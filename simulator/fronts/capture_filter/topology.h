// The nodes of a virtual camera's filter, and the properties of its extension units.
#pragma once

#include <bit>

#include "simulator/fronts/capture_filter/com_object.h"
#include "simulator/fronts/capture_filter/kernel_streaming.h"
#include "simulator/fronts/pipe_client.h"

namespace qvx::simulator {

// What processes pictures, then the extension units, then where the pictures go.
class Topology final : public ComPart<IKsTopologyInfo, IKsControl> {
 public:
  Topology(IUnknown& filter, PipeClient& camera, Unit unit)
      : ComPart(filter), camera_(camera), extensions_(extensionsOf(unit)) {}

  STDMETHODIMP get_NumCategories(DWORD* count) override {
    *count = 1;
    return S_OK;
  }
  STDMETHODIMP get_Category(DWORD index, GUID* category) override {
    if (index != 0) return E_INVALIDARG;
    *category = {STATIC_KSCATEGORY_VIDEO};
    return S_OK;
  }
  STDMETHODIMP get_NumConnections(DWORD* count) override {
    *count = 0;
    return S_OK;
  }
  STDMETHODIMP get_ConnectionInfo(DWORD, KSTOPOLOGY_CONNECTION*) override { return E_INVALIDARG; }
  STDMETHODIMP get_NodeName(DWORD, WCHAR*, DWORD, DWORD* length) override {
    *length = 0;
    return E_NOTIMPL;
  }
  STDMETHODIMP get_NumNodes(DWORD* count) override {
    *count = nodeCount();
    return S_OK;
  }
  STDMETHODIMP get_NodeType(DWORD node, GUID* type) override {
    constexpr GUID first[] = {{STATIC_KSNODETYPE_VIDEO_CAMERA_TERMINAL},
                              {STATIC_KSNODETYPE_VIDEO_PROCESSING}};
    if (node >= nodeCount()) return E_INVALIDARG;
    *type = node < firstExtension     ? first[node]
            : node == nodeCount() - 1 ? GUID{STATIC_KSNODETYPE_VIDEO_STREAMING}
                                      : GUID{STATIC_KSNODETYPE_DEV_SPECIFIC};
    return S_OK;
  }
  STDMETHODIMP CreateNodeInstance(DWORD node, REFIID iid, void** object) override {
    return node < nodeCount() ? QueryInterface(iid, object) : E_INVALIDARG;
  }

  // Requests to extension units of exactly the given bytes.
  STDMETHODIMP KsProperty(PKSPROPERTY property, ULONG propertySize, LPVOID data, ULONG dataSize,
                          ULONG* returned) override {
    if (returned == nullptr) return E_POINTER;
    *returned = 0;
    const bool ofNode = (property->Flags & KSPROPERTY_TYPE_TOPOLOGY) != 0;
    if (!ofNode || propertySize < sizeof(KSP_NODE)) return failure(ERROR_INVALID_PARAMETER);
    const ULONG node = reinterpret_cast<const KSP_NODE*>(property)->NodeId;
    if (node >= nodeCount()) return failure(ERROR_INVALID_PARAMETER);
    if (!has(node, property->Set)) return failure(ERROR_SET_NOT_FOUND);

    const ULONG type = property->Flags & ~KSPROPERTY_TYPE_TOPOLOGY;
    const bool sets = type == KSPROPERTY_TYPE_SET;
    if (type == KSPROPERTY_TYPE_SETSUPPORT) return S_OK;
    if (!sets && type != KSPROPERTY_TYPE_GET) return failure(ERROR_NOT_SUPPORTED);
    const RequestHead head{sets ? RequestKind::setProperty : RequestKind::getProperty, property->Id,
                           std::bit_cast<RequestKey>(property->Set)};
    const auto moved = camera_.transfer(head, sets, {static_cast<std::uint8_t*>(data), dataSize});
    if (!moved) return failure(ERROR_GEN_FAILURE);
    *returned = static_cast<ULONG>(*moved);
    return S_OK;
  }
  STDMETHODIMP KsMethod(PKSMETHOD, ULONG, LPVOID, ULONG, ULONG*) override { return E_NOTIMPL; }
  STDMETHODIMP KsEvent(PKSEVENT, ULONG, LPVOID, ULONG, ULONG*) override { return E_NOTIMPL; }

 private:
  // The one property set of each.
  using Extensions = std::span<const PropertySetId* const>;

  static constexpr DWORD firstExtension = 2;

  // One of another maker comes first: a client must ask each for the set it wants.
  static Extensions extensionsOf(Unit unit) {
    static constexpr const PropertySetId* bridge[] = {nullptr, &bridgeRegisterSet,
                                                      &bridgeCommandSet};
    static constexpr const PropertySetId* variant1[] = {&bridgeVariant1Set};
    if (unit == Unit::bridge) return bridge;
    if (unit == Unit::variant1) return variant1;
    return unit == Unit::foreign ? Extensions(bridge).first(1) : Extensions();
  }

  static HRESULT failure(DWORD error) { return HRESULT_FROM_WIN32(error); }

  DWORD nodeCount() const { return firstExtension + static_cast<DWORD>(extensions_.size()) + 1; }

  bool has(ULONG node, const GUID& set) const {
    if (node < firstExtension || node == nodeCount() - 1) return false;
    const PropertySetId* const own = extensions_[node - firstExtension];
    return own != nullptr && *own == std::bit_cast<PropertySetId>(set);
  }

  PipeClient& camera_;
  const Extensions extensions_;
};

}  // namespace qvx::simulator
