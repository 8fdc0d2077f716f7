#include "simulator/fronts/capture_filter/camera_moniker.h"

#include <algorithm>
#include <map>

#include "simulator/fronts/capture_filter/capture_filter.h"

namespace qvx::simulator {

namespace {

class DeviceProperties final : public ComObject<IPropertyBag> {
 public:
  explicit DeviceProperties(const VideoInput& input)
      : values_{{friendlyNameValue, input.name},
                {L"DevicePath", devicePathOf(input)},
                {instanceValueName, input.instance}} {}

  STDMETHODIMP Read(LPCOLESTR name, VARIANT* value, IErrorLog*) override {
    const auto found = values_.find(name);
    if (found == values_.end()) return HRESULT_FROM_WIN32(ERROR_FILE_NOT_FOUND);
    if (value->vt != VT_EMPTY && value->vt != VT_BSTR) return E_INVALIDARG;
    value->vt = VT_BSTR;
    value->bstrVal = SysAllocString(found->second.c_str());
    return value->bstrVal == nullptr ? E_OUTOFMEMORY : S_OK;
  }
  STDMETHODIMP Write(LPCOLESTR, VARIANT*) override { return E_ACCESSDENIED; }

 private:
  const std::map<std::wstring, std::wstring> values_;
};

}  // namespace

STDMETHODIMP CameraMoniker::BindToObject(IBindCtx*, IMoniker*, REFIID iid, void** object) {
  *object = nullptr;
  auto* const filter = new CaptureFilter;
  if (filter->attach(input_.instance)) return handOut(filter, iid, object);
  filter->Release();
  return HRESULT_FROM_WIN32(ERROR_FILE_NOT_FOUND);
}

STDMETHODIMP CameraMoniker::BindToStorage(IBindCtx*, IMoniker*, REFIID iid, void** object) {
  return handOut(new DeviceProperties(input_), iid, object);
}

STDMETHODIMP CameraMoniker::GetDisplayName(IBindCtx*, IMoniker*, LPOLESTR* name) {
  const std::wstring text = L"@device:pnp:" + devicePathOf(input_);
  *name = static_cast<LPOLESTR>(CoTaskMemAlloc((text.size() + 1) * sizeof(wchar_t)));
  if (*name == nullptr) return E_OUTOFMEMORY;
  *std::copy(text.begin(), text.end(), *name) = L'\0';
  return S_OK;
}

}  // namespace qvx::simulator
