// The listing of video inputs: which count, in which order, and what the two tables hold.
#include <climits>
#include <memory>

#include "qvx64/api.h"
#include "simulator/platform/cameras.h"
#include "state/device_state.h"
#include "tests/support/library.h"

namespace qvx::tests {
namespace {

TEST(ProductId, IsTheFourHexadecimalDigitsAfterPid) {
  for (const auto& [path, pid] : {std::pair("\\\\?\\usb#vid_3c7e&pid_0970&mi_00#7&1", 0x970),
                                  {"vid_3c7e&pid_9e0f0", 0x9E0F},    // four digits, not more
                                  {"pid_09b0 and pid_0870", 0x9B0},  // the first one counts
                                  {"pid_09g0", 0x9},                 // as far as the digits go
                                  {"pid_", 0},
                                  {"pid_9", 0x9},
                                  {"vid_3c7e", 0},
                                  {"", 0}}) {
    EXPECT_EQ(productIdIn(path), pid) << path;
  }
}

class Enumeration : public LibraryTest {
 protected:
  void plug(std::wstring path, std::optional<std::wstring> name) {
    machine().videoInputs.push_back({std::move(path), std::move(name), {}});
  }
  void plug(int pid, const char* name) {
    plug(simulator::videoInputPath(pid, name), std::wstring(name, name + std::string(name).size()));
  }

  std::wstring idOf(int index) { return std::unique_ptr<wchar_t[]>(GetDeviceId(index)).get(); }
  std::wstring nameOf(int index) {
    return std::unique_ptr<wchar_t[]>(GetVideoDeviceName(index)).get();
  }
};

TEST_F(Enumeration, KeepsTheMakersCamerasOnly) {
  const std::wstring farEnough(600, L'x'), tooFar(601, L'x');
  plug(L"vid_3c7e&pid_0001", L"at position 0");
  plug(L"usb#VID_3C7E&PID_0002", L"vendor in upper case");
  plug(L"usb#vid_1234&pid_0003", L"another maker");
  plug(L"usb#vid_3c7e&pid_0004", std::nullopt);
  plug(tooFar + L"vid_3c7e&pid_0005", L"too far in");
  plug(L"USB#vid_3c7e&pid_0870#\u00C9\u0416", L"First");
  plug(farEnough + L"vid_3c7e&pid_0871", L"Second");
  EXPECT_EQ(idOf(0), L"usb#vid_3c7e&pid_0870#\u00C9?") << "lower case for ASCII letters";
  EXPECT_EQ(idOf(1), farEnough + L"vid_3c7e&pid_0871");
  EXPECT_EQ(idOf(2), L"");
  EXPECT_EQ(nameOf(0), L"First");
  EXPECT_EQ(nameOf(1), L"Second");
}

TEST_F(Enumeration, PutsUsb3CamerasLast) {
  plug(0x9B0, "a");
  plug(0x870, "b");
  plug(0x9BF, "c");
  plug(0x9C0, "d");
  const int expected[] = {0x870, 0x9C0, 0x9B0, 0x9BF};
  idOf(0);
  for (int i = 0; i < 4; ++i) EXPECT_EQ(productIdOf(i), expected[i]) << i;
  // Names are ordered alike, but listing them leaves the paths in the system's order.
  EXPECT_EQ(nameOf(0) + nameOf(1) + nameOf(2) + nameOf(3), L"bdac");
  EXPECT_EQ(productIdOf(0), 0x9B0);
  idOf(0);
  EXPECT_EQ(productIdOf(0), 0x870);
}

TEST_F(Enumeration, WifiAndAutomaticIndexesDoNotList) {
  plug(0x870, "a");
  for (const int index : {90, -1}) {
    EXPECT_EQ(idOf(index), L"");
    EXPECT_STREQ(GetDeviceIDA(index), "");
  }
  EXPECT_EQ(nameOf(90), L"");
  EXPECT_EQ(machine().open.comInitializations, 0);
  EXPECT_EQ(nameOf(-1), L"");
  EXPECT_EQ(machine().open.comInitializations, 1) << "-1 is no special case for names";
  EXPECT_EQ(productIdOf(0), 0x870);
}

TEST_F(Enumeration, IndexesOutsideTheTableAreEmpty) {
  plug(0x870, "a");
  for (const int index : {1, 7, 8, -2, 91, INT_MIN, INT_MAX}) {
    EXPECT_EQ(idOf(index), L"") << index;
    EXPECT_EQ(nameOf(index), L"") << index;
    EXPECT_STREQ(GetDeviceIDA(index), "") << index;
  }
}

TEST_F(Enumeration, EarlierEntriesStayBeyondTheCount) {
  plug(0x870, "a");
  plug(0x871, "b");
  idOf(0);
  machine().videoInputs.pop_back();
  EXPECT_EQ(productIdOf(1), 0x871);
  machine().videoInputs.clear();
  EXPECT_FALSE(idOf(0).empty());
  EXPECT_EQ(productIdOf(0), 0x870);
}

TEST_F(Enumeration, ANinthCameraIsIgnored) {
  for (int i = 0; i < 9; ++i) plug(0x870 + i, "x");
  plug(0x9B0, "x");
  GetDeviceIDA(0);
  EXPECT_EQ(nCurrPid, 0x877);
  for (int i = 0; i < 8; ++i) EXPECT_EQ(productIdOf(i), 0x870 + i);
  for (const int i : {INT_MIN, -1, 8, 90, INT_MAX}) EXPECT_EQ(productIdOf(i), 0) << i;
}

TEST_F(Enumeration, NarrowPathLeavesTheLastCamerasProductId) {
  plug(0x9B0, "a");
  plug(0x870, "b");
  const std::string path = GetDeviceIDA(1);
  EXPECT_NE(path.find("pid_09b0"), std::string::npos);
  EXPECT_EQ(nCurrPid, 0x870) << "last in the system's order";
  const char* const pointer = GetDeviceIDA(1);
  EXPECT_EQ(pointer, strOrvaDevice[1].data()) << "valid until the next listing";
  idOf(0);
  EXPECT_EQ(nCurrPid, 0x870);
}

}  // namespace
}  // namespace qvx::tests
