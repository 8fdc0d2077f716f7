// The DLL by itself: loading and unloading it, and a machine without any camera.
#include <climits>

#include "tests/windows/support.h"

namespace qvx::tests {
namespace {

TEST(NoCamera, InitFailsAndTheLibraryStaysUsable) {
  for (const int index : {-1, 0, 1, 7, 8, 90, 91, 1234, -2, INT_MIN, INT_MAX}) {
    SetVideoDeviceIndex(index);
    EXPECT_EQ(GetVideoDeviceIndex(), index);
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
class Copy : public testing::Test {
 protected:
  Copy() {
    wchar_t folder[MAX_PATH];
    GetTempPathW(MAX_PATH, folder);
    path_ = std::wstring(folder) + L"QVX64_copy.dll";
    CopyFileW(L"QVX64.dll", path_.c_str(), FALSE);
    wchar_t own[MAX_PATH];
    GetModuleFileNameW(GetModuleHandleW(L"QVX64.dll"), own, MAX_PATH);
    CopyFileW(own, path_.c_str(), FALSE);
  }
  ~Copy() override { DeleteFileW(path_.c_str()); }

  void load() {
    module_ = LoadLibraryW(path_.c_str());
    ASSERT_NE(module_, nullptr);
  }
  void unload() {
    FreeLibrary(module_);
    EXPECT_EQ(GetModuleHandleW(L"QVX64_copy.dll"), nullptr) << "nothing keeps it";
  }

  template <class Function>
  Function* function(const char* name) {
    return reinterpret_cast<Function*>(reinterpret_cast<void (*)()>(GetProcAddress(module_, name)));
  }

 private:
  std::wstring path_;
  HMODULE module_ = nullptr;
};

TEST_F(Copy, StartsAfreshAtEveryLoad) {
  for (int i = 0; i < 50; ++i) {
    load();
    EXPECT_EQ(function<int()>("GetVideoDeviceIndex")(), 0);
    function<void(int)>("SetVideoDeviceIndex")(90);
    unload();
  }
}

TEST_F(Copy, LeavesNoTimerBehind) {
  load();
  function<void(void (*)())>("SetEventCallback")(nullptr);
  function<int(int)>("EnablePressKey")(1);
  pumpMessages(300);
  unload();
  pumpMessages(600);
}

}  // namespace
}  // namespace qvx::tests
