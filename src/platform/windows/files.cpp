#include "platform/files.h"

#include <windows.h>

namespace qvx::platform {

namespace {

// Others hold the lock for no longer than they write a line.
bool lockSoon(HANDLE file, OVERLAPPED& place) {
  constexpr int attempts = 100;
  for (int attempt = 0; attempt < attempts; ++attempt) {
    if (LockFileEx(file, LOCKFILE_EXCLUSIVE_LOCK | LOCKFILE_FAIL_IMMEDIATELY, 0, 1, 0, &place))
      return true;
    Sleep(1);
  }
  return false;
}

}  // namespace

FileHandle createFile(const std::wstring& path) {
  const HANDLE file = CreateFileW(path.c_str(), GENERIC_WRITE, FILE_SHARE_READ | FILE_SHARE_WRITE,
                                  nullptr, CREATE_ALWAYS, 0, nullptr);
  return file == INVALID_HANDLE_VALUE ? nullptr : static_cast<FileHandle>(file);
}

FileHandle openForAppending(const std::wstring& path) {
  // Reading is not needed, but locking asks for it.
  const HANDLE file = CreateFileW(path.c_str(), FILE_APPEND_DATA | FILE_READ_DATA,
                                  FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE, nullptr,
                                  OPEN_ALWAYS, FILE_ATTRIBUTE_NORMAL, nullptr);
  return file == INVALID_HANDLE_VALUE ? nullptr : static_cast<FileHandle>(file);
}

bool appendLine(FileHandle file, const void* data, std::uint32_t size) {
  // A byte that no file reaches, so that readers are not kept out.
  OVERLAPPED place{};
  place.OffsetHigh = MAXLONG;
  if (!lockSoon(file, place)) return false;
  const bool written = writeFile(file, data, size);
  UnlockFileEx(file, 0, 1, 0, &place);
  return written;
}

bool writeFile(FileHandle file, const void* data, std::uint32_t size) {
  DWORD written = 0;
  return WriteFile(file, data, size, &written, nullptr) && written == size;
}

void closeFile(FileHandle file) {
  CloseHandle(file);
}

}  // namespace qvx::platform
