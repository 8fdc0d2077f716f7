// Imports something of every system DLL that QVX64.dll imports, and calls none of it by itself.
#include <windows.h>
#include <oleauto.h>
#include <setupapi.h>
#include <wininet.h>
extern "C" {
#include <hidsdi.h>
}

extern "C" __declspec(dllexport) void touchEverything() {
  GUID guid{};
  HidD_GetHidGuid(&guid);
  CoUninitialize();
  SysFreeString(nullptr);
  SetupDiDestroyDeviceInfoList(nullptr);
  KillTimer(nullptr, 0);
  InternetCloseHandle(nullptr);
}
