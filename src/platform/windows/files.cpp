#include "platform/files.h"

#include <windows.h>

namespace qvx::platform {

FileHandle createFile(const std::wstring& path) {
  const HANDLE file = CreateFileW(path.c_str(), GENERIC_WRITE, FILE_SHARE_READ | FILE_SHARE_WRITE,
                                  nullptr, CREATE_ALWAYS, 0, nullptr);
  return file == INVALID_HANDLE_VALUE ? nullptr : static_cast<FileHandle>(file);
}

bool writeFile(FileHandle file, const void* data, std::uint32_t size) {
  DWORD written = 0;
  return WriteFile(file, data, size, &written, nullptr) && written == size;
}

void closeFile(FileHandle file) {
  CloseHandle(file);
}

}  // namespace qvx::platform
