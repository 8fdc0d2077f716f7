// A camera's pipe, for its fronts: served from the time it is made until it goes.
#pragma once

#include <windows.h>

#include <condition_variable>
#include <mutex>
#include <string>
#include <thread>

#include "simulator/program/desk.h"

namespace qvx::simulator {

class PipeServer {
 public:
  PipeServer(PluggedCamera& camera, const std::wstring& pipe);
  ~PipeServer();
  PipeServer(const PipeServer&) = delete;
  PipeServer& operator=(const PipeServer&) = delete;

  // Closes the pipe and all connections: fronts find the camera gone. Does not wait.
  void close() { SetEvent(closing_); }

 private:
  HANDLE createInstance() const;
  void accept(HANDLE instance);
  void serve(HANDLE instance);
  bool finish(HANDLE instance, OVERLAPPED& operation, BOOL done, DWORD& size) const;

  PluggedCamera& camera_;
  const std::wstring path_;
  const HANDLE closing_;
  std::mutex guard_;
  std::condition_variable ended_;
  int connections_ = 0;  // each has a thread
  std::thread acceptor_;
};

}  // namespace qvx::simulator
