// The platform's internet functions over the simulated machine.
#include "platform/system.h"
#include "platform/text.h"

#include <algorithm>
#include <cstring>

#include "simulator/platform/world.h"

namespace qvx::platform {

struct InternetObject {
  simulator::OpenCounter counter;
  simulator::HttpAnswer answer{};        // to a request
  std::size_t nextChunk = 0, taken = 0;  // and how much of it
  simulator::CameraConnection connection{};
};

namespace {

using simulator::OpenCounts;
using simulator::world;

}  // namespace

InternetHandle openInternetSession(const wchar_t* agent) {
  if (std::wstring(agent) != L"HTTP Downloader") {
    world().note([=] { return "session as " + wideToAnsi(agent); });
  }
  if (!world().grants()) return nullptr;
  return world().keep(InternetObject{&OpenCounts::internetSessions});
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
  const std::string text = wideToAnsi(url);
  const bool sent = world().operate([&] { return "GET " + text; });
  if (!sent || !world().pluggedIn() || !world().wifi) return nullptr;
  simulator::HttpAnswer answer = world().wifi(text);
  if (!answer.reachable) return nullptr;
  return world().keep(InternetObject{&OpenCounts::internetRequests, std::move(answer)});
}

bool system::readUrl(InternetHandle request, void* buffer, std::uint32_t capacity,
                     std::uint32_t& received) {
  received = 0;
  if (!world().grants() || !request->connection.isThere()) return false;
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
  if (handle != nullptr) world().drop<InternetObject>(handle);
}

}  // namespace qvx::platform
