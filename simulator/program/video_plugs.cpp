// Video inputs: in the registry, with the capture filter for their class.
#include <windows.h>
// The process's own headers follow windows.h.
#include <objbase.h>

#include <cstdio>

#include "simulator/fronts/pipe_client.h"
#include "simulator/fronts/registry_key.h"
#include "simulator/fronts/text.h"
#include "simulator/fronts/video_inputs.h"
#include "simulator/program/plugs.h"

namespace qvx::simulator {

namespace {

constexpr wchar_t classes[] = L"Software\\Classes\\CLSID\\";
constexpr wchar_t deviceEnumerator[] =
    L"Software\\Classes\\CLSID\\{62BE5D10-60EB-11D0-BD3B-00A0C911CE86}\\InprocServer32";
constexpr wchar_t replacedValue[] = L"SimulatorReplaced";  // the enumerator's own DLL

std::wstring filterClassText() {
  wchar_t text[40];
  StringFromGUID2(captureFilterClass, text, 40);
  return text;
}

// The serial part tells apart cameras of one product.
std::wstring instanceOf(const ServedCamera& served) {
  wchar_t text[160];
  std::swprintf(text, 160,
                L"usb#vid_%04x&pid_%04x&mi_00#7&%08x&0&0000#"
                L"{65e8773d-8f56-11d0-a3b9-00a0c9223196}",
                served.camera.spec().vendorId, served.camera.spec().productId,
                static_cast<unsigned>(served.order));
  return text;
}

bool registerClass(const std::wstring& filterDll) {
  RegistryKey server = RegistryKey::create(classes + filterClassText() + L"\\InprocServer32");
  return server.setText(L"", filterDll) && server.setText(L"ThreadingModel", L"Both");
}

// Unless an earlier run has done so: what stands there would no longer be the system's.
bool replaceEnumerator(const std::wstring& filterDll) {
  RegistryKey server = RegistryKey::open(deviceEnumerator, KEY_ALL_ACCESS);
  const std::optional<std::wstring> own = server.text(L"");
  return own && (server.text(replacedValue) || server.setText(replacedValue, *own)) &&
         server.setText(L"", filterDll);
}

void restoreEnumerator() {
  RegistryKey server = RegistryKey::open(deviceEnumerator, KEY_ALL_ACCESS);
  const std::optional<std::wstring> own = server.text(replacedValue);
  if (!own || !server.setText(L"", *own)) return;
  server.forget(replacedValue);
}

bool registerInput(const ServedCamera& served) {
  const std::wstring instance = instanceOf(served);
  RegistryKey key = RegistryKey::create(videoInputs + instance);
  return key.setText(L"CLSID", filterClassText()) &&
         key.setText(friendlyNameValue, wide(served.camera.spec().name)) &&
         key.setText(instanceValueName, instance) && key.setNumber(orderValueName, served.order) &&
         key.setText(pipeValueName, served.pipe);
}

}  // namespace

std::string VideoPlugs::plugIn(const ServedCameras& cameras, Naming naming) {
  const std::wstring filterDll = programFolder() + L"qvx-capture-filter.dll";
  const auto hasInput = [](const ServedCamera& served) {
    return served.camera.spec().unit != Unit::absent;
  };
  if (std::none_of(cameras.begin(), cameras.end(), hasInput)) return {};
  if (std::string problem = missing(filterDll); !problem.empty()) return problem;
  bool done =
      registerClass(filterDll) && (naming == Naming::system || replaceEnumerator(filterDll));
  for (const ServedCamera& served : cameras) {
    if (hasInput(served)) done = done && registerInput(served);
  }
  return done ? "" : "the registry's list of video inputs cannot be written";
}

void VideoPlugs::sweep() {
  bool anyLeft = false;
  for (const VideoInput& input : registeredInputs()) {
    const bool served = isServed(input.pipe);
    if (!served) RegistryKey::remove(videoInputs + input.instance);
    anyLeft = anyLeft || served;
  }
  if (anyLeft) return;
  restoreEnumerator();
  RegistryKey::remove(classes + filterClassText());
}

}  // namespace qvx::simulator
