// The Wi-Fi camera's control document, as cameras and strangers may send it.
#include "transport/control_document.h"

#include <gtest/gtest.h>

#include <string>
#include <tuple>

#include "tests/support/items.h"

namespace qvx::tests {
namespace {

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
  for (const auto& [value, expected] : {std::pair(R"("-64")", -64),
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
                                        {R"("-99999999999999999999")", -2147483647 - 1}}) {
    const auto control =
        controlIn(std::string(R"({"controls": [{"name": "Hue", "value": )") + value + "}]}", "Hue");
    ASSERT_TRUE(control) << value;
    EXPECT_EQ(control->value, expected) << value;
    EXPECT_EQ(control->range.max, 0) << "missing";
  }
}

TEST(ControlDocument, OfAnotherShapeFindsNothing) {
  const std::string deep(1500, '[');
  std::vector<std::string> documents = tests::itemsIn(
      R"(|7|null|[]|{}|"controls"|[{"controls": [{"name": "Hue"}]}]|{"controls": "Hue"}|)"
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

}  // namespace
}  // namespace qvx::tests
