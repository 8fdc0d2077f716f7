#include "platform/windows/module.h"

#include "platform/windows/timers.h"

namespace qvx::platform {

namespace {

HMODULE module = nullptr;

}  // namespace

HMODULE ownModule() {
  return module;
}

}  // namespace qvx::platform

extern "C" BOOL WINAPI DllMain(HINSTANCE instance, DWORD reason, LPVOID processEnds) {
  if (reason == DLL_PROCESS_ATTACH) qvx::platform::module = instance;
  // A timer that outlived the library would call into unloaded code. When the whole process ends,
  // its timers end with it.
  if (reason == DLL_PROCESS_DETACH && processEnds == nullptr) qvx::platform::stopThreadTimers();
  return TRUE;
}
