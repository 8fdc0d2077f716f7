// The platform's internet functions on the simulated machine.
#include "platform/system.h"
#include "platform/text.h"

#include "simulator/platform/world.h"

namespace qvx::platform {

struct InternetObject {
  simulator::HttpAnswer answer{};        // of a request
  std::size_t nextChunk = 0, taken = 0;  // the part already read
  simulator::CameraConnection connection{};
};

namespace {

using simulator::OpenCounts;
using simulator::world;

}  // namespace

InternetHandle openInternetSession(const wchar_t* agent) {
  if (std::wstring(agent) != L"HTTP Downloader") {
    world().note("session as ", wideToAnsi(agent));
  }
  if (!world().grants()) return nullptr;
  return world().keep(&OpenCounts::internetSessions, InternetObject{});
}

InternetHandle openDirectInternetSession(const wchar_t* agent) {
  world().note("session past proxies");
  return openInternetSession(agent);
}

void setInternetTimeouts(InternetHandle /*session*/, std::uint32_t connect_ms,
                         std::uint32_t receive_ms) {
  world().note("time-outs ", connect_ms, " ", receive_ms);
}

InternetHandle system::openUrl(InternetHandle session, const std::wstring& url) {
  if (session == nullptr) return nullptr;
  const std::string text = wideToAnsi(url);
  if (!world().operate("GET ", text) || !world().pluggedIn() || !world().wifi) return nullptr;
  simulator::HttpAnswer answer = world().wifi(text);
  if (!answer.reachable) return nullptr;
  return world().keep(&OpenCounts::internetRequests, InternetObject{std::move(answer)});
}

bool system::readUrl(InternetHandle request, void* buffer, std::uint32_t capacity,
                     std::uint32_t& received) {
  received = 0;
  if (!world().grants() || !request->connection.isThere()) return false;
  if (request->nextChunk == request->answer.chunks.size()) return !request->answer.breaksOff;
  const std::string& chunk = request->answer.chunks[request->nextChunk];
  received =
      static_cast<std::uint32_t>(chunk.copy(static_cast<char*>(buffer), capacity, request->taken));
  request->taken += received;
  if (request->taken == chunk.size()) {
    ++request->nextChunk;
    request->taken = 0;
  }
  return true;
}

void closeInternetHandle(InternetHandle handle) {
  if (handle != nullptr) world().drop<InternetObject>(handle);
}

}  // namespace qvx::platform
