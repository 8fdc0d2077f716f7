// The Wi-Fi camera's control document, as cameras and strangers may send it.
#include "transport/control_document.h"

#include <gtest/gtest.h>

#include <string>

namespace qvx::tests {
namespace {

const std::string whole =
    R"({"controls": [{"name": "Hue", "value": "9"}, {"name": "Gamma", "min": "72", "max": "500",
        "step": "2", "default": "100", "value": "120"}, {"name": "Gamma", "value": "1"}]})";

TEST(ControlDocument, GivesTheFirstControlOfTheName) {
  const auto control = controlIn(whole, "Gamma");
  ASSERT_TRUE(control);
  EXPECT_EQ(control->value, 120);
  EXPECT_EQ(control->range.min, 72);
  EXPECT_EQ(control->range.max, 500);
  EXPECT_EQ(control->range.step, 2);
  EXPECT_EQ(control->range.defaultValue, 100);
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
  const struct {
    const char* value;
    int expected;
  } rows[] = {
      {R"("-64")", -64},
      {R"(" +7x")", 7},
      {R"("seven")", 0},
      {R"("")", 0},
      {"12", 12},
      {"-3.75", -3},
      {"true", 0},
      {"null", 0},
      {R"([5])", 0},
      {R"({"5": 5})", 0},
      {R"("2147483648")", 2147483647},
      {R"("-99999999999999999999")", -2147483647 - 1},
  };
  for (const auto& row : rows) {
    const auto control = controlIn(
        std::string(R"({"controls": [{"name": "Hue", "value": )") + row.value + "}]}", "Hue");
    ASSERT_TRUE(control) << row.value;
    EXPECT_EQ(control->value, row.expected) << row.value;
    EXPECT_EQ(control->range.max, 0) << "missing";
  }
}

TEST(ControlDocument, OfAnotherShapeFindsNothing) {
  const std::string deep(1500, '[');
  for (const std::string& document :
       {std::string(), std::string("\0", 1), std::string("\xFF\xFE{}"), std::string("7"),
        std::string("null"), std::string("[]"), std::string("{}"), std::string("\"controls\""),
        std::string(R"([{"controls": [{"name": "Hue"}]}])"), std::string(R"({"controls": "Hue"})"),
        std::string(R"({"controls": null})"), std::string(R"({"controls": {"name": "Hue"}})"),
        std::string(R"({"controls": [{"name": ["Hue"]}, {"name": {"name": "Hue"}}]})"),
        std::string(R"({"controls": ["Hue", 3, null, ["name", "Hue"], true]})"), deep,
        R"({"controls": )" + deep, R"({"controls": [{"name": "Hue", "value": )" + deep,
        std::string(1500, '{')}) {
    EXPECT_FALSE(controlIn(document, "Hue")) << document.substr(0, 60);
  }
}

TEST(ControlDocument, EndsWithItsFirstValue) {
  EXPECT_TRUE(controlIn(whole + "} garbage {", "Gamma"));
  EXPECT_FALSE(controlIn("{} " + whole, "Gamma"));
  EXPECT_TRUE(controlIn("// a remark\n" + whole, "Gamma"));
  EXPECT_TRUE(controlIn(R"({"controls": [7, {"name": "Hue"}]})", "Hue")) << "after a stranger";
}

}  // namespace
}  // namespace qvx::tests
