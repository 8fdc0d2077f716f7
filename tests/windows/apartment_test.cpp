// The application's COM apartment survives all that the DLL does on its thread.
#include <objbase.h>

#include <optional>
#include <thread>

#include "tests/support/effort.h"
#include "tests/windows/fixtures/imports.h"
#include "tests/windows/fixtures/simulated_cameras.h"
#include "tests/windows/support.h"

namespace qvx::tests {
namespace {

void callAllThatUseCom() {
  qvx_long property = 0, bound = 0;
  Init();
  GetDeviceId(0);
  GetDeviceIDA(0);
  GetVideoDeviceName(0);
  SetVideoProcAmp(0, 1);
  GetVideoProcAmp(0);
  GetVideoProcAmpValueRange(&property, &bound, &bound, &bound, &bound);
}

// Whether the thread is still in this apartment.
bool staysIn(DWORD apartment) {
  if (CoInitializeEx(nullptr, apartment) != S_FALSE) return false;
  CoUninitialize();
  return true;
}

class Apartment : public testing::TestWithParam<DWORD> {};

TEST_P(Apartment, StaysWithAndWithoutABridge) {
  const NoPauses quick;
  std::jthread([] {
    ASSERT_EQ(CoInitializeEx(nullptr, GetParam()), S_OK);
    for (const bool plugged : {true, false}) {
      std::optional<SimulatedCameras> cameras;
      if (plugged) cameras.emplace(std::vector<std::string>{"usb:0870"});
      for (int i = 0; i < 10 * effort() && staysIn(GetParam()); ++i) callAllThatUseCom();
      EXPECT_TRUE(staysIn(GetParam())) << plugged;
      EXPECT_EQ(Init(), plugged);
    }
  });
}

INSTANTIATE_TEST_SUITE_P(OfEachKind, Apartment,
                         testing::Values(COINIT_APARTMENTTHREADED, COINIT_MULTITHREADED));

}  // namespace
}  // namespace qvx::tests
