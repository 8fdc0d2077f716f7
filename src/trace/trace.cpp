#include "trace/trace.h"

#include <algorithm>
#include <atomic>
#include <cstdio>
#include <mutex>

#include "platform/files.h"
#include "platform/process.h"
#include "platform/text.h"
#include "platform/timers.h"

namespace qvx::trace {

namespace {

std::atomic<bool> begun = false, on = false;
std::mutex guard;  // of the file, and of its beginning
platform::FileHandle file = nullptr;
std::uint64_t start_us = 0;

// Whatever goes wrong with a trace ends it: a call must neither fail nor wait for it.
void append(const std::string& line) {
  const std::lock_guard<std::mutex> lock(guard);
  if (!on) return;
  on = platform::appendLine(file, line.data(), static_cast<std::uint32_t>(line.size()));
}

template <class... Numbers>
std::string formatted(const char* form, Numbers... numbers) {
  char text[96];
  const int length = std::snprintf(text, sizeof text, form, numbers...);
  return std::string(text, static_cast<std::size_t>(length));
}

bool isPlain(std::uint8_t byte) {
  return (byte >= 0x20 && byte < 0x7F) || byte == '\n' || byte == '\r' || byte == '\t';
}

std::string_view asText(std::span<const std::uint8_t> bytes) {
  return {reinterpret_cast<const char*>(bytes.data()), bytes.size()};
}

void writeHeader() {
  const platform::Surroundings here = platform::surroundings();
  Line("trace")
      .text("version", QVX64_VERSION)
      .text("windows", here.system)
      .text("time", here.time)
      .text("module", here.module)
      .text("libusbk", here.usbLibrary);
}

// True for the one that has opened the file. Whoever comes at the same time waits until it is open.
bool open() {
  const std::lock_guard<std::mutex> lock(guard);
  if (begun) return false;
  const std::wstring path = platform::environmentVariable("QVX64_TRACE");
  if (!path.empty()) file = platform::openForAppending(path);
  start_us = platform::clock_us();
  on = file != nullptr;
  begun = true;
  return on;
}

}  // namespace

bool isOn() {
  return on.load(std::memory_order_relaxed);
}

void begin() noexcept {
  if (begun) return;
  const std::uint32_t error = platform::lastError();
  try {
    if (open()) writeHeader();
  } catch (...) {
    begun = true;
    on = false;
  }
  platform::setLastError(error);
}

void end() noexcept {
  const std::lock_guard<std::mutex> lock(guard);
  begun = on = false;
  if (file != nullptr) platform::closeFile(file);
  file = nullptr;
}

std::string quoted(std::string_view utf8) {
  std::string text = "\"";
  for (const char character : utf8) {
    const auto byte = static_cast<std::uint8_t>(character);
    if (character == '"' || character == '\\') text += '\\';
    if (byte < 0x20 || byte == 0x7F) {
      text += formatted("\\u%04x", unsigned{byte});
    } else {
      text += character;
    }
  }
  return text + '"';
}

Line::Line(const char* kind) noexcept : on_(trace::isOn()), kind_(kind) {
  if (on_) start_us_ = platform::clock_us();
}

Line::~Line() {
  if (!on_) return;
  const std::uint32_t error = platform::lastError();
  try {
    append(formatted("%llu %lu %lu %llu %s", static_cast<unsigned long long>(start_us_ - start_us),
                     static_cast<unsigned long>(platform::processId()),
                     static_cast<unsigned long>(platform::threadId()),
                     static_cast<unsigned long long>(platform::clock_us() - start_us_), kind_) +
           fields_ + '\n');
  } catch (...) {
    on = false;
  }
  platform::setLastError(error);
}

template <class Write>
Line& Line::field(const char* name, const Write& write) noexcept {
  if (!on_) return *this;
  try {
    fields_ += std::string(" ") + name + '=' + write();
  } catch (...) {
    on_ = on = false;  // a line that lacks something would lie
  }
  return *this;
}

Line& Line::number(const char* name, std::int64_t value) noexcept {
  return field(name, [value] { return std::to_string(value); });
}

Line& Line::hex(const char* name, std::uint32_t value, int digits) noexcept {
  return field(name, [=] { return formatted("%0*X", digits, value); });
}

Line& Line::bytes(const char* name, std::span<const std::uint8_t> bytes) noexcept {
  return field(name, [bytes] {
    std::string digits;
    for (const std::uint8_t byte : bytes) digits += formatted("%02X", unsigned{byte});
    return digits;
  });
}

Line& Line::text(const char* name, std::string_view utf8) noexcept {
  return field(name, [utf8] { return quoted(utf8); });
}

Line& Line::text(const char* name, std::wstring_view text) noexcept {
  return field(name, [text] { return quoted(platform::wideToUtf8(text)); });
}

Line& Line::word(const char* name, std::string_view plain) noexcept {
  return field(name, [plain] { return std::string(plain); });
}

Line& Line::content(std::span<const std::uint8_t> bytes) noexcept {
  constexpr std::size_t beginning = 32;
  if (std::all_of(bytes.begin(), bytes.end(), isPlain)) return text("text", asText(bytes));
  return this->bytes("bytes", bytes.first(std::min(beginning, bytes.size())));
}

Line& Line::result(bool done) noexcept {
  if (!on_) return *this;
  const std::uint32_t error = platform::lastError();
  return field("result", [=] { return done ? "ok" : "error," + std::to_string(error); });
}

}  // namespace qvx::trace
