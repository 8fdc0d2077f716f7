// What a bug report needs, in one file.
#include <windows.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <iterator>

#include "command_line.h"
#include "commands.h"
#include "failure.h"
#include "output.h"
#include "text.h"
#include "zip.h"

namespace qvxctl {

namespace {

namespace files = std::filesystem;

constexpr struct Section {
  const char* title;
  void (*run)(const Options& options);
} sections[] = {
    {"list", listCameras},
    {"info", showInfo},
    {"config", showConfig},
    {"selftest", testCamera},
};

std::string pathOf(const wchar_t* moduleName) {
  wchar_t path[MAX_PATH] = {};
  const HMODULE module = GetModuleHandleW(moduleName);
  if (module == nullptr || GetModuleFileNameW(module, path, MAX_PATH) == 0) return "not loaded";
  return utf8(path);
}

// GetVersionEx gives an older version to programs whose manifest does not name the current one.
std::string windowsVersion() {
  using Ask = LONG(WINAPI*)(OSVERSIONINFOW*);
  OSVERSIONINFOW version{};
  version.dwOSVersionInfoSize = sizeof version;
  const auto ask = reinterpret_cast<Ask>(
      reinterpret_cast<void*>(GetProcAddress(GetModuleHandleW(L"ntdll.dll"), "RtlGetVersion")));
  if (ask == nullptr || ask(&version) != 0) return "unknown";
  return std::to_string(version.dwMajorVersion) + '.' + std::to_string(version.dwMinorVersion) +
         '.' + std::to_string(version.dwBuildNumber);
}

std::string outputOf(const Section& section, const Options& options) {
  const CapturedOutput output;
  try {
    section.run(options);
  } catch (const Failure& failure) {
    printLine(failure.what());
  }
  return output.text();
}

// The libraries last: the commands before them load one.
std::string reportOn(const Options& options) {
  std::string text = "qvxctl " QVXCTL_VERSION "\nWindows " + windowsVersion() + '\n';
  for (const Section& section : sections) {
    text += '\n' + std::string(section.title) + ":\n" + outputOf(section, options);
  }
  return text + "\nlibraries:\n" + pathOf(L"QVX64.dll") + '\n' + pathOf(L"libusbK.dll") + '\n';
}

std::string contentOf(const files::path& path) {
  std::ifstream file(path, std::ios::binary);
  return {std::istreambuf_iterator<char>(file), {}};
}

// In a device path the serial number follows the ids: "usb#vid_3c7e&pid_0970&mi_00#SERIAL#{...}".
void leaveOutSerials(std::string& text, std::string_view ids) {
  constexpr char separators[] = "#\\", ends[] = "#\\\" \r\n";
  for (std::size_t at = text.find(ids); at != std::string::npos; at = text.find(ids, at + 1)) {
    const std::size_t separator = text.find_first_of(ends, at);
    const std::size_t start = text.find_first_not_of(separators, separator);
    if (start == std::string::npos) return;
    if (start == separator) continue;  // the path ends with its ids
    const std::size_t end = std::min(text.find_first_of(ends, start), text.size());
    text.replace(start, end - start, "(left out)");
  }
}

void write(const files::path& path, const std::vector<ZipEntry>& entries, bool zipped) {
  std::ofstream file(path, std::ios::binary | std::ios::trunc);
  if (zipped) {
    file << zipOf(entries);
  } else {
    for (const ZipEntry& entry : entries) file << entry.content << '\n';
  }
  file.close();
  if (!file) throw Failure(ExitCode::outputLost, "cannot write " + utf8(path.wstring()));
}

// The library's trace while the report is made, in a temporary file.
class TraceFile {
 public:
  TraceFile()
      : path_(files::temp_directory_path() /
              (L"qvxctl-trace-" + std::to_wstring(GetCurrentProcessId()) + L".txt")) {
    SetEnvironmentVariableW(L"QVX64_TRACE", path_.c_str());
  }
  ~TraceFile() {
    std::error_code ignored;  // the library may hold it open until the process ends
    files::remove(path_, ignored);
  }
  TraceFile(const TraceFile&) = delete;
  TraceFile& operator=(const TraceFile&) = delete;

  std::string content() const { return contentOf(path_); }

 private:
  files::path path_;
};

void writeReport(const Options& options, const std::string& name) {
  const TraceFile trace;
  Options asText = options;
  asText.json = false;
  std::vector<ZipEntry> entries = {{"report.txt", reportOn(asText)}, {"trace.txt", {}}};
  entries[1].content = trace.content();
  if (entries[1].content.empty()) entries[1].content = "This QVX64.dll writes no trace.\n";
  for (ZipEntry& entry : entries) {
    if (!options.withoutSerials) continue;
    for (const char* const ids : {"&pid_", "&PID_"}) leaveOutSerials(entry.content, ids);
  }
  write(wide(name), entries, name.ends_with(".zip"));
  if (!options.withoutSerials) {
    note("serial numbers in device paths are included; --no-serials leaves them out");
  }
  printResult(options, object({{"file", name}}), "Saved " + name);
}

std::string notAReportName(const std::string& name) {
  const bool known = name.ends_with(".zip") || name.ends_with(".txt");
  return known ? "" : '"' + name + "\" does not end in .zip or .txt";
}

}  // namespace

void defineReport(CLI::App& command, const Options& options) {
  static std::string name;
  command.add_option("FILE", name)->required()->check(notAReportName);
  command.callback([&options] { writeReport(options, name); });
}

}  // namespace qvxctl
