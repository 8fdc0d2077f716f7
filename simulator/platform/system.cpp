// The smaller facilities of the platform on the simulated machine: COM, timers, process, text,
// files.
#include "platform/com.h"
#include "platform/files.h"
#include "platform/process.h"
#include "platform/text.h"
#include "platform/system.h"
#include "simulator/platform/world.h"

namespace qvx::platform {

struct FileObject {
  std::string& content;
};

namespace {

using simulator::OpenCounts;
using simulator::world;

thread_local std::uint32_t threadError = 0;

std::wstring folderOf(const std::wstring& path) {
  const std::size_t separator = path.find_last_of(L"\\/");
  return separator == std::wstring::npos ? L"" : path.substr(0, separator);
}

}  // namespace

void initializeCom() {
  world().count(&OpenCounts::comInitializations, 1);
}

ComUse::ComUse() : thread_(1) {
  initializeCom();
}

ComUse::~ComUse() {
  if (thread_ != none) world().count(&OpenCounts::comInitializations, -1);
}

void system::pause(std::uint32_t milliseconds) {
  world().note("pause ", milliseconds);
  world().clock.sleep(milliseconds);
}

void system::startThreadTimer(std::uintptr_t identifier, std::uint32_t period_ms,
                              TimerProcedure procedure) {
  world().note("timer ", identifier, " every ", period_ms);
  if (!world().grants()) return;
  world().timers.push_back({period_ms, world().clock.now_ms() + period_ms,
                            [procedure, identifier] { procedure(nullptr, 0x113, identifier, 0); }});
}

std::uint32_t floatingPointControl(std::uint32_t value, std::uint32_t mask) {
  constexpr std::uint32_t usual = 0x9001F;
  char line[64];
  std::snprintf(line, sizeof line, "floating point %X mask %X", value, mask);
  world().note(line);
  return usual;
}

std::string modulePath() {
  return "C:\\Program Files\\Microscope\\QVX64.dll";
}

Surroundings surroundings() {
  return {"10.0.19045", "2026-03-01T12:00:00.000Z", ansiToWide(modulePath()), L""};
}

std::uint32_t processId() {
  return 1;
}

std::uint32_t threadId() {
  return static_cast<std::uint32_t>(std::hash<std::thread::id>()(std::this_thread::get_id()));
}

std::uint64_t clock_us() {
  return world().clock.now_ms() * 1000;
}

std::wstring environmentVariable(const char* name) {
  const auto found = world().environment.find(name);
  return found == world().environment.end() ? L"" : ansiToWide(found->second);
}

void system::tellDebugger(const std::string& line) {
  world().note("debugger: ", line);
}

std::uint32_t lastError() {
  return threadError;
}

void setLastError(std::uint32_t code) {
  threadError = code;
}

std::wstring ansiToWide(std::string_view text) {
  std::wstring wide;
  for (const char character : text) {
    wide += static_cast<wchar_t>(static_cast<unsigned char>(character));
  }
  return wide;
}

// One byte per character, like an 8-bit code page.
std::string wideToAnsi(std::wstring_view text) {
  std::string narrow;
  for (const wchar_t character : text) {
    narrow += character > 0 && character < 0x100 ? static_cast<char>(character) : '?';
  }
  return narrow;
}

std::string wideToOem(std::wstring_view text) {
  return wideToAnsi(text);
}

// For characters up to U+00FF; the texts of the simulated machine have no others.
std::string wideToUtf8(std::wstring_view text) {
  std::string utf8;
  for (const char character : wideToAnsi(text)) {
    const auto byte = static_cast<unsigned char>(character);
    if (byte >= 0x80) utf8 += static_cast<char>(0xC0 | byte >> 6);
    utf8 += static_cast<char>(byte < 0x80 ? byte : 0x80 | (byte & 0x3F));
  }
  return utf8;
}

FileHandle createFile(const std::wstring& path) {
  const FileHandle file = openForAppending(path);
  if (file != nullptr) file->content.clear();
  return file;
}

FileHandle openForAppending(const std::wstring& path) {
  const bool mayBe = !path.empty() && world().folders.contains(folderOf(path));
  if (!mayBe || !world().grants()) return nullptr;
  return world().keep(&OpenCounts::files, FileObject{world().files[path]});
}

// Takes no simulated time: its caller holds a lock that the simulated clock does not know of, and a
// thread waiting for that lock would stop the clock.
bool appendLine(FileHandle file, const void* data, std::uint32_t size) {
  auto& room = world().diskRoom;
  const std::size_t written = room ? std::min<std::size_t>(*room, size) : size;
  if (room) *room -= written;
  file->content.append(static_cast<const char*>(data), written);
  return written == size;
}

bool writeFile(FileHandle file, const void* data, std::uint32_t size) {
  return world().grants() && appendLine(file, data, size);
}

void closeFile(FileHandle file) {
  world().drop<FileObject>(file);
}

}  // namespace qvx::platform
