#include "simulator/fronts/capture_filter/device_enumerator.h"

#include <algorithm>
#include <vector>

#include "simulator/fronts/capture_filter/camera_moniker.h"
#include "simulator/fronts/pipe_client.h"
#include "simulator/fronts/video_inputs.h"

namespace qvx::simulator {

namespace {

class Monikers final : public ComObject<IEnumMoniker> {
 public:
  Monikers(std::vector<VideoInput> inputs, std::size_t next)
      : inputs_(std::move(inputs)), next_(next) {}

  STDMETHODIMP Next(ULONG count, IMoniker** monikers, ULONG* fetched) override {
    ULONG given = 0;
    while (given < count && next_ < inputs_.size()) {
      monikers[given++] = new CameraMoniker(inputs_[next_++]);
    }
    if (fetched != nullptr) *fetched = given;
    return given == count ? S_OK : S_FALSE;
  }
  STDMETHODIMP Skip(ULONG count) override {
    const std::size_t left = inputs_.size() - next_;
    next_ += std::min<std::size_t>(count, left);
    return count <= left ? S_OK : S_FALSE;
  }
  STDMETHODIMP Reset() override {
    next_ = 0;
    return S_OK;
  }
  STDMETHODIMP Clone(IEnumMoniker** copy) override {
    *copy = new Monikers(inputs_, next_);
    return S_OK;
  }

 private:
  std::vector<VideoInput> inputs_;
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
    std::vector<VideoInput> inputs = registeredInputs();
    // What a killed simulator has left is no camera.
    std::erase_if(inputs, [](const VideoInput& input) { return !isServed(input.pipe); });
    if (inputs.empty()) return S_FALSE;
    *monikers = new Monikers(std::move(inputs), 0);
    return S_OK;
  }
  ICreateDevEnum* const own = systemEnumerator();
  if (own == nullptr) return S_FALSE;
  const HRESULT status = own->CreateClassEnumerator(category, monikers, flags);
  own->Release();
  return status;
}

}  // namespace qvx::simulator
