// The trace against the simulated devices' own journal: the same accesses in the same order, and
// nothing that a camera or an application sees depends on it.
#include <gtest/gtest.h>

#include <fstream>
#include <map>
#include <random>
#include <regex>
#include <sstream>

#include "tests/torture/rig.h"
#include "trace/trace.h"

namespace qvx::tests {
namespace {

using simulator::Fault;
using Lines = std::vector<std::string>;
using Fields = std::vector<std::pair<std::string, std::string>>;

constexpr char traceFile[] = "camera.trace";

struct Event {
  std::string kind;
  Fields fields;

  std::string operator[](const std::string& name) const {
    for (const auto& [key, value] : fields)
      if (key == name) return value;
    return "";
  }
};

std::string unquoted(const std::string& text) {
  return text.size() < 2 ? text : text.substr(1, text.size() - 2);
}

// By the grammar of docs/trace.md; a line that does not follow it fails the test.
std::vector<Event> eventsIn(const std::string& trace) {
  static const std::string item =
      R"re((?:"(?:[^"\\\x00-\x1F]|\\["\\]|\\u00[0-9a-f]{2})*"|[^\s",]*))re";
  static const std::regex field(" ([a-z0-9_]+)=(" + item + "(?:," + item + ")*)");
  static const std::regex line("[0-9]+ [0-9]+ [0-9]+ [0-9]+ ([a-z0-9-]+)((?: [a-z0-9_]+=" + item +
                               "(?:," + item + ")*)*)");
  std::vector<Event> events;
  std::istringstream lines(trace);
  for (std::string text; std::getline(lines, text);) {
    std::smatch parts;
    EXPECT_TRUE(std::regex_match(text, parts, line)) << text;
    Event event{parts[1], {}};
    const std::string fields = parts[2];
    for (std::sregex_iterator at(fields.begin(), fields.end(), field), end; at != end; ++at)
      event.fields.emplace_back((*at)[1], (*at)[2]);
    events.push_back(event);
  }
  return events;
}

// "6280" as the journal has it: "62 80".
std::string spaced(const std::string& digits) {
  return std::regex_replace(digits, std::regex("(..)(?!$)"), "$1 ");
}

// What the journal says of the same event, empty where it is no access.
std::string journalLine(const Event& e) {
  if (e.kind == "http") return "GET " + unquoted(e["url"]);
  if (e.kind == "pause") return "pause " + e["ms"];
  if (e.kind == "timer") return "timer " + e["identifier"] + " every " + e["period_ms"];
  if (e.kind == "usb3-open") return "usb open";
  if (e.kind == "hid-set") return "set feature " + spaced(e["sent"]);
  if (e.kind == "hid-get") return "get feature " + e["id"] + " " + e["size"];
  if (e.kind == "unit-get") return "get " + e["set"].substr(0, 8) + "/" + e["id"] + " " + e["size"];
  if (e.kind == "unit-set") {
    return "set " + e["set"].substr(0, 8) + "/" + e["id"] + ": " + spaced(e["sent"]);
  }
  if (e.kind == "picture-range") return "capture: range of " + e["property"];
  if (e.kind.starts_with("picture-")) return "capture: " + e.kind.substr(8) + " " + e["property"];
  if (e.kind != "usb3") return "";
  const std::string head = "usb " + e["type"] + " " + e["request"] + " " + e["value"] + " " +
                           e["index"] + " " + e["length"];
  return e["sent"].empty() ? head : head + ": " + spaced(e["sent"]);
}

Lines accessesIn(const std::vector<Event>& events) {
  Lines accesses;
  for (const Event& event : events) {
    const std::string line = journalLine(event);
    if (!line.empty()) accesses.push_back(line);
  }
  return accesses;
}

Lines accessesIn(const Lines& journal) {
  static const std::regex access("(GET|pause|timer|usb|set|get) .*");
  static const std::regex picture("(capture: (?:get|set|range of) [0-9-]+).*");
  Lines accesses;
  for (const std::string& line : journal) {
    std::smatch parts;
    if (line.starts_with("usb open")) {
      accesses.emplace_back("usb open");
    } else if (std::regex_match(line, access)) {
      accesses.push_back(line);
    } else if (std::regex_match(line, parts, picture)) {
      accesses.push_back(parts[1]);
    }
  }
  return accesses;
}

struct Story {
  Lines journal, results;
  std::string trace;
};

// Calls at random, some of them on a camera that refuses or is gone.
Story tell(const Path& path, const std::string& file, std::optional<std::size_t> room = {}) {
  Rig rig(path);
  simulator::World& machine = rig.machine();
  machine.environment["QVX64_TRACE"] = file;
  machine.keepsJournal = true;
  machine.diskRoom = room;
  std::mt19937 dice(path.pid);
  const auto pick = [&dice](std::size_t count) { return dice() % count; };
  Story story;
  story.results.push_back(rig.init());
  for (int call = 0; call < 60; ++call) {
    if (pick(10) == 0) rig.pressButton(pick(2) == 0);
    if (pick(10) == 0)
      machine.set({.kind = Fault::fails, .first = 1 + pick(20), .count = 1 + pick(3)});
    if (pick(20) == 0) pick(2) == 0 ? machine.unplug() : machine.plugIn();
    const ExportedCall& exported = everyCall()[pick(everyCall().size())];
    if (std::string(exported.name) != "GetWiFiImage") story.results.push_back(rig.call(exported));
  }
  story.journal = machine.takeJournal();
  story.trace = machine.files[std::wstring(file.begin(), file.end())];
  return story;
}

TEST(Trace, TellsEveryAccessInOrderAndChangesNone) {
  for (const Path& path : everyPath()) {
    SCOPED_TRACE(path.name());
    const Story plain = tell(path, ""), traced = tell(path, traceFile);
    EXPECT_EQ(plain.trace, "");
    EXPECT_EQ(traced.journal, plain.journal);
    EXPECT_EQ(traced.results, plain.results);
    const Lines told = accessesIn(eventsIn(traced.trace)), seen = accessesIn(traced.journal);
    const auto [one, other] = std::mismatch(told.begin(), told.end(), seen.begin(), seen.end());
    EXPECT_TRUE(one == told.end() && other == seen.end())
        << "told: " << (one == told.end() ? "nothing more" : *one)
        << "\nseen: " << (other == seen.end() ? "nothing more" : *other);
  }
}

// The kinds and their fields as docs/trace.md has them.
std::map<std::string, Lines> documentedFields() {
  std::ifstream document(QVX_TRACE_DOCUMENT);
  std::map<std::string, Lines> kinds;
  std::string text;
  while (std::getline(document, text) && text != "```fields") {
  }
  while (std::getline(document, text) && text != "```") {
    std::istringstream words(text);
    std::string kind, name;
    words >> kind;
    while (words >> name) kinds[kind].push_back(name);
  }
  return kinds;
}

// A field may be missing where it has a question mark, and stand as often as it likes with a star.
bool follows(const Fields& fields, const Lines& form) {
  std::string names, pattern;
  for (const auto& [name, value] : fields) names += name + ' ';
  for (const std::string& field : form) {
    const bool bare = field.find_first_of("?*") == std::string::npos;
    pattern += bare ? field + ' ' : "(?:" + field.substr(0, field.size() - 1) + " )" + field.back();
  }
  return std::regex_match(names, std::regex(pattern));
}

TEST(Trace, FollowsItsGrammar) {
  const auto kinds = documentedFields();
  ASSERT_GT(kinds.size(), 20U);
  std::map<std::string, int> seen;
  for (const Path& path : everyPath()) {
    for (const Event& event : eventsIn(tell(path, traceFile).trace)) {
      ++seen[event.kind];
      const auto kind = kinds.find(event.kind);
      ASSERT_NE(kind, kinds.end()) << event.kind;
      std::string names;
      for (const auto& [name, value] : event.fields) names += ' ' + name;
      EXPECT_TRUE(follows(event.fields, kind->second)) << event.kind << names;
    }
  }
  for (const char* rare : {"busy", "late", "note"})
    seen[rare] = 1;  // here everything comes in time
  EXPECT_EQ(seen.size(), kinds.size());
}

// Whatever room the disk has: the calls go on, and the lines that fitted are whole but for the
// last.
TEST(Trace, EndsWhereTheDiskIsFull) {
  const Path& path = everyPath().front();
  const Story plain = tell(path, "");
  for (const std::size_t room : {0, 1, 200, 5000}) {
    const Story story = tell(path, traceFile, room);
    EXPECT_EQ(story.results, plain.results);
    EXPECT_EQ(story.trace.size(), room);
  }
  const Story nowhere = tell(path, "none\\camera.trace");
  EXPECT_EQ(nowhere.results, plain.results);
  EXPECT_EQ(nowhere.trace, "");
}

}  // namespace
}  // namespace qvx::tests
