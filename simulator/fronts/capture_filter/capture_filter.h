// The capture filter of a virtual camera: what an application gets when it opens the device.
#pragma once

#include <memory>
#include <optional>
#include <string>

#include "simulator/fronts/capture_filter/capture_pin.h"
#include "simulator/fronts/capture_filter/com_object.h"
#include "simulator/fronts/capture_filter/kernel_streaming.h"
#include "simulator/fronts/capture_filter/topology.h"
#include "simulator/fronts/capture_filter/video_proc_amp.h"
#include "simulator/fronts/capture_filter/virtual_camera.h"

namespace qvx::simulator {

// The system's enumerator makes a filter and then tells it, as a property bag, which camera it is
// for; ours does it in one step.
class CaptureFilter final : public ComObject<IBaseFilter, IPersistPropertyBag> {
 public:
  CaptureFilter();

  // False when no such camera is registered.
  bool attach(const std::wstring& instance);

  STDMETHODIMP GetClassID(CLSID* id) override;

  STDMETHODIMP InitNew() override;
  STDMETHODIMP Load(IPropertyBag* properties, IErrorLog* errors) override;
  STDMETHODIMP Save(IPropertyBag* properties, BOOL clearDirty, BOOL saveAll) override;

  STDMETHODIMP Stop() override;
  STDMETHODIMP Pause() override;
  STDMETHODIMP Run(REFERENCE_TIME start) override;
  STDMETHODIMP GetState(DWORD limit_ms, FILTER_STATE* state) override;
  STDMETHODIMP SetSyncSource(IReferenceClock* clock) override;
  STDMETHODIMP GetSyncSource(IReferenceClock** clock) override;

  STDMETHODIMP EnumPins(IEnumPins** pins) override;
  STDMETHODIMP FindPin(LPCWSTR id, IPin** pin) override;
  STDMETHODIMP QueryFilterInfo(FILTER_INFO* info) override;
  STDMETHODIMP JoinFilterGraph(IFilterGraph* graph, LPCWSTR name) override;
  STDMETHODIMP QueryVendorInfo(LPWSTR* info) override;

 protected:
  void* find(REFIID iid) override;

 private:
  ~CaptureFilter() override;

  CapturePin pin_;
  std::shared_ptr<VirtualCamera> camera_;
  std::optional<VideoProcAmp> procAmp_;
  std::optional<Topology> topology_;

  FILTER_STATE state_ = State_Stopped;
  IReferenceClock* clock_ = nullptr;
  IFilterGraph* graph_ = nullptr;  // the graph owns the filter: no reference
  std::wstring name_;
};

}  // namespace qvx::simulator
