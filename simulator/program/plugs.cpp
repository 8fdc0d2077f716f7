#include "simulator/program/plugs.h"

#include <windows.h>

#include <algorithm>

#include "simulator/fronts/text.h"
#include "simulator/program/pipe_server.h"

namespace qvx::simulator {

namespace {

// One process at a time plugs in or out, whatever becomes of it meanwhile.
class Exclusive {
 public:
  Exclusive() : mutex_(CreateMutexW(nullptr, FALSE, L"qvx-simulator-plugs")) {
    WaitForSingleObject(mutex_, limit_ms);
  }
  ~Exclusive() {
    ReleaseMutex(mutex_);
    CloseHandle(mutex_);
  }
  Exclusive(const Exclusive&) = delete;
  Exclusive& operator=(const Exclusive&) = delete;

 private:
  static constexpr DWORD limit_ms = 60'000;

  HANDLE mutex_;
};

// Grows with time: what comes later is listed later.
std::uint64_t nextOrder() {
  FILETIME time;
  GetSystemTimePreciseAsFileTime(&time);
  return static_cast<std::uint64_t>(time.dwHighDateTime) << 32 | time.dwLowDateTime;
}

void sweepAll() {
  VideoPlugs::sweep();
  HidPlugs::sweep();
  Usb3Plugs::sweep();
}

}  // namespace

std::wstring programFolder() {
  constexpr DWORD longestPath = 4096;
  std::wstring path(longestPath, L'\0');
  path.resize(GetModuleFileNameW(nullptr, path.data(), longestPath));
  return path.substr(0, path.rfind(L'\\') + 1);
}

std::string missing(const std::wstring& file) {
  const bool there = GetFileAttributesW(file.c_str()) != INVALID_FILE_ATTRIBUTES;
  std::string problem = "missing: ";
  problem += narrow(file);
  return there ? "" : problem;
}

ServedDesk::ServedDesk(Desk& desk, Naming naming) : desk_(desk) {
  const Exclusive exclusive;
  sweepAll();
  const std::uint64_t first = nextOrder();
  ServedCameras served;
  for (const auto& camera : desk.cameras()) {
    if (camera->spec().transport == Transport::wifi) continue;
    const std::uint64_t order = first + served.size();
    served.push_back({*camera, L"qvx-simulator-" + std::to_wstring(order), order});
    PipeServer& server =
        *servers_.emplace_back(std::make_unique<PipeServer>(*camera, served.back().pipe));
    camera->onHearing = [camera = camera.get(), &server] {
      if (!camera->isPluggedIn()) server.close();
    };
  }
  problem_ = VideoPlugs::plugIn(served, naming);
  if (problem_.empty()) problem_ = Usb3Plugs::plugIn(served);
  if (problem_.empty()) problem_ = HidPlugs::plugIn(served);
}

ServedDesk::~ServedDesk() {
  desk_.close();
  servers_.clear();
  sweepPlugs();
}

void sweepPlugs() {
  const Exclusive exclusive;
  sweepAll();
}

}  // namespace qvx::simulator
