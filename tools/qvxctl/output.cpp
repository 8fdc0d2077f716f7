#include "output.h"

#include <io.h>
#include <json/writer.h>
#include <windows.h>

#include <cstdio>

#include "failure.h"

namespace qvxctl {

namespace {

constexpr int outputDescriptor = 1, errorDescriptor = 2;

std::string* captured = nullptr;

bool writeLine(std::FILE* stream, const std::string& line) {
  return std::fputs((line + '\n').c_str(), stream) >= 0 && std::fflush(stream) == 0;
}

}  // namespace

void printLine(const std::string& line) {
  if (captured != nullptr) {
    *captured += line + '\n';
  } else if (!writeLine(stdout, line)) {
    throw Failure(ExitCode::outputLost, "standard output cannot be written");
  }
}

void printResult(const Options& options, const Json::Value& json, const std::string& text) {
  printLine(options.json ? lineOf(json) : text);
}

Json::Value object(std::initializer_list<std::pair<const char*, Json::Value>> members) {
  Json::Value object(Json::objectValue);
  for (const auto& [name, value] : members) object[name] = value;
  return object;
}

Json::Value orNull(const std::string& text) {
  return text.empty() ? Json::Value() : Json::Value(text);
}

std::string lineOf(const Json::Value& json) {
  Json::StreamWriterBuilder form;
  form["indentation"] = "";
  form["emitUTF8"] = true;
  return Json::writeString(form, json);
}

void note(const std::string& message) {
  writeLine(stderr, "qvxctl: " + message);
}

CapturedOutput::CapturedOutput() {
  captured = &text_;
}

CapturedOutput::~CapturedOutput() {
  captured = nullptr;
}

Utf8Console::Utf8Console() : earlierCodePage_(GetConsoleOutputCP()) {
  SetConsoleOutputCP(CP_UTF8);
  // Unbuffered, the runtime would write single bytes, which a console does not join to characters.
  std::setvbuf(stdout, nullptr, _IOFBF, BUFSIZ);
}

// The code page belongs to the console and would outlive us.
Utf8Console::~Utf8Console() {
  if (earlierCodePage_ != 0) SetConsoleOutputCP(earlierCodePage_);
}

LibraryOutputAside::LibraryOutputAside() : standardOutput_(_dup(outputDescriptor)) {
  std::fflush(stdout);
  _dup2(errorDescriptor, outputDescriptor);
}

LibraryOutputAside::~LibraryOutputAside() {
  std::fflush(stdout);
  if (standardOutput_ < 0) return;
  _dup2(standardOutput_, outputDescriptor);
  _close(standardOutput_);
}

}  // namespace qvxctl
