// Video inputs: our enumerator takes the place of the system's, so that their display names are
// like those of real cameras, in the order in which they were plugged in.
#include "simulator/program/plugs.h"

namespace qvx::simulator {

namespace {

constexpr wchar_t deviceEnumerator[] =
    L"Software\\Classes\\CLSID\\{62BE5D10-60EB-11D0-BD3B-00A0C911CE86}\\InprocServer32";
constexpr wchar_t replacedValue[] = L"SimulatorReplaced";  // the enumerator's own DLL

// An earlier run may have replaced it: what stands there would no longer be the system's.
std::string replaceEnumerator(const CameraRecords& /*cameras*/) {
  const std::wstring filterDll = programFolder() + L"qvx-capture-filter.dll";
  if (std::string problem = missing(filterDll); !problem.empty()) return problem;
  const bool kept = !readText(deviceEnumerator, replacedValue).empty() ||
                    writeText(deviceEnumerator, replacedValue, readText(deviceEnumerator, L""));
  return kept && writeText(deviceEnumerator, L"", filterDll)
             ? ""
             : "the system's device enumerator cannot be replaced";
}

void restoreEnumerator(const CameraRecords& /*cameras*/, bool last) {
  const std::wstring own = readText(deviceEnumerator, replacedValue);
  if (!last || own.empty() || !writeText(deviceEnumerator, L"", own)) return;
  RegDeleteKeyValueW(HKEY_LOCAL_MACHINE, deviceEnumerator, replacedValue);
}

}  // namespace

const DeviceKind videoInputs = {
    [](const CameraRecord& camera) { return camera.unit != Unit::absent; }, replaceEnumerator,
    restoreEnumerator};

}  // namespace qvx::simulator
