// The platform's internet functions over the simulated machine.
#include "platform/system.h"

#include <algorithm>
#include <cstring>

#include "simulator/platform/world.h"

namespace qvx::platform {

struct InternetObject {
  bool isRequest;
  unsigned connection;  // of the cameras, when it was opened
  simulator::HttpAnswer answer{};
  std::size_t nextChunk = 0, taken = 0;  // and how much of it
};

namespace {

using simulator::world;

std::string narrow(const std::wstring& text) {
  std::string result;
  for (const wchar_t character : text) result += static_cast<char>(character);
  return result;
}

int& openCountOf(const InternetObject& object) {
  return object.isRequest ? world().open.internetRequests : world().open.internetSessions;
}

InternetHandle opened(InternetObject object) {
  ++openCountOf(object);
  return world().keep(std::move(object));
}

}  // namespace

InternetHandle openInternetSession(const wchar_t* agent) {
  if (std::wstring(agent) != L"HTTP Downloader") {
    world().note([=] { return "session as " + narrow(agent); });
  }
  return world().grants() ? opened({false, world().connection()}) : nullptr;
}

InternetHandle openDirectInternetSession(const wchar_t* agent) {
  world().note([] { return "session past proxies"; });
  return openInternetSession(agent);
}

void setInternetTimeouts(InternetHandle /*session*/, std::uint32_t connect_ms,
                         std::uint32_t receive_ms) {
  world().note(
      [=] { return "time-outs " + std::to_string(connect_ms) + " " + std::to_string(receive_ms); });
}

InternetHandle system::openUrl(InternetHandle session, const std::wstring& url) {
  if (session == nullptr) return nullptr;
  const std::string text = narrow(url);
  const bool sent = world().operate([&] { return "GET " + text; });
  if (!sent || !world().pluggedIn() || !world().wifi) return nullptr;
  simulator::HttpAnswer answer = world().wifi(text);
  if (!answer.reachable) return nullptr;
  return opened({true, world().connection(), std::move(answer)});
}

bool system::readUrl(InternetHandle request, void* buffer, std::uint32_t capacity,
                     std::uint32_t& received) {
  received = 0;
  if (!world().grants() || request->connection != world().connection()) return false;
  if (request->nextChunk == request->answer.chunks.size()) return !request->answer.breaksOff;
  const std::string& chunk = request->answer.chunks[request->nextChunk];
  const std::size_t left = chunk.size() - request->taken;
  received = static_cast<std::uint32_t>(std::min<std::size_t>(left, capacity));
  std::memcpy(buffer, chunk.data() + request->taken, received);
  request->taken += received;
  if (received == left) {
    ++request->nextChunk;
    request->taken = 0;
  }
  return true;
}

void closeInternetHandle(InternetHandle handle) {
  if (handle == nullptr) return;
  --openCountOf(*handle);
  world().drop(handle);
}

}  // namespace qvx::platform
