// The DLL on a machine without any camera, and its search for libusbK.dll.
#include <climits>
#include <cstdio>
#include <cstring>
#include <string>

#include "tests/windows/fixtures/library_copy.h"
#include "tests/windows/support.h"

namespace qvx::tests {
namespace {

TEST(NoCamera, InitFailsAndTheLibraryStaysUsable) {
  simulator::sweepPlugs();
  for (const int index : {-1, 0, 90, INT_MAX}) {
    SetVideoDeviceIndex(index);
    EXPECT_EQ(Init(), 0) << index;
    EXPECT_EQ(copyOf(GetVideoDeviceName(index)), L"");
    EXPECT_STREQ(GetDeviceIDA(index), "");
    EXPECT_EQ(GetVideoDeviceCount(), 0);
  }
}

// Writes that many bytes into a buffer of eight.
[[gnu::noinline]] void overrun(std::size_t count) {
  char bytes[8];
  volatile char* volatile at = bytes;
  for (std::size_t i = 0; i < count; ++i) at[i] = 'x';
}
[[gnu::noinline]] void overrunText(const char* text) {
  char copy[8];
  std::strcpy(copy, text);
  std::puts(copy);
}

// This program is built with the same run-time checks as the DLL.
TEST(RuntimeChecks, EndTheProcessAtAnOverrun) {
  constexpr int stackBufferOverrun = static_cast<int>(0xC0000409);
  overrun(8);
  EXPECT_EXIT(overrun(64), testing::ExitedWithCode(stackBufferOverrun), "");
  EXPECT_EXIT(overrunText(std::string(9, 'x').c_str()), testing::ExitedWithCode(stackBufferOverrun),
              "");
}

// The stand-in is in a folder that is neither the application's nor the library's.
TEST_F(LibusbK, IsLoadedFromTheLibrarysFolderThenFromSystem32AndNeverFromTheCurrentOne) {
  inChild([this] {
    const auto standIn = applicationFolder() / L"usb3" / usbLibrary;
    wchar_t folder[MAX_PATH];
    GetSystemDirectoryW(folder, MAX_PATH);
    const auto ofTheSystem = std::filesystem::path(folder) / usbLibrary;
    const LibraryCopy alone(copies / L"alone"), beside(copies / L"Geh\u00E4use-\u955C");
    std::filesystem::current_path(standIn.parent_path());
    alone.openUsb3();
    EXPECT_FALSE(isLoaded(usbLibrary)) << "from the current folder";

    std::filesystem::copy_file(standIn, ofTheSystem);
    beside.put(standIn);
    beside.openUsb3();
    EXPECT_TRUE(beside.usesOwnUsbLibrary());
    EXPECT_FALSE(isLoaded(ofTheSystem));
    alone.openUsb3();
    EXPECT_TRUE(isLoaded(ofTheSystem));
    FreeLibrary(GetModuleHandleW(ofTheSystem.c_str()));
    EXPECT_TRUE(std::filesystem::remove(ofTheSystem));
  });
}

}  // namespace
}  // namespace qvx::tests
