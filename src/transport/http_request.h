// One GET of the Wi-Fi camera's web server.
#pragma once

#include <cstdint>
#include <string>

#include "platform/internet.h"

namespace qvx {

// The most that one read of an answer takes.
constexpr std::uint32_t answerCapacity = 8192;

// Each byte becomes one wide character.
std::wstring widen(const std::string& text);

// A session and the one request made in it; closes the request and then the session. Some of
// these handles stay open on purpose, as they always have, until the process ends: each place that
// leaves one open says so.
class HttpRequest {
 public:
  enum class Proxy : std::uint8_t { asConfigured, none };

  explicit HttpRequest(Proxy proxy = Proxy::asConfigured);
  ~HttpRequest();
  HttpRequest(const HttpRequest&) = delete;
  HttpRequest& operator=(const HttpRequest&) = delete;

  // How long it may take to connect, and to receive. To be called before `open`.
  void limitTime(std::uint32_t limit_ms);

  // False when the server could not be reached.
  bool open(const std::string& url);

  // What the next read gives: nothing at the end of the answer, after a failure or without an
  // answer.
  std::string read(std::uint32_t capacity = answerCapacity);

  // Before the request, which is otherwise closed first.
  void closeSession();

  void leaveRequestOpen() { request_ = nullptr; }
  void leaveOpen() { request_ = session_ = nullptr; }

 private:
  platform::InternetHandle session_, request_ = nullptr;
};

}  // namespace qvx
