// The trace against the simulated devices' own journal: the same accesses in the same order, and
// nothing that a camera or an application sees depends on it.
#include <gtest/gtest.h>

#include <algorithm>
#include <fstream>
#include <map>
#include <random>
#include <regex>
#include <set>
#include <sstream>

#include "platform/process.h"
#include "tests/torture/memory.h"
#include "tests/torture/rig.h"
#include "trace/trace.h"

namespace qvx::tests {
namespace {

using namespace std::string_view_literals;
using simulator::Fault;
using Lines = std::vector<std::string>;
// The fields by name; of one that occurs several times, the first.
using Event = std::map<std::string, std::string>;

constexpr char traceFile[] = "camera.trace";
constexpr char kind[] = "";  // the field that every line has without a name

std::string unquoted(const std::string& text) {
  return text.size() < 2 ? text : text.substr(1, text.size() - 2);
}

struct LineForm {
  std::regex whole;
  Lines fields;
};

// Each kind of line as docs/trace.md lists its fields: one with a question mark may be missing, one
// with a star may occur any number of times.
std::map<std::string, LineForm> documentedLines() {
  const std::string item = R"re((?:"(?:[^"\\\x00-\x1F]|\\["\\]|\\u00[0-9a-f]{2})*"|[^\s",]*))re";
  std::ifstream document(QVX_TRACE_DOCUMENT);
  std::map<std::string, LineForm> lines;
  std::string text;
  while (std::getline(document, text) && text != "```fields") {
  }
  while (std::getline(document, text) && text != "```") {
    std::istringstream words(text);
    std::string name, field, form = "[0-9]+ [0-9]+ [0-9]+ [0-9]+ ";
    words >> name;
    Lines& fields = lines[name].fields;
    form += name;
    while (words >> field) {
      const std::size_t end = std::min(field.find_first_of("?*"), field.size());
      fields.push_back(field.substr(0, end));
      form += "(?: " + fields.back() + "=" + item + "(?:," + item + ")*)" + field.substr(end);
    }
    lines[name].whole = form;
  }
  return lines;
}

// A line that does not follow the document fails the test.
std::vector<Event> eventsIn(const std::string& trace) {
  static const auto documented = documentedLines();
  static const std::regex field(R"re( ([a-z0-9_]+)=((?:"(?:[^"\\]|\\.)*"|[^\s"])*))re");
  std::vector<Event> events;
  std::istringstream lines(trace);
  for (std::string text; std::getline(lines, text);) {
    std::istringstream words(text);
    Event event;
    for (int i = 0; i < 5; ++i) words >> event[kind];  // behind four numbers
    const auto line = documented.find(event[kind]);
    EXPECT_TRUE(line != documented.end() && std::regex_match(text, line->second.whole)) << text;
    for (std::sregex_iterator at(text.begin(), text.end(), field), end; at != end; ++at)
      event.emplace((*at)[1], (*at)[2]);
    events.push_back(event);
  }
  return events;
}

// "6280" as the journal has it: "62 80".
std::string spaced(std::string digits) {
  for (std::size_t at = digits.size(); at > 2;) digits.insert(at -= 2, " ");
  return digits;
}

// What the journal says of the same event, empty where it is no access.
std::string journalLine(Event e) {
  const std::string& name = e[kind];
  const std::string sent = e["sent"].empty() ? "" : ": " + spaced(e["sent"]);
  const std::string property = e["set"].substr(0, 8) + "/" + e["id"];
  if (name == "http") return "GET " + unquoted(e["url"]);
  if (name == "pause") return "pause " + e["ms"];
  if (name == "timer") return "timer " + e["identifier"] + " every " + e["period_ms"];
  if (name == "usb3-open") return "usb open";
  if (name == "hid-set") return "set feature " + spaced(e["sent"]);
  if (name == "hid-get") return "get feature " + e["id"] + " " + e["size"];
  if (name == "unit-get") return "get " + property + " " + e["size"];
  if (name == "unit-set") return "set " + property + sent;
  if (name == "picture-range") return "capture: range of " + e["property"];
  if (name.starts_with("picture-")) return "capture: " + name.substr(8) + " " + e["property"];
  if (name != "usb3") return "";
  return "usb " + e["type"] + " " + e["request"] + " " + e["value"] + " " + e["index"] + " " +
         e["length"] + sent;
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
  static const std::regex access("(?:GET|pause|timer|usb|set|get) ");
  static const std::regex picture("(capture: (?:get|set|range of) [0-9-]+).*");
  Lines accesses;
  for (const std::string& line : journal) {
    std::smatch parts;
    if (line.starts_with("usb open")) {
      accesses.emplace_back("usb open");
    } else if (std::regex_search(line, access, std::regex_constants::match_continuous)) {
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
    if (exported.name != "GetWiFiImage"sv) story.results.push_back(rig.call(exported));
  }
  story.journal = machine.takeJournal();
  story.trace = machine.files[std::wstring(file.begin(), file.end())];
  return story;
}

TEST(Trace, TellsEveryAccessByItsGrammarAndChangesNone) {
  std::set<std::string> seen;  // kinds, and fields of kinds
  for (const Path& path : everyPath()) {
    SCOPED_TRACE(path.name());
    const Story plain = tell(path, ""), traced = tell(path, traceFile);
    EXPECT_EQ(plain.trace, "");
    EXPECT_EQ(traced.journal, plain.journal);
    EXPECT_EQ(traced.results, plain.results);
    const std::vector<Event> events = eventsIn(traced.trace);
    for (const Event& event : events) {
      for (const auto& [field, value] : event) seen.insert(event.at(kind) + " " + field);
    }
    const Lines told = accessesIn(events), accesses = accessesIn(traced.journal);
    const auto [one, other] = std::ranges::mismatch(told, accesses);
    EXPECT_TRUE(one == told.end() && other == accesses.end())
        << "told: " << (one == told.end() ? "nothing more" : *one)
        << "\nseen: " << (other == accesses.end() ? "nothing more" : *other);
  }
  const auto documented = documentedLines();
  EXPECT_GT(documented.size(), 20U);
  // Here all comes in time and as text, and no USB 3 camera is one with product id 0.
  const std::regex rare("(busy|late|note) .*|answer bytes|usb3-find [^r].*");
  for (const auto& [name, line] : documented) {
    for (const std::string& field : line.fields)
      EXPECT_TRUE(seen.contains(name + " " + field) || std::regex_match(name + " " + field, rare))
          << name << " " << field;
  }
}

// Whatever room the disk has: the calls go on, and the lines that fitted are whole but for the
// last.
TEST(Trace, EndsWhereTheDiskIsFull) {
  const Path& path = everyPath().front();
  const Story plain = tell(path, "");
  for (const std::size_t room : {0U, 1U, 200U, 5000U}) {
    const Story story = tell(path, traceFile, room);
    EXPECT_EQ(story.results, plain.results);
    EXPECT_EQ(story.trace.size(), room);
  }
  const Story nowhere = tell(path, "none\\camera.trace");
  EXPECT_EQ(nowhere.results, plain.results);
  EXPECT_EQ(nowhere.trace, "");
}

TEST(Trace, EndsBeforeALineThatMemoryLacksFor) {
  Rig rig(everyPath().front());
  const std::string& written = rig.machine().files[L"camera.trace"];
  rig.machine().environment["QVX64_TRACE"] = traceFile;
  bool lacks = true;
  for (std::uint64_t n = 1; lacks; ++n) {
    trace::end();
    trace::begin();
    const std::string before = written;
    platform::setLastError(0xFFFFFFFF);
    refuseAllocation(n);
    trace::Line("note").text("text", "longer than what needs no memory").result(false);
    lacks = allocations() >= n;
    refuseAllocation(0);
    EXPECT_EQ(trace::isOn(), !lacks) << n;
    EXPECT_EQ(written == before, lacks) << n;
  }
  EXPECT_TRUE(written.ends_with("result=error,4294967295\n"));
}

}  // namespace
}  // namespace qvx::tests
