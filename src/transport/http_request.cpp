#include "transport/http_request.h"

#include <algorithm>

#include "transport/wifi_address.h"

namespace qvx {

namespace {

constexpr wchar_t agent[] = L"HTTP Downloader";

}  // namespace

std::wstring widen(const std::string& text) {
  std::wstring wide;
  wide.reserve(text.size());
  for (const char character : text) {
    wide.push_back(static_cast<wchar_t>(static_cast<unsigned char>(character)));
  }
  return wide;
}

HttpRequest::HttpRequest(Proxy proxy)
    : session_(proxy == Proxy::none ? platform::openDirectInternetSession(agent)
                                    : platform::openInternetSession(agent)) {}

HttpRequest::~HttpRequest() {
  platform::closeInternetHandle(request_);
  platform::closeInternetHandle(session_);
}

void HttpRequest::limitTime(std::uint32_t limit_ms) {
  platform::setInternetTimeouts(session_, limit_ms, limit_ms);
}

bool HttpRequest::open(const std::string& url) {
  // Where the environment names something that is no address, nothing is asked of the system at
  // all.
  const bool isKnown = !wifiBase || !wifiBase->empty();
  if (isKnown) request_ = platform::openUrl(session_, widen(url));
  return request_ != nullptr;
}

std::string HttpRequest::read(std::uint32_t capacity) {
  if (request_ == nullptr) return {};
  std::string part(capacity, '\0');
  std::uint32_t received = 0;
  const bool done = platform::readUrl(request_, part.data(), capacity, received);
  part.resize(done ? std::min(received, capacity) : 0);
  return part;
}

void HttpRequest::closeSession() {
  platform::closeInternetHandle(session_);
  session_ = nullptr;
}

}  // namespace qvx
