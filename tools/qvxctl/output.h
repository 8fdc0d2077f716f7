// Standard output carries what the user asked for and nothing else; everything else goes to
// standard error.
#pragma once

#include <json/value.h>

#include <initializer_list>
#include <string>
#include <utility>

#include "options.h"

namespace qvxctl {

// Prints a line and flushes it, so that a reader at the other end of a pipe has it at once.
// Fails when the output cannot be written, as to a pipe that was closed.
void printLine(const std::string& line);

// Prints the result of a command as JSON or as text.
void printResult(const Options& options, const Json::Value& json, const std::string& text);

// A JSON object: object({{"width", 640}, {"height", 480}}).
Json::Value object(std::initializer_list<std::pair<const char*, Json::Value>> members);

// Null when the text is empty.
Json::Value orNull(const std::string& text);

// JSON in one line, in UTF-8.
std::string lineOf(const Json::Value& json);

// A message to the user, in one line.
void note(const std::string& message);

// While it lives, lines are kept instead of printed. One at a time.
class CapturedOutput {
 public:
  CapturedOutput();
  ~CapturedOutput();
  CapturedOutput(const CapturedOutput&) = delete;
  CapturedOutput& operator=(const CapturedOutput&) = delete;

  const std::string& text() const { return text_; }

 private:
  std::string text_;
};

// While it lives, a console shows UTF-8.
class Utf8Console {
 public:
  Utf8Console();
  ~Utf8Console();
  Utf8Console(const Utf8Console&) = delete;
  Utf8Console& operator=(const Utf8Console&) = delete;

 private:
  unsigned earlierCodePage_;
};

// While it lives, what the library prints goes to standard error: both modules print through the
// system's C runtime, so they share its descriptors.
class LibraryOutputAside {
 public:
  LibraryOutputAside();
  ~LibraryOutputAside();
  LibraryOutputAside(const LibraryOutputAside&) = delete;
  LibraryOutputAside& operator=(const LibraryOutputAside&) = delete;

 private:
  int standardOutput_;
};

}  // namespace qvxctl
