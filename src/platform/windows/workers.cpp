#include "platform/system.h"

#include <process.h>
#include <windows.h>

#include <memory>
#include <utility>

namespace qvx::platform {

namespace {

using Task = std::function<std::uint32_t()>;

unsigned __stdcall run(void* argument) {
  const std::unique_ptr<Task> task(static_cast<Task*>(argument));
  return (*task)();
}

class SystemMutex final : public NamedMutex {
 public:
  explicit SystemMutex(HANDLE handle) : handle_(handle) {}
  ~SystemMutex() override { CloseHandle(handle_); }
  SystemMutex(const SystemMutex&) = delete;
  SystemMutex& operator=(const SystemMutex&) = delete;

  bool acquire(std::uint32_t limit_ms) override {
    const DWORD result = WaitForSingleObject(handle_, limit_ms);
    return result == WAIT_OBJECT_0 || result == WAIT_ABANDONED;
  }
  void release() override { ReleaseMutex(handle_); }

 private:
  HANDLE handle_;
};

}  // namespace

std::optional<std::uint32_t> system::runOnWorker(std::function<std::uint32_t()> task,
                                                 std::uint32_t limit_ms) {
  auto own = std::make_unique<Task>(std::move(task));
  const auto thread =
      reinterpret_cast<HANDLE>(_beginthreadex(nullptr, 0, run, own.get(), 0, nullptr));
  if (thread == nullptr) return std::nullopt;
  own.release();  // the worker's now
  std::optional<std::uint32_t> result;
  DWORD exitCode = 0;
  if (WaitForSingleObject(thread, limit_ms) == WAIT_OBJECT_0 &&
      GetExitCodeThread(thread, &exitCode) != FALSE) {
    result = exitCode;
  }
  CloseHandle(thread);
  return result;
}

std::shared_ptr<NamedMutex> system::openNamedMutex(const char* name) {
  const HANDLE handle = CreateMutexA(nullptr, FALSE, name);
  return handle == nullptr ? nullptr : std::make_shared<SystemMutex>(handle);
}

}  // namespace qvx::platform
