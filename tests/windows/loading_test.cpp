// The DLL by itself: a machine without any camera, and where it looks for the driver's library.
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
