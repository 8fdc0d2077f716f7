#include "simulator/capture_filter/child_program.h"

#include <windows.h>

#include "simulator/capture_filter/text.h"

namespace qvx::simulator {

namespace {

// As the C runtime of the program takes it apart again.
std::wstring quoted(const std::wstring& argument) {
  if (!argument.empty() && argument.find_first_of(L" \t\"") == std::wstring::npos) return argument;
  std::wstring result = L"\"";
  std::size_t backslashes = 0;
  for (const wchar_t character : argument) {
    if (character == L'"') result.append(backslashes + 1, L'\\');
    backslashes = character == L'\\' ? backslashes + 1 : 0;
    result += character;
  }
  return result.append(backslashes, L'\\') + L'"';
}

}  // namespace

std::optional<int> runProgram(std::span<const std::wstring> arguments) {
  std::wstring commandLine;
  for (const std::wstring& argument : arguments) commandLine += quoted(argument) + L" ";
  STARTUPINFOW startup{};
  startup.cb = sizeof startup;
  PROCESS_INFORMATION process{};
  if (!CreateProcessW(nullptr, commandLine.data(), nullptr, nullptr, TRUE, 0, nullptr, nullptr,
                      &startup, &process)) {
    return std::nullopt;
  }
  SetConsoleCtrlHandler(nullptr, TRUE);
  DWORD code = 0;
  WaitForSingleObject(process.hProcess, INFINITE);
  GetExitCodeProcess(process.hProcess, &code);
  CloseHandle(process.hThread);
  CloseHandle(process.hProcess);
  return static_cast<int>(code);
}

std::wstring programFolder() {
  constexpr DWORD longestPath = 4096;
  std::wstring path(longestPath, L'\0');
  path.resize(GetModuleFileNameW(nullptr, path.data(), longestPath));
  return path.substr(0, path.rfind(L'\\') + 1);
}

bool isThere(const std::wstring& file, std::string& problem) {
  if (GetFileAttributesW(file.c_str()) != INVALID_FILE_ATTRIBUTES) return true;
  problem = "missing: " + narrow(file);
  return false;
}

}  // namespace qvx::simulator
