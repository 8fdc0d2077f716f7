// The nodes of a virtual camera's filter, and the properties of its extension units.
#pragma once

#include "simulator/fronts/capture_filter/com_object.h"
#include "simulator/fronts/capture_filter/kernel_streaming.h"
#include "simulator/fronts/capture_filter/virtual_camera.h"
#include "simulator/model/property_sets.h"

namespace qvx::simulator {

class Topology final : public ComPart<IKsTopologyInfo, IKsControl> {
 public:
  Topology(IUnknown& filter, VirtualCamera& camera) : ComPart(filter), camera_(camera) {}

  STDMETHODIMP get_NumCategories(DWORD* count) override;
  STDMETHODIMP get_Category(DWORD index, GUID* category) override;
  STDMETHODIMP get_NumConnections(DWORD* count) override;
  STDMETHODIMP get_ConnectionInfo(DWORD index, KSTOPOLOGY_CONNECTION* connection) override;
  STDMETHODIMP get_NodeName(DWORD node, WCHAR* name, DWORD size, DWORD* length) override;
  STDMETHODIMP get_NumNodes(DWORD* count) override;
  STDMETHODIMP get_NodeType(DWORD node, GUID* type) override;
  STDMETHODIMP CreateNodeInstance(DWORD node, REFIID iid, void** object) override;

  // Requests to extension units of exactly the given bytes.
  STDMETHODIMP KsProperty(PKSPROPERTY property, ULONG propertySize, LPVOID data, ULONG dataSize,
                          ULONG* returned) override;
  STDMETHODIMP KsMethod(PKSMETHOD method, ULONG methodSize, LPVOID data, ULONG dataSize,
                        ULONG* returned) override;
  STDMETHODIMP KsEvent(PKSEVENT event, ULONG eventSize, LPVOID data, ULONG dataSize,
                       ULONG* returned) override;

 private:
  VirtualCamera& camera_;
};

}  // namespace qvx::simulator
