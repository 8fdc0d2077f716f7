#include "platform/workers.h"

#include <process.h>
#include <windows.h>

#include "platform/windows/module.h"

namespace qvx::platform {

namespace {

// Keeps the library loaded while a worker runs: a late one may outlast the application's interest.
HMODULE holdModule() {
  HMODULE held = nullptr;
  GetModuleHandleExW(GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS,
                     reinterpret_cast<LPCWSTR>(reinterpret_cast<void*>(&holdModule)), &held);
  return held;
}

using Task = std::function<std::uint32_t()>;

unsigned __stdcall runTask(void* argument) {
  DWORD result = 0;
  {
    const std::unique_ptr<Task> task(static_cast<Task*>(argument));
    result = (*task)();
  }
  FreeLibraryAndExitThread(ownModule(), result);
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
  auto owned = std::make_unique<Task>(std::move(task));
  const HMODULE held = holdModule();
  if (held == nullptr) return std::nullopt;
  const auto thread =
      reinterpret_cast<HANDLE>(_beginthreadex(nullptr, 0, runTask, owned.get(), 0, nullptr));
  if (thread == nullptr) {
    FreeLibrary(held);
    return std::nullopt;
  }
  owned.release();  // the worker's now
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
