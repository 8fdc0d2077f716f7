// The mains flicker: calls in, sensor registers and camera properties out.
#include "qvx64/api.h"
#include "tests/support/bridge_camera.h"

namespace qvx::tests {
namespace {

using Flicker = BridgeCameraTest;

TEST_F(Flicker, IsSetOnEveryFamily) {
  const std::string auto78 = "bus2, w78 3C01=34", on60 = "bus2, w78 3C01=B4, bus2, w78 3C00=00",
                    on50 = "bus2, w78 3C01=B4, bus2, w78 3C00=04";
  const struct {
    int pid;
    qvx_long mode;
    std::string traffic;
  } rows[] = {
      {0x970, 0, auto78},
      {0x970, 1, on60},
      {0x970, 2, on50},
      {0x970, 3, ""},
      {0x871, 1, "bus2, r48 0120, bus2, w48 0120=F1"},
      {0x871, 2, "bus2, r48 0120, bus2, w48 0120=F0"},
      {0x871, 0, "bus2, r48 0120, bus2, w48 0120=F0"},
      {0x871, -7, "bus2, r48 0120, bus2, w48 0120=F0"},
      {0x9A0, 1, "bus2, w42 22=7F, bus2, w42 23=03"},
      {0x9D0, 2, "bus2, w42 22=99, bus2, w42 23=02"},
      {0x9D0, 0, ""},
  };
  for (const auto& row : rows) {
    plug(row.pid);
    sensor().set(0x0120, 0xF0);
    nPid = row.pid;
    bWait = 9;
    EXPECT_EQ(trafficOf([&] { SetFlicker(0, row.mode); }), row.traffic)
        << std::hex << row.pid << " " << row.mode;
    EXPECT_EQ(bWait, 9);
  }
}

// By `nPid` alone: the block of ids from each row's first to the next row's takes this sensor's
// writes.
TEST_F(Flicker, KnowsItsRanges) {
  s_mainhttp = "http://127.0.0.1:8080/";
  const struct {
    int first, id;
  } rows[] = {{0x860, 0},    {0x870, 6472}, {0x890, 0},    {0x900, 6520}, {0x90A, 0},
              {0x910, 6472}, {0x920, 6520}, {0x950, 0},    {0x960, 6520}, {0x9A0, 5442},
              {0x9B0, 6520}, {0x9C0, 6472}, {0x9D0, 5442}, {0x9E0, 0}};
  for (const auto* row = rows; row + 1 != std::end(rows); ++row) {
    for (int pid = row->first; pid < row[1].first; ++pid) {
      nPid = pid;
      SetFlicker(-1, 1);
      const std::string write = "http " + std::to_string(row->id) + " ";
      const std::string traffic = accesses();
      EXPECT_EQ(traffic.find(write) != std::string::npos, row->id != 0) << std::hex << pid;
      EXPECT_EQ(traffic.empty(), row->id == 0) << std::hex << pid;
    }
  }
  for (const int pid : {-1, 0, 0x9F0, 0xA70}) {
    nPid = pid;
    SetFlicker(-1, 1);
    EXPECT_EQ(accesses(), "") << std::hex << pid;
  }
}

// The property counts 50 Hz as 1 and 60 Hz as 2, the function the other way round.
TEST_F(Flicker, IsAPropertyOfTheCurrentDeviceOn4xx7) {
  plug(0x9E0);
  GetDeviceIDA(0);
  const struct {
    qvx_long mode;
    const char* set;
  } rows[] = {
      {0, ""}, {1, "capture: set 13 to 2 manually"}, {2, "capture: set 13 to 1 manually"}, {3, ""}};
  for (const auto& row : rows) {
    nPid = 0x9E0;
    journal();
    SetFlicker(5, row.mode);
    std::string set;
    for (const std::string& line : journal()) {
      if (line.starts_with("capture: set")) set += line;
    }
    EXPECT_EQ(set, row.set) << row.mode;
  }
}

}  // namespace
}  // namespace qvx::tests
