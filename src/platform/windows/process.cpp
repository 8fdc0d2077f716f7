#include "platform/process.h"

#include <float.h>
#include <windows.h>

#include "platform/windows/module.h"

namespace qvx::platform {

std::uint32_t floatingPointControl(std::uint32_t value, std::uint32_t mask) {
  return _controlfp(value, mask);
}

std::string modulePath() {
  char path[MAX_PATH] = "";
  GetModuleFileNameA(ownModule(), path, MAX_PATH);
  path[MAX_PATH - 1] = '\0';
  return path;
}

std::uint32_t lastError() {
  return GetLastError();
}

void setLastError(std::uint32_t code) {
  SetLastError(code);
}

}  // namespace qvx::platform
