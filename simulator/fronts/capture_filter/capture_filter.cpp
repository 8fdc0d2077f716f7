#include "simulator/fronts/capture_filter/capture_filter.h"

#include <string>

#include "simulator/fronts/capture_filter/capture_pin.h"
#include "simulator/fronts/capture_filter/topology.h"
#include "simulator/fronts/capture_filter/video_proc_amp.h"

namespace qvx::simulator {

namespace {

class CaptureFilter final : public ComObject<IBaseFilter> {
 public:
  CaptureFilter(PipeClient& camera, const CameraRecord& record)
      : pin_(*this, camera, record.productId),
        procAmp_(*this, camera),
        topology_(*this, camera, record.unit),
        hasTopology_(record.unit != Unit::plain) {}

  // As for real cameras.
  STDMETHODIMP GetClassID(CLSID* id) override {
    *id = CLSID_Proxy;
    return S_OK;
  }

  STDMETHODIMP Stop() override {
    pin_.stream().stop();
    state_ = State_Stopped;
    return S_OK;
  }
  STDMETHODIMP Pause() override {
    pin_.stream().pause();
    state_ = State_Paused;
    return S_OK;
  }
  STDMETHODIMP Run(REFERENCE_TIME start) override {
    if (state_ == State_Stopped) pin_.stream().pause();
    pin_.stream().run(start, clock_);
    state_ = State_Running;
    return S_OK;
  }
  STDMETHODIMP GetState(DWORD, FILTER_STATE* state) override {
    *state = state_;
    return state_ == State_Paused ? VFW_S_CANT_CUE : S_OK;
  }
  STDMETHODIMP SetSyncSource(IReferenceClock* clock) override {
    clock_ = clock;
    return S_OK;
  }
  STDMETHODIMP GetSyncSource(IReferenceClock** clock) override { return clock_.CopyTo(clock); }

  STDMETHODIMP EnumPins(IEnumPins** pins) override {
    *pins = new ItemEnumerator<IEnumPins, IPin>(
        1, [pin = ComPtr<IPin>(&pin_)](ULONG, IPin** item) { return pin.CopyTo(item); });
    return S_OK;
  }
  STDMETHODIMP FindPin(LPCWSTR id, IPin** pin) override {
    *pin = nullptr;
    if (std::wstring_view(id) != CapturePin::name) return VFW_E_NOT_FOUND;
    *pin = &pin_;
    pin_.AddRef();
    return S_OK;
  }
  STDMETHODIMP QueryFilterInfo(FILTER_INFO* info) override {
    *info = {};
    name_.copy(info->achName, std::size(info->achName) - 1);
    info->pGraph = graph_;
    if (graph_ != nullptr) graph_->AddRef();
    return S_OK;
  }
  STDMETHODIMP JoinFilterGraph(IFilterGraph* graph, LPCWSTR name) override {
    graph_ = graph;
    name_ = name == nullptr ? L"" : name;
    return S_OK;
  }
  STDMETHODIMP QueryVendorInfo(LPWSTR*) override { return E_NOTIMPL; }

 protected:
  void* find(REFIID iid) override {
    if (iid == __uuidof(IMediaFilter) || iid == __uuidof(IPersist)) {
      return static_cast<IBaseFilter*>(this);
    }
    void* found = ComObject::find(iid);
    if (found == nullptr) found = procAmp_.find(iid);
    if (found == nullptr && hasTopology_) found = topology_.find(iid);
    return found;
  }

 private:
  CapturePin pin_;
  VideoProcAmp procAmp_;
  Topology topology_;
  const bool hasTopology_;

  FILTER_STATE state_ = State_Stopped;
  ComPtr<IReferenceClock> clock_;
  IFilterGraph* graph_ = nullptr;  // the graph owns the filter: no reference
  std::wstring name_;
};

}  // namespace

IBaseFilter* makeCaptureFilter(const CameraRecord& camera) {
  return new CaptureFilter(PipeClient::of(camera.pipe), camera);
}

}  // namespace qvx::simulator
