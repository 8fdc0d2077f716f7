#include "transport/wifi.h"

#include <cstdlib>
#include <cstring>

#include "state/device_state.h"
#include "tests/support/library.h"

namespace qvx::tests {
namespace {

using simulator::HttpAnswer;

TEST(WifiCommand, PacksIdAndValueAsTheCameraReadsThem) {
  const struct {
    int device, regBytes, read, write;
  } rows[] = {
      {0x62, 1, 1378, 5474}, {0x78, 2, 2424, 6520}, {0x48, 2, 2376, 6472},
      {0x42, 1, 1346, 5442}, {0x80, 1, -128, -128},  // an address with its top bit set reaches into
                                                     // every upper bit
  };
  for (const auto& row : rows) {
    EXPECT_EQ(CTRL_ID_I2C_R(row.device, row.regBytes, 1), row.read) << row.device;
    EXPECT_EQ(CTRL_ID_I2C_W(row.device, row.regBytes, 1), row.write) << row.device;
  }
  EXPECT_EQ(CTRL_ID_I2C_R(0x62, 5, 6), 0x62 | 1 << 10 | 2 << 8) << "widths are two bits";
  EXPECT_EQ(CTRL_ID_GPIO_R(1), 256);
  EXPECT_EQ(CTRL_ID_GPIO_W(1, 0x10), 1296);
  EXPECT_EQ(CTRL_ID_GPIO_W(0, 7), 1031);
  EXPECT_EQ(CTRL_ID_GPIO_W(0, 0x80), -128);
  EXPECT_EQ(CTRL_VAL_I2C(0xFFFF, 1), -65535) << "a register in the top half makes it negative";
}

TEST(WifiCommand, BuildsTheUrlsLetterByLetter) {
  EXPECT_EQ(CMD_I2C_R("http://a/", 0x62, 0x80, 1, 1),
            "http://a/?action=commandcontrol&dest=0plugin=0&id=1378&group=5&value=8388608");
  EXPECT_EQ(CMD_I2C_W("", 0x78, 0x3503, 2, 0x07, 1),
            "?action=commandcontrol&dest=0plugin=0&id=6520&group=5&value=889389063");
  EXPECT_EQ(CMD_GPIO_R("", 1), "?action=commandcontrol&dest=0plugin=0&id=256&group=4&value=0");
  EXPECT_EQ(CMD_GPIO_W("", 1, 0x10, 0),
            "?action=commandcontrol&dest=0plugin=0&id=1296&group=4&value=0");
  EXPECT_EQ(CMD_GPIO_W("", 0, 7, -2),
            "?action=commandcontrol&dest=0plugin=0&id=1031&group=4&value=-2");
}

TEST(Format, CutsLongTextsAt511Characters) {
  const std::string filler(2000, 'x');
  EXPECT_EQ(format("%s", filler.substr(0, 511).c_str()), filler.substr(0, 511));
  EXPECT_EQ(format("%s", filler.c_str()), filler.substr(0, 511));
  EXPECT_EQ(format("%d%%", -5), "-5%");
}

class WifiFetch : public LibraryTest {
 protected:
  int load(HttpAnswer answer) {
    machine().wifi = [answer](const std::string&) { return answer; };
    return loadUrlwWininet("http://camera/x");
  }
};

TEST_F(WifiFetch, TakesTheIntegerAfterTheMarker) {
  using namespace std::string_literals;
  const struct {
    std::string answer;
    int result;
  } rows[] = {
      {"res:37", 37},
      {"res:-1", -1},
      {"<p>res: +12 kg</p>res:5", 12},
      {"res:", 0},
      {"res:x", 0},
      {"ok", 0},
      {"abc123", 123},  // without the marker the text is read from its fourth character
      {"re:45", 45},    // likewise
      {"\0res:9"s, 0},  // the text ends at its first NUL
      {"res:7\0008"s, 7},
      {"res:99999999999", 2147483647},
      {"res:-99999999999", -2147483647 - 1},
      {std::string(8192, 'a'), 0},
      {std::string(8190, 'a') + "res:6", 0},  // one read only: the marker is cut off
      {std::string(8187, 'a') + "res:6", 6},
      {std::string(300, '\xFF') + "res:6", 6},
  };
  for (const auto& row : rows) EXPECT_EQ(load({true, {row.answer}}), row.result) << row.answer;
}

TEST_F(WifiFetch, GivesZeroWhenNothingComesBack) {
  EXPECT_EQ(load({.reachable = false, .chunks = {}}), 0);
  EXPECT_EQ(load({true, {}}), 0);
  EXPECT_EQ(load({true, {}, true}), 0);
  EXPECT_EQ(load({true, {""}}), 0);
}

TEST_F(WifiFetch, PausesBeforeItAsksAndSaysWhatItAsks) {
  load({true, {"res:1"}});
  EXPECT_EQ(journal(), (Journal{"pause 10", "GET http://camera/x"}));
}

TEST_F(WifiFetch, LeavesItsHandlesOpenOnSuccessOnly) {
  load({true, {"res:1"}});
  EXPECT_EQ(machine().open.internetSessions, 1);
  EXPECT_EQ(machine().open.internetRequests, 1);
  load({true, {}});
  load({.reachable = false, .chunks = {}});
  EXPECT_EQ(machine().open.internetSessions, 1);
  EXPECT_EQ(machine().open.internetRequests, 1);
}

TEST(WriteMemory, AppendsAndTerminates) {
  MemoryStruct buffer{nullptr, 0};
  char hello[] = "hello ", world[] = "world";
  EXPECT_EQ(WriteMemoryCallback(hello, 2, 3, &buffer), 6u);
  EXPECT_EQ(WriteMemoryCallback(world, 1, 5, &buffer), 5u);
  EXPECT_EQ(WriteMemoryCallback(nullptr, 0, 5, &buffer), 0u);
  ASSERT_EQ(buffer.size, 11u);
  EXPECT_STREQ(buffer.memory, "hello world");
  std::free(buffer.memory);
}

TEST(WriteMemory, DropsABufferThatCannotGrow) {
  MemoryStruct buffer{nullptr, 0};
  EXPECT_EQ(WriteMemoryCallback(nullptr, ~0ull, 1, &buffer), ~0ull);
  EXPECT_EQ(buffer.memory, nullptr);
  EXPECT_EQ(buffer.size, 0u);
}

}  // namespace
}  // namespace qvx::tests
