#include "simulator/program/pipe_server.h"

#include <array>
#include <thread>

#include "simulator/fronts/pipe_client.h"
#include "simulator/program/front_requests.h"

namespace qvx::simulator {

PipeServer::PipeServer(PluggedCamera& camera, const std::wstring& pipe)
    : camera_(camera), path_(pathOfPipe(pipe)) {
  listen();
}

PipeServer::~PipeServer() {
  close();
  std::unique_lock lock(guard_);
  ended_.wait(lock, [this] { return instances_ == 0; });
}

// Creates an instance of the pipe for one more client.
void PipeServer::listen() {
  Handle instance(
      CreateNamedPipeW(path_.c_str(), PIPE_ACCESS_DUPLEX | FILE_FLAG_OVERLAPPED,
                       PIPE_TYPE_MESSAGE | PIPE_READMODE_MESSAGE | PIPE_REJECT_REMOTE_CLIENTS,
                       PIPE_UNLIMITED_INSTANCES, sizeof(Request), sizeof(Request), 0, nullptr));
  if (instance.get() == INVALID_HANDLE_VALUE) return;
  {
    const std::lock_guard lock(guard_);
    ++instances_;
  }
  std::thread([this, instance = std::move(instance)]() mutable {
    serve(instance.get());
    instance.reset();
    const std::lock_guard lock(guard_);
    --instances_;
    ended_.notify_all();
  }).detach();
}

void PipeServer::serve(HANDLE instance) {
  const Handle event = makeEvent();
  const std::array<HANDLE, 2> events = {closing_.get(), event.get()};
  OVERLAPPED operation{};
  operation.hEvent = event.get();
  const auto await = [&](BOOL done) { return finish(instance, operation, done, events, INFINITE); };

  await(ConnectNamedPipe(instance, &operation));
  if (WaitForSingleObject(closing_.get(), 0) == WAIT_OBJECT_0) return;
  listen();
  Request request{};
  for (;;) {
    const auto asked = await(ReadFile(instance, &request, sizeof request, nullptr, &operation));
    if (!asked) return;
    const std::string reply = answerFront(camera_, request, *asked);
    if (!camera_.isPluggedIn() ||
        !await(WriteFile(instance, reply.data(), static_cast<DWORD>(reply.size()), nullptr,
                         &operation))) {
      return;
    }
  }
}

}  // namespace qvx::simulator
