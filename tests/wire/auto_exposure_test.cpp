// Automatic exposure: calls in, sensor registers out, for every family.
#include "qvx64/api.h"
#include "tests/support/bridge_camera.h"

namespace qvx::tests {
namespace {

using AutoExposure = BridgeCameraTest;

TEST_F(AutoExposure, SetsTheTarget) {
  const Setting rows[] = {
      {0x99F, 0x50, "bus2, w78 3A1E=50, bus2, w78 3A1B=70, bus2, w78 3A10=52, bus2, w78 3A0F=5E"},
      {0x920, 0xFF, "bus2, w78 3A1E=FF, bus2, w78 3A1B=1F, bus2, w78 3A10=01, bus2, w78 3A0F=0D"},
      {0x880, 0x50, "bus2, w48 038E=50, bus2, w48 085C=01"},
      {0x9C0, 0x50,
       "bus2, r62 80 fast, bus2, r62 80 fast, bus2, w48 038E=50, "
       "bus2, r62 80 fast, bus2, w48 085C=01"},
      {0x9A0, 0x50, "bus2, r62 80 fast, bus2, w42 25=50"},
      {0x9D0, 0x50, "bus2, r62 80 fast, bus2, w42 25=50"},
      {0x9E0, 0x50,
       "bus2, r62 80 fast, bus2, r62 80 fast, cmd 1E 00000101, cmd 1E 0000000180, "
       "cmd 1E 00000201FF, cmd 1E 0000000150, cmd 1E 0000020160, cmd 1E 0000010140"},
      {0x9E1, 20,
       "bus2, r62 80 fast, bus2, r62 80 fast, cmd 1E 00000101, cmd 1E 0000000180, "
       "cmd 1E 00000201FF, cmd 1E 0000000115, cmd 1E 0000020125, cmd 1E 0000010105"},
      {0x9E2, 999,
       "bus2, r62 80 fast, bus2, r62 80 fast, cmd 1E 00000101, cmd 1E 0000000180, "
       "cmd 1E 00000201FF, cmd 1E 00000001F0, cmd 1E 00000201, cmd 1E 00000101E0"},
      {0x930, 0x50, "bus2, r62 80 fast, bus2, r62 80 fast"},
  };
  for (const Setting& row : rows) {
    plug(row.pid);
    bWait = 9;
    EXPECT_EQ(trafficOf([&] { SetAETarget(0, row.value); }), row.traffic) << std::hex << row.pid;
    const bool rests = row.pid == 0x99F || row.pid == 0x920 || row.pid == 0x930;
    EXPECT_EQ(bWait, rests ? 0 : 1) << std::hex << row.pid;
    EXPECT_EQ(nPid, row.pid);
  }
}

TEST_F(AutoExposure, ReadsTheTarget) {
  const Reading rows[] = {
      {0x970, 0x38, "bus2, r78 3A1E"},
      {0x925, 0x38, "bus2, r78 3A1E"},
      {0x91F, 0x40, "bus2, r48 038E"},
      {0x9C1, 0x40, "bus2, r62 80 fast, bus2, r62 80 fast, bus2, r48 038E"},
      {0x9A5, 0x48, "bus2, r62 80 fast, bus2, r42 25 fast"},
      {0x9D5, 0x48, "bus2, r62 80 fast, bus2, r42 25 fast"},
      {0x9E5, 0x40, "bus2, r62 80 fast, bus2, r62 80 fast, cmd 1D 00000001"},
      {0x930, 1, "bus2, r62 80 fast, bus2, r62 80 fast"},
  };
  for (const Reading& row : rows) {
    plug(row.pid);
    bWait = 9;
    EXPECT_EQ(trafficOf([&] { EXPECT_EQ(GetAETarget(0), row.value); }), row.traffic)
        << std::hex << row.pid;
    EXPECT_EQ(bWait, row.value == 1 ? 0 : 1) << std::hex << row.pid;
  }
  strOrvaDevice[0].clear();
  bWait = 9;
  EXPECT_EQ(GetAETarget(0), 16);
  EXPECT_EQ(accesses(), "");
  EXPECT_EQ(bWait, 0);
  nCurrPid = 0x970;
  GetAETarget(0);
  EXPECT_EQ(nPid, 0x970) << "the fallback stays";
}

TEST_F(AutoExposure, SwitchesAutomaticExposure) {
  const std::string toBridge = "bus2, r62 80 fast, ";
  const std::string to3xxx = toBridge + "bus2, r62 80 fast, bus2, r42 13 fast, ";
  const struct {
    int pid;
    qvx_long mode;
    int before;
    std::string traffic;
  } rows[] = {
      {0x9E0, 1, 0x0123, toBridge + "r 1700, w 1700=8123"},
      {0x9E0, 0, 0x8123, toBridge + "r 1700, w 1700=0123"},
      {0x9E0, -1, 0x8123, toBridge + "r 1700, w 1700=0123"},
      {0x970, 1, 0xF9, toBridge + "bus2, r78 3503, bus2, w78 3503=00"},
      {0x925, -1, 0xF9, toBridge + "bus2, r78 3503, bus2, w78 3503=00"},
      {0x970, 0, 0xF8, toBridge + "bus2, r78 3503, bus2, w78 3503=FF"},
      {0x970, 2, 0xF9, toBridge + "bus2, r78 3503, bus2, w78 3503=F9"},
      {0x870, 1, 0x54, toBridge + "bus2, r48 0380, bus2, w48 0380=55"},
      {0x870, -1, 0x54, toBridge + "bus2, r48 0380, bus2, w48 0380=55"},
      {0x870, 0, 0x55, toBridge + "bus2, r48 0380, bus2, w48 0380=54"},
      {0x870, -2, 0x55, toBridge + "bus2, r48 0380, bus2, w48 0380=55"},
      {0x9D0, 1, 0xAA, to3xxx + "bus2, w42 13=BD, bus2, w42 0E=D5"},
      {0x9A0, -1, 0xAA, to3xxx + "bus2, w42 13=BD, bus2, w42 0E=D5"},
      {0x9A0, 0, 0xAA, to3xxx + "bus2, w42 13=B8, bus2, w42 0E=15"},
      {0x9A0, 2, 0xAA, to3xxx + "bus2, w42 13=AA"},
      {0x930, 1, 0, toBridge + "bus2, r62 80 fast"},
  };
  for (const auto& row : rows) {
    plug(row.pid);
    for (const int reg : {0x3503, 0x0380, 0x13}) {
      sensor().set(static_cast<std::uint16_t>(reg), static_cast<std::uint8_t>(row.before));
    }
    std::uint32_t mode4xx7 = static_cast<std::uint32_t>(row.before);
    etLib2_RegWrite_DevNum(0, 0x1700, 2, &mode4xx7);
    bWait = 9;
    EXPECT_EQ(trafficOf([&] { SetAutoExposure(0, row.mode); }), row.traffic)
        << std::hex << row.pid << " " << row.mode;
    EXPECT_EQ(bWait, row.pid == 0x930 ? 0 : 1);
    EXPECT_EQ(nPid, row.pid);
  }
}

TEST_F(AutoExposure, TellsWhetherExposureIsAutomatic) {
  const Reading rows[] = {
      {0x9E0, 1, "bus2, r62 80 fast, r 1700"},
      {0x970, 1, "bus2, r62 80 fast, bus2, r78 3503"},
      {0x92F, 1, "bus2, r62 80 fast, bus2, r78 3503"},
      {0x870, 1, "bus2, r62 80 fast, bus2, r48 0380"},
      {0x9C0, 1, "bus2, r62 80 fast, bus2, r62 80 fast, bus2, r62 80 fast, bus2, r48 0380"},
      {0x9A0, 1, "bus2, r62 80 fast, bus2, r62 80 fast, pause 50, bus2, r42 13 fast"},
      {0x9D0, 1, "bus2, r62 80 fast, bus2, r62 80 fast, pause 50, bus2, r42 13 fast"},
      {0x930, 0, "bus2, r62 80 fast, bus2, r62 80 fast"},
  };
  for (const Reading& row : rows) {
    plug(row.pid);
    bWait = 9;
    EXPECT_EQ(trafficOf([&] { EXPECT_EQ(GetAutoExposure(0), row.value); }), row.traffic)
        << std::hex << row.pid;
    EXPECT_EQ(bWait, 9) << "measuring goes on";
    SetAutoExposure(0, 0);
    EXPECT_EQ(GetAutoExposure(0), 0) << std::hex << row.pid;
  }
}

}  // namespace
}  // namespace qvx::tests
