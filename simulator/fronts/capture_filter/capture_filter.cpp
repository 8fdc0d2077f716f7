#include "simulator/fronts/capture_filter/capture_filter.h"

#include <algorithm>
#include <iterator>

#include "simulator/fronts/video_inputs.h"

namespace qvx::simulator {

namespace {

class Pins final : public ItemEnumerator<IEnumPins, IPin> {
 public:
  explicit Pins(IPin& pin, ULONG position = 0) : ItemEnumerator(1, position), pin_(pin) {
    pin_.AddRef();
  }

 private:
  ~Pins() override { pin_.Release(); }

  HRESULT give(ULONG /*index*/, IPin** pin) override {
    *pin = &pin_;
    pin_.AddRef();
    return S_OK;
  }
  IEnumPins* cloneAt(ULONG position) override { return new Pins(pin_, position); }

  IPin& pin_;
};

std::wstring instanceIn(IPropertyBag& properties) {
  VARIANT value;
  VariantInit(&value);
  value.vt = VT_BSTR;
  std::wstring instance;
  if (SUCCEEDED(properties.Read(instanceValueName, &value, nullptr)) && value.vt == VT_BSTR) {
    instance = value.bstrVal;
  }
  VariantClear(&value);
  return instance;
}

}  // namespace

CaptureFilter::CaptureFilter() : pin_(*this) {}

CaptureFilter::~CaptureFilter() {
  if (clock_ != nullptr) clock_->Release();
}

bool CaptureFilter::attach(const std::wstring& instance) {
  camera_ = VirtualCamera::at(instance);
  if (camera_ == nullptr) return false;
  IUnknown& whole = *static_cast<IBaseFilter*>(this);
  pin_.attach(camera_);
  procAmp_.emplace(whole, *camera_);
  const auto unit = static_cast<Unit>(camera_->description().unit);
  if (unit != Unit::plain) topology_.emplace(whole, *camera_);
  return true;
}

void* CaptureFilter::find(REFIID iid) {
  if (iid == __uuidof(IMediaFilter)) return static_cast<IMediaFilter*>(this);
  if (iid == __uuidof(IPersist)) return static_cast<IBaseFilter*>(this);
  void* found = ComObject::find(iid);
  if (found == nullptr && procAmp_) found = procAmp_->find(iid);
  if (found == nullptr && topology_) found = topology_->find(iid);
  return found;
}

STDMETHODIMP CaptureFilter::GetClassID(CLSID* id) {
  *id = captureFilterClass;
  return S_OK;
}

STDMETHODIMP CaptureFilter::InitNew() {
  return S_OK;
}

STDMETHODIMP CaptureFilter::Load(IPropertyBag* properties, IErrorLog*) {
  return attach(instanceIn(*properties)) ? S_OK : E_FAIL;
}

STDMETHODIMP CaptureFilter::Save(IPropertyBag*, BOOL, BOOL) {
  return E_NOTIMPL;
}

STDMETHODIMP CaptureFilter::Stop() {
  pin_.stop();
  state_ = State_Stopped;
  return S_OK;
}

STDMETHODIMP CaptureFilter::Pause() {
  pin_.pause();
  state_ = State_Paused;
  return S_OK;
}

STDMETHODIMP CaptureFilter::Run(REFERENCE_TIME start) {
  if (state_ == State_Stopped) pin_.pause();
  pin_.run(start, clock_);
  state_ = State_Running;
  return S_OK;
}

STDMETHODIMP CaptureFilter::GetState(DWORD, FILTER_STATE* state) {
  *state = state_;
  return state_ == State_Paused ? VFW_S_CANT_CUE : S_OK;
}

STDMETHODIMP CaptureFilter::SetSyncSource(IReferenceClock* clock) {
  if (clock != nullptr) clock->AddRef();
  if (clock_ != nullptr) clock_->Release();
  clock_ = clock;
  return S_OK;
}

STDMETHODIMP CaptureFilter::GetSyncSource(IReferenceClock** clock) {
  *clock = clock_;
  if (clock_ != nullptr) clock_->AddRef();
  return S_OK;
}

STDMETHODIMP CaptureFilter::EnumPins(IEnumPins** pins) {
  *pins = new Pins(pin_);
  return S_OK;
}

STDMETHODIMP CaptureFilter::FindPin(LPCWSTR id, IPin** pin) {
  *pin = nullptr;
  if (std::wstring_view(id) != CapturePin::name) return VFW_E_NOT_FOUND;
  *pin = &pin_;
  pin_.AddRef();
  return S_OK;
}

STDMETHODIMP CaptureFilter::QueryFilterInfo(FILTER_INFO* info) {
  *info = {};
  const std::size_t room = std::size(info->achName) - 1;
  std::copy_n(name_.begin(), std::min(name_.size(), room), info->achName);
  info->pGraph = graph_;
  if (graph_ != nullptr) graph_->AddRef();
  return S_OK;
}

STDMETHODIMP CaptureFilter::JoinFilterGraph(IFilterGraph* graph, LPCWSTR name) {
  graph_ = graph;
  name_ = name == nullptr ? L"" : name;
  return S_OK;
}

STDMETHODIMP CaptureFilter::QueryVendorInfo(LPWSTR*) {
  return E_NOTIMPL;
}

}  // namespace qvx::simulator
