#include "simulator/capture_filter/tool.h"

#include <algorithm>
#include <charconv>
#include <cstdio>

#include "simulator/capture_filter/child_program.h"
#include "simulator/capture_filter/text.h"
#include "simulator/model/bridge_chip_spec.h"

namespace qvx::simulator {

namespace {

const char* toolName = "";

int help(const Tool& tool) {
  std::printf("%s%s%s", tool.usage, bridgeSpecHelp, tool.examples);
  return done;
}

}  // namespace

int runTool(const Tool& tool, int count, wchar_t** values) {
  toolName = tool.name;
  const std::vector<std::wstring> arguments(values + 1, values + count);
  if (arguments.empty() || arguments[0] == L"--help") return help(tool);
  for (const Command& command : tool.commands) {
    if (command.name == arguments[0]) return command.run(Arguments(arguments).subspan(1));
  }
  return fail("unknown command: " + narrow(arguments[0]), misused);
}

int fail(const std::string& problem, ExitCode code) {
  std::fprintf(stderr, "%s: %s\n", toolName, problem.c_str());
  return code;
}

std::vector<std::string> textsOf(Arguments arguments) {
  std::vector<std::string> texts;
  for (const std::wstring& argument : arguments) texts.push_back(narrow(argument));
  return texts;
}

std::optional<ProgramRun> programRunIn(Arguments arguments) {
  const auto mark = std::find(arguments.begin(), arguments.end(), L"--");
  const auto cameras = static_cast<std::size_t>(mark - arguments.begin());
  if (cameras + 1 < arguments.size()) {
    return ProgramRun{arguments.first(cameras), arguments.subspan(cameras + 1)};
  }
  fail("run: no program given", misused);
  return std::nullopt;
}

int runAmongCameras(Arguments program, void (*takeOut)()) {
  const auto code = runProgram(program);
  takeOut();
  return code ? *code : fail("the program cannot be started", programNotStarted);
}

std::optional<Change> changeIn(Arguments arguments) {
  const std::vector<std::string> texts = textsOf(arguments);
  std::size_t camera = 0;
  if (texts.size() != 2) {
    fail("set: a camera's number and its options", misused);
    return std::nullopt;
  }
  const char* const end = texts[0].data() + texts[0].size();
  const auto parsed = std::from_chars(texts[0].data(), end, camera);
  if (parsed.ec == std::errc() && parsed.ptr == end) return Change{camera, texts[1]};
  fail("set: not a number: " + texts[0], misused);
  return std::nullopt;
}

}  // namespace qvx::simulator
