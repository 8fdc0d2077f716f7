#include "platform/windows/module.h"

#include "platform/windows/timers.h"

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

HMODULE holdOwnModule() {
  return moduleOfThisCode(0);
}

}  // namespace qvx::platform

extern "C" BOOL WINAPI DllMain(HINSTANCE /*instance*/, DWORD reason, LPVOID processEnds) {
  // A timer that outlived the library would call into unloaded code. When the whole process ends,
  // its timers end with it.
  if (reason == DLL_PROCESS_DETACH && processEnds == nullptr) qvx::platform::stopThreadTimers();
  return TRUE;
}
