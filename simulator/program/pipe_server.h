// The pipe of a camera, on which it serves its fronts from construction to destruction.
#pragma once

#include <condition_variable>
#include <mutex>

#include "simulator/fronts/handle.h"
#include "simulator/desk/desk.h"

namespace qvx::simulator {

class PipeServer {
 public:
  PipeServer(PluggedCamera& camera, const std::wstring& pipe);
  ~PipeServer();

  // Closes the pipe and all connections, without waiting: to the fronts the camera is gone.
  void close() { SetEvent(closing_.get()); }

 private:
  void listen();
  void serve(HANDLE instance);

  PluggedCamera& camera_;
  const std::wstring path_;
  const Handle closing_ = makeEvent();
  std::mutex guard_;
  std::condition_variable ended_;
  int instances_ = 0;  // one thread each
};

}  // namespace qvx::simulator
