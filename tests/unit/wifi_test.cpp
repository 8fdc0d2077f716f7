// The words of the Wi-Fi camera: commands, replies and its control document, as cameras and
// strangers may send it.
#include "transport/wifi.h"

#include <cstdlib>
#include <cstring>

#include "state/device_state.h"
#include "tests/support/items.h"
#include "tests/support/library.h"
#include "transport/control_document.h"

namespace qvx::tests {
namespace {

TEST(WifiCommand, PacksIdAndValueAsTheCameraReadsThem) {
  const std::string command = "http://a/?action=commandcontrol&dest=0plugin=0&id=";
  for (const auto& [url, idGroupAndValue] :
       {std::pair(CMD_I2C_R("http://a/", 0x62, 0x80, 1, 1), "1378&group=5&value=8388608"),
        {CMD_I2C_R("http://a/", 0x48, 0, 2, 1), "2376&group=5&value=0"},
        // A register in the top half makes the value negative, an address the id.
        {CMD_I2C_R("http://a/", 0x42, 0xFFFF, 1, 1), "1346&group=5&value=-65536"},
        {CMD_I2C_R("http://a/", 0x80, 0, 1, 1), "-128&group=5&value=0"},
        {CMD_I2C_R("http://a/", 0x62, 0, 5, 6), "1634&group=5&value=0"},  // widths are two bits
        {CMD_I2C_W("http://a/", 0x78, 0x3503, 2, 0x07, 1), "6520&group=5&value=889389063"},
        {CMD_I2C_W("http://a/", 0x62, 0xFFFF, 1, 1, 1), "5474&group=5&value=-65535"},
        {CMD_GPIO_R("http://a/", 1), "256&group=4&value=0"},
        {CMD_GPIO_W("http://a/", 1, 0x10, 0), "1296&group=4&value=0"},
        {CMD_GPIO_W("http://a/", 0, 7, -2), "1031&group=4&value=-2"},
        {CMD_GPIO_W("http://a/", 0, 0x80, 0), "-128&group=4&value=0"}}) {
    EXPECT_EQ(url, command + idGroupAndValue);
  }
}

TEST(WifiAddress, IsAnIpv4LiteralWithOrWithoutAPort) {
  EXPECT_EQ(baseUrlOf("127.0.0.1"), "http://127.0.0.1:8080/");
  for (const char* const address : {"10.200.255.0:1", "255.255.255.255:65535"}) {
    EXPECT_EQ(baseUrlOf(address), std::string("http://") + address + '/');
  }
  for (const std::string& refused :
       itemsIn("|camera|1.2.3|1.2.3.4.5|256.2.3.4|1.2.3.256|1.2.3.04|1.2.3.|.1.2.3|1..2.3|1.2.3.-4|"
               "1.2.3.+4|"
               "1.2.3.4 | 1.2.3.4|1.2.3.0x4|1.2.3.4294967296|1.2.3.4:|1.2.3.4:0|1.2.3.4:080|"
               "1.2.3.4:65536|1.2.3.4:8080/|1.2.3.4:80:80|:8080|1.2.3.4@5.6.7.8|http://1.2.3.4|"
               "[::1]:80|1.2.3.4:4294967297")) {
    EXPECT_EQ(baseUrlOf(refused), std::nullopt) << refused;
  }
}

TEST(Format, CutsLongTextsAt511Characters) {
  const std::string filler(2000, 'x');
  EXPECT_EQ(format("%s", filler.substr(0, 511).c_str()), filler.substr(0, 511));
  EXPECT_EQ(format("%s", filler.c_str()), filler.substr(0, 511));
  EXPECT_EQ(format("%d%%", -5), "-5%");
}

using WifiFetch = LibraryTest;

TEST_F(WifiFetch, TakesTheIntegerAfterTheMarker) {
  using namespace std::string_literals;
  for (const auto& [answer, result] : {
           std::pair("res:37"s, 37),
           {"res:-1", -1},
           {"<p>res: +12 kg</p>res:5", 12},
           {"", 0},
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
       }) {
    answerWifi({answer});
    EXPECT_EQ(loadUrlwWininet("http://camera/x"), result) << answer;
    EXPECT_EQ(journal(), (Journal{"pause 10", "GET http://camera/x"}));
  }
}

const std::string whole =
    R"({"controls": [{"name": "Hue", "value": "9"}, {"name": "Gamma", "min": "72", "max": "500",
        "step": "2", "default": "100", "value": "120"}, {"name": "Gamma", "value": "1"}]})";

TEST(ControlDocument, GivesTheFirstControlOfTheName) {
  const auto control = controlIn(whole, "Gamma");
  ASSERT_TRUE(control);
  const auto& [min, max, step, defaultValue] = control->range;
  EXPECT_EQ(std::tuple(control->value, min, max, step, defaultValue),
            std::tuple(120, 72, 500, 2, 100));
  EXPECT_FALSE(controlIn(whole, "gamma"));
  EXPECT_FALSE(controlIn(whole, "Gam"));
}

TEST(ControlDocument, CutAnywhereIsNone) {
  for (std::size_t length = 0; length < whole.size(); ++length) {
    // From the heap and without a terminator: a read beyond the end is noticed.
    const std::vector<char> cut(whole.begin(), whole.begin() + static_cast<std::ptrdiff_t>(length));
    EXPECT_FALSE(controlIn({cut.data(), cut.size()}, "Gamma")) << length;
  }
  EXPECT_FALSE(controlIn(whole.substr(1), "Gamma"));
}

TEST(ControlDocument, ReadsNumbersAsTheirTextStarts) {
  for (const std::string& row :
       itemsIn(R"("-64" -64|" +7x" 7|"seven" 0|"" 0|12 12|-3.75 -3|true 0|null 0|[5] 0|{"5": 5} 0|)"
               R"("2147483648" 2147483647|"-99999999999999999999" -2147483648)")) {
    const std::size_t end = row.rfind(' ');
    const auto control =
        controlIn(R"({"controls": [{"name": "Hue", "value": )" + row.substr(0, end) + "}]}", "Hue");
    ASSERT_TRUE(control) << row;
    EXPECT_EQ(control->value, std::stoi(row.substr(end))) << row;
    EXPECT_EQ(control->range.max, 0) << "missing";
  }
}

TEST(ControlDocument, OfAnotherShapeFindsNothing) {
  const std::string deep(1500, '[');
  std::vector<std::string> documents =
      itemsIn(R"(|7|null|[]|{}|"controls"|[{"controls": [{"name": "Hue"}]}]|{"controls": "Hue"}|)"
              R"({"controls": null}|{"controls": {"name": "Hue"}}|)"
              R"({"controls": [{"name": ["Hue"]}, {"name": {"name": "Hue"}}]}|)"
              R"({"controls": ["Hue", 3, null, ["name", "Hue"], true]})");
  for (const std::string& start : {deep, R"({"controls": )" + deep, std::string(1500, '{'),
                                   R"({"controls": [{"name": "Hue", "value": )" + deep,
                                   std::string("\0", 1), std::string("\xFF\xFE{}")}) {
    documents.push_back(start);
  }
  for (const std::string& document : documents) {
    EXPECT_FALSE(controlIn(document, "Hue")) << document.substr(0, 60);
  }
}

TEST(ControlDocument, EndsWithItsFirstValue) {
  EXPECT_TRUE(controlIn(whole + "} garbage {", "Gamma"));
  EXPECT_FALSE(controlIn("{} " + whole, "Gamma"));
  EXPECT_TRUE(controlIn("// a remark\n" + whole, "Gamma"));
  EXPECT_TRUE(controlIn(R"({"controls": [7, {"name": "Hue"}]})", "Hue")) << "after a stranger";
}

TEST(WriteMemory, AppendsAndTerminatesOrDropsTheBuffer) {
  MemoryStruct buffer{static_cast<char*>(std::malloc(16)), 0};
  std::memset(buffer.memory, 'x', 16);  // nothing ends a text by chance
  char hello[] = "hello ", world[] = "world";
  EXPECT_EQ(WriteMemoryCallback(hello, 2, 3, &buffer), 6u);
  EXPECT_EQ(WriteMemoryCallback(world, 1, 5, &buffer), 5u);
  EXPECT_EQ(WriteMemoryCallback(nullptr, 0, 5, &buffer), 0u);
  ASSERT_EQ(buffer.size, 11u);
  EXPECT_STREQ(buffer.memory, "hello world");
  std::free(buffer.memory);
  buffer = {nullptr, 0};
  EXPECT_EQ(WriteMemoryCallback(nullptr, ~0ull, 1, &buffer), ~0ull) << "cannot grow";
  EXPECT_EQ(buffer.memory, nullptr);
  EXPECT_EQ(buffer.size, 0u);
}

}  // namespace
}  // namespace qvx::tests
