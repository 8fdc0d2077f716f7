// Helpers of the suites that drive QVX64.dll itself.
#pragma once

#include <gtest/gtest.h>
#include <windows.h>

#include <cmath>
#include <string>

#include "qvx64/api.h"

namespace qvx::tests {

// Dispatches the calling thread's messages for that time, like an application's main loop.
inline void pumpMessages(DWORD milliseconds) {
  const ULONGLONG end = GetTickCount64() + milliseconds;
  for (;;) {
    MSG message;
    while (PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE)) DispatchMessageW(&message);
    const ULONGLONG now = GetTickCount64();
    if (now >= end) return;
    MsgWaitForMultipleObjects(0, nullptr, FALSE, static_cast<DWORD>(end - now), QS_ALLINPUT);
  }
}

// Copies a string that the library returned. The original is on the library's heap and never freed.
inline std::wstring copyOf(const wchar_t* text) {
  return text == nullptr ? L"(null)" : text;
}

inline void openCamera(int index) {
  SetVideoDeviceIndex(index);
  ASSERT_EQ(Init(), 1);
  ASSERT_EQ(GetVideoDeviceIndex(), index);
}

// Dispatches messages until the condition holds, but not longer than the limit.
template <class Condition>
bool eventually(DWORD limit_ms, Condition condition) {
  const ULONGLONG end = GetTickCount64() + limit_ms;
  while (!condition() && GetTickCount64() < end) pumpMessages(50);
  return condition();
}

// Whether the timer measures that magnification before a window of samples is full. On a busy
// machine an access may exceed its limit and Init misses a value: then Init is called again.
inline bool measures(int index, double magnification) {
  const auto isMeasured = [=] {
    return std::abs(GetMAG(index) - magnification) <= magnification / 40;
  };
  for (int i = 0; i < 2; ++i) {
    if (eventually(3000, isMeasured)) return true;
    Init();
  }
  return eventually(3000, isMeasured);
}

}  // namespace qvx::tests
