// The DLL's classes. Once loaded it stays: the cameras in it keep their state as real ones would.
#include "simulator/fronts/video_inputs.h"
#include "simulator/fronts/capture_filter/capture_filter.h"
#include "simulator/fronts/capture_filter/com_object.h"
#include "simulator/fronts/capture_filter/device_enumerator.h"

namespace qvx::simulator {

namespace {

template <class Object>
class Factory final : public ComObject<IClassFactory> {
 public:
  STDMETHODIMP CreateInstance(IUnknown* outer, REFIID iid, void** object) override {
    *object = nullptr;
    if (outer != nullptr) return CLASS_E_NOAGGREGATION;
    return handOut(new Object, iid, object);
  }
  STDMETHODIMP LockServer(BOOL) override { return S_OK; }
};

void stayLoaded() {
  HMODULE module = nullptr;
  GetModuleHandleExW(GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS | GET_MODULE_HANDLE_EX_FLAG_PIN,
                     reinterpret_cast<LPCWSTR>(&stayLoaded), &module);
}

}  // namespace

}  // namespace qvx::simulator

STDAPI DllGetClassObject(REFCLSID id, REFIID iid, void** object) {
  using namespace qvx::simulator;
  *object = nullptr;
  stayLoaded();
  if (id == captureFilterClass) return handOut(new Factory<CaptureFilter>, iid, object);
  if (id == CLSID_SystemDeviceEnum) return handOut(new Factory<DeviceEnumerator>, iid, object);
  return CLASS_E_CLASSNOTAVAILABLE;
}

STDAPI DllCanUnloadNow() {
  return S_FALSE;
}
