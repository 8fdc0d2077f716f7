#include "platform/workers.h"

#include <process.h>
#include <windows.h>

#include <memory>
#include <utility>

#include "platform/windows/module.h"

namespace qvx::platform {

namespace {

// What a worker owns. It keeps the library loaded while it runs: a late worker may outlast the
// application's interest.
struct Job {
  std::function<std::uint32_t()> task;
  HMODULE module;
};

unsigned __stdcall run(void* argument) {
  std::unique_ptr<Job> job(static_cast<Job*>(argument));
  const HMODULE module = job->module;
  const DWORD result = job->task();
  job.reset();
  FreeLibraryAndExitThread(module, result);
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

std::optional<std::uint32_t> runOnWorker(std::function<std::uint32_t()> task,
                                         std::uint32_t limit_ms) {
  auto job = std::make_unique<Job>(Job{std::move(task), holdOwnModule()});
  if (job->module == nullptr) return std::nullopt;
  const auto thread =
      reinterpret_cast<HANDLE>(_beginthreadex(nullptr, 0, run, job.get(), 0, nullptr));
  if (thread == nullptr) {
    FreeLibrary(job->module);
    return std::nullopt;
  }
  job.release();  // the worker's now
  std::optional<std::uint32_t> result;
  DWORD exitCode = 0;
  if (WaitForSingleObject(thread, limit_ms) == WAIT_OBJECT_0 &&
      GetExitCodeThread(thread, &exitCode) != FALSE) {
    result = exitCode;
  }
  CloseHandle(thread);
  return result;
}

std::shared_ptr<NamedMutex> openNamedMutex(const char* name) {
  const HANDLE handle = CreateMutexA(nullptr, FALSE, name);
  return handle == nullptr ? nullptr : std::make_shared<SystemMutex>(handle);
}

}  // namespace qvx::platform
