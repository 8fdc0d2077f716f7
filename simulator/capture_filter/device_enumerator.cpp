#include "simulator/capture_filter/device_enumerator.h"

#include <algorithm>
#include <vector>

#include "simulator/capture_filter/camera_moniker.h"
#include "simulator/capture_filter/camera_registry.h"

namespace qvx::simulator {

namespace {

class Monikers final : public ComObject<IEnumMoniker> {
 public:
  Monikers(std::vector<RegisteredCamera> cameras, std::size_t next)
      : cameras_(std::move(cameras)), next_(next) {}

  STDMETHODIMP Next(ULONG count, IMoniker** monikers, ULONG* fetched) override {
    ULONG given = 0;
    while (given < count && next_ < cameras_.size()) {
      monikers[given++] = new CameraMoniker(cameras_[next_++]);
    }
    if (fetched != nullptr) *fetched = given;
    return given == count ? S_OK : S_FALSE;
  }
  STDMETHODIMP Skip(ULONG count) override {
    const std::size_t left = cameras_.size() - next_;
    next_ += std::min<std::size_t>(count, left);
    return count <= left ? S_OK : S_FALSE;
  }
  STDMETHODIMP Reset() override {
    next_ = 0;
    return S_OK;
  }
  STDMETHODIMP Clone(IEnumMoniker** copy) override {
    *copy = new Monikers(cameras_, next_);
    return S_OK;
  }

 private:
  std::vector<RegisteredCamera> cameras_;
  std::size_t next_;
};

using GetClassObject = HRESULT(STDAPICALLTYPE*)(REFCLSID, REFIID, void**);

// The system's own enumerator, past the registration that ours has taken over.
ICreateDevEnum* systemEnumerator() {
  const HMODULE library = LoadLibraryExW(L"devenum.dll", nullptr, LOAD_LIBRARY_SEARCH_SYSTEM32);
  if (library == nullptr) return nullptr;
  const auto getClassObject = reinterpret_cast<GetClassObject>(
      reinterpret_cast<void (*)()>(GetProcAddress(library, "DllGetClassObject")));
  IClassFactory* factory = nullptr;
  ICreateDevEnum* enumerator = nullptr;
  if (getClassObject != nullptr &&
      SUCCEEDED(getClassObject(CLSID_SystemDeviceEnum, IID_IClassFactory,
                               reinterpret_cast<void**>(&factory)))) {
    factory->CreateInstance(nullptr, IID_ICreateDevEnum, reinterpret_cast<void**>(&enumerator));
    factory->Release();
  }
  return enumerator;
}

}  // namespace

STDMETHODIMP DeviceEnumerator::CreateClassEnumerator(REFCLSID category, IEnumMoniker** monikers,
                                                     DWORD flags) {
  *monikers = nullptr;
  if (category == CLSID_VideoInputDeviceCategory) {
    std::vector<RegisteredCamera> cameras = registeredCameras();
    if (cameras.empty()) return S_FALSE;
    *monikers = new Monikers(std::move(cameras), 0);
    return S_OK;
  }
  ICreateDevEnum* const own = systemEnumerator();
  if (own == nullptr) return S_FALSE;
  const HRESULT status = own->CreateClassEnumerator(category, monikers, flags);
  own->Release();
  return status;
}

}  // namespace qvx::simulator
