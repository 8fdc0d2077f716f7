// A virtual camera's place in the device enumeration: its names, and the way to open it.
#pragma once

#include "simulator/fronts/capture_filter/com_object.h"
#include "simulator/fronts/capture_filter/kernel_streaming.h"
#include "simulator/fronts/video_inputs.h"

namespace qvx::simulator {

class CameraMoniker final : public ComObject<IMoniker> {
 public:
  explicit CameraMoniker(VideoInput input) : input_(std::move(input)) {}

  // A filter on the camera.
  STDMETHODIMP BindToObject(IBindCtx* context, IMoniker* left, REFIID iid, void** object) override;
  // A property bag with its name and path.
  STDMETHODIMP BindToStorage(IBindCtx* context, IMoniker* left, REFIID iid, void** object) override;
  STDMETHODIMP GetDisplayName(IBindCtx* context, IMoniker* left, LPOLESTR* name) override;

  // What a moniker also has to have, but nobody asks of a device's.
  STDMETHODIMP GetClassID(CLSID*) override { return E_NOTIMPL; }
  STDMETHODIMP IsDirty() override { return S_FALSE; }
  STDMETHODIMP Load(IStream*) override { return E_NOTIMPL; }
  STDMETHODIMP Save(IStream*, BOOL) override { return E_NOTIMPL; }
  STDMETHODIMP GetSizeMax(ULARGE_INTEGER*) override { return E_NOTIMPL; }
  STDMETHODIMP Reduce(IBindCtx*, DWORD, IMoniker**, IMoniker**) override { return E_NOTIMPL; }
  STDMETHODIMP ComposeWith(IMoniker*, BOOL, IMoniker**) override { return E_NOTIMPL; }
  STDMETHODIMP Enum(BOOL, IEnumMoniker**) override { return E_NOTIMPL; }
  STDMETHODIMP IsEqual(IMoniker*) override { return S_FALSE; }
  STDMETHODIMP Hash(DWORD*) override { return E_NOTIMPL; }
  STDMETHODIMP IsRunning(IBindCtx*, IMoniker*, IMoniker*) override { return S_FALSE; }
  STDMETHODIMP GetTimeOfLastChange(IBindCtx*, IMoniker*, FILETIME*) override { return E_NOTIMPL; }
  STDMETHODIMP Inverse(IMoniker**) override { return E_NOTIMPL; }
  STDMETHODIMP CommonPrefixWith(IMoniker*, IMoniker**) override { return E_NOTIMPL; }
  STDMETHODIMP RelativePathTo(IMoniker*, IMoniker**) override { return E_NOTIMPL; }
  STDMETHODIMP ParseDisplayName(IBindCtx*, IMoniker*, LPOLESTR, ULONG*, IMoniker**) override {
    return E_NOTIMPL;
  }
  STDMETHODIMP IsSystemMoniker(DWORD*) override { return S_FALSE; }

 private:
  VideoInput input_;
};

}  // namespace qvx::simulator
