// The DLL by itself: loading and unloading it, and a machine without any camera.
#include <climits>
#include "tests/windows/fixtures/library_copy.h"
#include "tests/windows/support.h"

namespace qvx::tests {
namespace {

TEST(NoCamera, InitFailsAndTheLibraryStaysUsable) {
  for (const int index : {-1, 0, 1, 7, 8, 90, 91, 1234, -2, INT_MIN, INT_MAX}) {
    SetVideoDeviceIndex(index);
    EXPECT_EQ(Init(), 0) << index;
    EXPECT_EQ(GetVideoDeviceIndex(), index);
    EXPECT_EQ(copyOf(GetDeviceId(index)), L"");
    EXPECT_EQ(copyOf(GetVideoDeviceName(index)), L"");
    EXPECT_STREQ(GetDeviceIDA(index), "");
    EXPECT_EQ(GetVideoDeviceCount(), 0);
    EXPECT_EQ(GetMAG(index), 0.0);
    EXPECT_NEAR(FOVx(index, 2.0), 176000.0, 1e-6);
  }
}

// The import library holds one reference: this is the state of a copy that nobody else uses.
TEST(Copy, StartsAfreshAtEveryLoadAndLeavesNoTimerBehind) {
  wchar_t original[MAX_PATH];
  GetModuleFileNameW(GetModuleHandleW(L"QVX64.dll"), original, MAX_PATH);
  ASSERT_TRUE(CopyFileW(original, L"QVX64_copy.dll", FALSE));
  for (int i = 0; i < 50; ++i) {
    const HMODULE copy = LoadLibraryW(L"QVX64_copy.dll");
    ASSERT_NE(copy, nullptr);
    const auto function = [copy](const char* name) {
      return reinterpret_cast<void (*)()>(GetProcAddress(copy, name));
    };
    EXPECT_EQ(reinterpret_cast<int (*)()>(function("GetVideoDeviceIndex"))(), 0);
    reinterpret_cast<void (*)(int)>(function("SetVideoDeviceIndex"))(90);
    reinterpret_cast<void (*)(void (*)())>(function("SetEventCallback"))(nullptr);
    reinterpret_cast<int (*)(int)>(function("EnablePressKey"))(1);
    if (i == 0) pumpMessages(300);
    FreeLibrary(copy);
    EXPECT_EQ(GetModuleHandleW(L"QVX64_copy.dll"), nullptr) << "nothing keeps it";
  }
  // A call into what is no longer there would go unnoticed: the system catches its fault.
  Sleep(600);
  MSG message;
  EXPECT_FALSE(PeekMessageW(&message, nullptr, WM_TIMER, WM_TIMER, PM_REMOVE));
  DeleteFileW(L"QVX64_copy.dll");
}

// The stand-in lies in a folder that is neither the application's nor the library's.
TEST(LibusbK, IsLoadedFromTheLibrarysFolderThenFromSystem32AndNeverFromTheCurrentOne) {
  constexpr wchar_t name[] = L"libusbK.dll";
  const auto standIn = applicationFolder() / L"usb3" / name;
  wchar_t folder[MAX_PATH];
  GetSystemDirectoryW(folder, MAX_PATH);
  const auto ofTheSystem = std::filesystem::path(folder) / name;

  const LibraryCopy alone(L"qvx-alone"), beside(L"qvx-Geh\u00E4use-\u955C");
  const auto openUsb3 = [](const LibraryCopy& copy) {
    copy.function<decltype(SetVideoDeviceIndex)>("SetVideoDeviceIndex")(-1);
    copy.function<decltype(Init)>("Init")();
  };
  const auto home = std::filesystem::current_path();
  std::filesystem::current_path(standIn.parent_path());
  openUsb3(alone);
  std::filesystem::current_path(home);
  EXPECT_FALSE(isLoaded(name)) << "from the current folder";

  std::filesystem::copy_file(standIn, ofTheSystem);
  beside.put(standIn, name);
  openUsb3(beside);
  EXPECT_TRUE(isLoaded(beside.pathOf(name)));
  EXPECT_FALSE(isLoaded(ofTheSystem));
  openUsb3(alone);
  EXPECT_TRUE(isLoaded(ofTheSystem));
  FreeLibrary(GetModuleHandleW(ofTheSystem.c_str()));
  EXPECT_TRUE(std::filesystem::remove(ofTheSystem));
}

}  // namespace
}  // namespace qvx::tests
