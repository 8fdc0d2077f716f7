#include "platform/windows/module.h"

namespace qvx::platform {

namespace {

HMODULE moduleOfThisCode(DWORD flags) {
  HMODULE module = nullptr;
  const auto here = reinterpret_cast<LPCWSTR>(reinterpret_cast<void*>(&moduleOfThisCode));
  GetModuleHandleExW(GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS | flags, here, &module);
  return module;
}

}  // namespace

HMODULE ownModule() {
  return moduleOfThisCode(GET_MODULE_HANDLE_EX_FLAG_UNCHANGED_REFCOUNT);
}

std::wstring pathOf(HMODULE module) {
  std::wstring path(32768, L'\0');
  path.resize(GetModuleFileNameW(module, path.data(), static_cast<DWORD>(path.size())));
  return path;
}

}  // namespace qvx::platform

// Once loaded, the library stays until the process ends, whoever frees it. Its timers can be
// stopped on their own thread alone, a late worker may be in its code at any time, and the C++
// runtime inside leaves memory and a thread-local slot behind at every load.
extern "C" BOOL WINAPI DllMain(HINSTANCE /*instance*/, DWORD reason, LPVOID /*processEnds*/) {
  if (reason != DLL_PROCESS_ATTACH) return TRUE;
  return qvx::platform::moduleOfThisCode(GET_MODULE_HANDLE_EX_FLAG_PIN) != nullptr;
}
