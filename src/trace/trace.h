// A trace for the field: what passed between an application, the library and a camera, one line of
// UTF-8 text for each event in the file that the environment variable QVX64_TRACE names.
// docs/trace.md has its grammar. A trace that cannot be written ends; nothing else notices.
#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <string_view>

namespace qvx::trace {

// Reads the variable and begins the trace; later calls do nothing.
void begin() noexcept;

// Ends the trace, so that the next begin reads the variable anew. The library stays loaded and has
// no need of it: for tests.
void end() noexcept;

// One event. It begins with its line and is over when the line goes, which then appends itself to
// the file; without a trace nothing of it happens. Keeps the thread's last error as it was.
class Line {
 public:
  explicit Line(const char* kind) noexcept;
  ~Line();
  Line(const Line&) = delete;
  Line& operator=(const Line&) = delete;

  Line& number(const char* name, std::int64_t value) noexcept;
  Line& hex(const char* name, std::uint32_t value, int digits) noexcept;
  Line& bytes(const char* name, std::span<const std::uint8_t> bytes) noexcept;
  Line& text(const char* name, std::string_view utf8) noexcept;
  Line& text(const char* name, std::wstring_view text) noexcept;
  Line& word(const char* name, std::string_view plain) noexcept;  // without blanks and quotes

  // Text as it stands, anything else in hexadecimal and only its beginning.
  Line& content(std::span<const std::uint8_t> bytes) noexcept;

  // "ok", or "error" with the thread's last error: call it before anything can change that.
  Line& result(bool done) noexcept;

  // The line will not be written.
  void drop() noexcept { on_ = false; }

  bool isOn() const { return on_; }

 private:
  template <class Write>
  Line& field(const char* name, const Write& write) noexcept;

  bool on_;
  std::uint64_t start_us_ = 0;
  const char* kind_;
  std::string fields_;
};

bool isOn();

// A text as the grammar quotes it.
std::string quoted(std::string_view utf8);

}  // namespace qvx::trace
