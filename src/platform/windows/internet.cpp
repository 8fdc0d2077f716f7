#include "platform/internet.h"
#include "platform/system.h"

#include <windows.h>
#include <wininet.h>

namespace qvx::platform {

namespace {

InternetHandle wrap(HINTERNET handle) {
  return static_cast<InternetHandle>(handle);
}

}  // namespace

InternetHandle openInternetSession(const wchar_t* agent) {
  return wrap(InternetOpenW(agent, INTERNET_OPEN_TYPE_PRECONFIG, nullptr, nullptr, 0));
}

InternetHandle openDirectInternetSession(const wchar_t* agent) {
  return wrap(InternetOpenW(agent, INTERNET_OPEN_TYPE_DIRECT, nullptr, nullptr, 0));
}

void setInternetTimeouts(InternetHandle session, std::uint32_t connect_ms,
                         std::uint32_t receive_ms) {
  DWORD connect = connect_ms, receive = receive_ms;
  InternetSetOptionW(session, INTERNET_OPTION_CONNECT_TIMEOUT, &connect, sizeof connect);
  InternetSetOptionW(session, INTERNET_OPTION_RECEIVE_TIMEOUT, &receive, sizeof receive);
}

InternetHandle system::openUrl(InternetHandle session, const std::wstring& url) {
  if (session == nullptr) return nullptr;
  return wrap(InternetOpenUrlW(session, url.c_str(), nullptr, 0, INTERNET_FLAG_RELOAD, 0));
}

bool system::readUrl(InternetHandle request, void* buffer, std::uint32_t capacity,
                     std::uint32_t& received) {
  DWORD count = 0;
  const bool done = InternetReadFile(request, buffer, capacity, &count) != FALSE;
  received = count;
  return done;
}

void closeInternetHandle(InternetHandle handle) {
  if (handle != nullptr) InternetCloseHandle(handle);
}

}  // namespace qvx::platform
