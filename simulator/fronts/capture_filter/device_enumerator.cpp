// Replaces the system's device enumerator, so that simulated cameras have display names as Windows
// gives them to real ones. Other categories are left to the system's own.
#include <cstdio>

#include "simulator/fronts/camera_list.h"
#include "simulator/fronts/capture_filter/capture_filter.h"
#include "simulator/fronts/capture_filter/com_object.h"
#include "simulator/fronts/pipe_client.h"
#include "simulator/fronts/text.h"

namespace qvx::simulator {

namespace {

using GetClassObject = HRESULT(STDAPICALLTYPE*)(REFCLSID, REFIID, void**);

// The device part of the display name; the number in it distinguishes cameras of one product.
std::wstring devicePathOf(const CameraRecord& camera) {
  char text[160];
  std::snprintf(text, sizeof text,
                R"(\\?\usb#vid_%04x&pid_%04x&mi_00#7&%08x&0&0000#)"
                R"({65e8773d-8f56-11d0-a3b9-00a0c9223196}\global)",
                camera.vendorId, camera.productId, static_cast<unsigned>(camera.order));
  return wide(text);
}

class DeviceProperties final : public ComObject<IPropertyBag> {
 public:
  explicit DeviceProperties(const CameraRecord& camera) : camera_(camera) {}

  STDMETHODIMP Read(LPCOLESTR name, VARIANT* value, IErrorLog*) override {
    const bool isName = name == std::wstring_view(L"FriendlyName");
    if (!isName && name != std::wstring_view(L"DevicePath")) {
      return HRESULT_FROM_WIN32(ERROR_FILE_NOT_FOUND);
    }
    if (value->vt != VT_EMPTY && value->vt != VT_BSTR) return E_INVALIDARG;
    value->vt = VT_BSTR;
    value->bstrVal = SysAllocString((isName ? wide(camera_.name) : devicePathOf(camera_)).c_str());
    return value->bstrVal == nullptr ? E_OUTOFMEMORY : S_OK;
  }
  STDMETHODIMP Write(LPCOLESTR, VARIANT*) override { return E_ACCESSDENIED; }

 private:
  const CameraRecord camera_;
};

// A camera in the enumeration: its names and the means to open it.
class CameraMoniker final : public ComObject<IMoniker> {
 public:
  explicit CameraMoniker(const CameraRecord& camera) : camera_(camera) {}

  STDMETHODIMP BindToObject(IBindCtx*, IMoniker*, REFIID iid, void** object) override {
    *object = nullptr;
    if (!isServed(camera_.pipe)) return HRESULT_FROM_WIN32(ERROR_FILE_NOT_FOUND);
    return handOut(makeCaptureFilter(camera_), iid, object);
  }
  STDMETHODIMP BindToStorage(IBindCtx*, IMoniker*, REFIID iid, void** object) override {
    return handOut(new DeviceProperties(camera_), iid, object);
  }
  STDMETHODIMP GetDisplayName(IBindCtx*, IMoniker*, LPOLESTR* name) override {
    return SHStrDupW((L"@device:pnp:" + devicePathOf(camera_)).c_str(), name);
  }

  // The rest of IMoniker, which nobody uses on a device moniker.
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
  const CameraRecord camera_;
};

// Bypasses the registration, which points to this DLL.
HRESULT createSystemEnumerator(ComPtr<ICreateDevEnum>& enumerator) {
  const HMODULE library = LoadLibraryExW(L"devenum.dll", nullptr, LOAD_LIBRARY_SEARCH_SYSTEM32);
  const auto getClassObject = reinterpret_cast<GetClassObject>(
      reinterpret_cast<void (*)()>(GetProcAddress(library, "DllGetClassObject")));
  if (getClassObject == nullptr) return E_NOTIMPL;
  ComPtr<IClassFactory> factory;
  const HRESULT status = getClassObject(CLSID_SystemDeviceEnum, IID_IClassFactory, &factory);
  if (FAILED(status)) return status;
  return factory->CreateInstance(nullptr, IID_ICreateDevEnum, &enumerator);
}

class DeviceEnumerator final : public ComObject<ICreateDevEnum> {
 public:
  STDMETHODIMP CreateClassEnumerator(REFCLSID category, IEnumMoniker** monikers,
                                     DWORD flags) override {
    *monikers = nullptr;
    if (category == CLSID_VideoInputDeviceCategory) return enumerateCameras(monikers);
    ComPtr<ICreateDevEnum> own;
    if (FAILED(createSystemEnumerator(own))) return S_FALSE;
    return own->CreateClassEnumerator(category, monikers, flags);
  }

 private:
  // Omits cameras that a killed simulator has left behind.
  static HRESULT enumerateCameras(IEnumMoniker** monikers) {
    CameraRecords cameras = listedCameras();
    std::erase_if(cameras, [](const CameraRecord& camera) {
      return camera.unit == Unit::absent || !isServed(camera.pipe);
    });
    if (cameras.empty()) return S_FALSE;
    const std::size_t count = cameras.size();
    *monikers = new ItemEnumerator<IEnumMoniker, IMoniker>(
        count, [cameras = std::move(cameras)](ULONG index, IMoniker** moniker) {
          *moniker = new CameraMoniker(cameras[index]);
          return S_OK;
        });
    return S_OK;
  }
};

class Factory final : public ComObject<IClassFactory> {
 public:
  STDMETHODIMP CreateInstance(IUnknown* outer, REFIID iid, void** object) override {
    *object = nullptr;
    if (outer != nullptr) return CLASS_E_NOAGGREGATION;
    return handOut(new DeviceEnumerator, iid, object);
  }
  STDMETHODIMP LockServer(BOOL) override { return S_OK; }
};

}  // namespace

}  // namespace qvx::simulator

// Keeps the DLL loaded: other threads may be executing it.
STDAPI DllGetClassObject(REFCLSID id, REFIID iid, void** object) {
  *object = nullptr;
  HMODULE module = nullptr;
  GetModuleHandleExW(GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS | GET_MODULE_HANDLE_EX_FLAG_PIN,
                     reinterpret_cast<LPCWSTR>(&DllGetClassObject), &module);
  if (id != CLSID_SystemDeviceEnum) return CLASS_E_CLASSNOTAVAILABLE;
  return qvx::simulator::handOut(new qvx::simulator::Factory, iid, object);
}

STDAPI DllCanUnloadNow() {
  return S_FALSE;
}
