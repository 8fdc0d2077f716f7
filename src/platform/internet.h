// HTTP over the system's own internet library (WinINet on Windows).
#pragma once

#include <cstdint>
#include <string>

namespace qvx::platform {

struct InternetObject;
using InternetHandle = InternetObject*;

// Opens a session that uses the system's proxy settings. Null on failure.
InternetHandle openInternetSession(const wchar_t* agent);

// The same past every proxy.
InternetHandle openDirectInternetSession(const wchar_t* agent);

// Limits how long requests of this session may take to connect and to receive.
void setInternetTimeouts(InternetHandle session, std::uint32_t connect_ms,
                         std::uint32_t receive_ms);

// Sends a GET for the URL, past every cache, without extra headers. Returns when the answer's
// headers have arrived; null when the server could not be reached.
InternetHandle openUrl(InternetHandle session, const std::wstring& url);

// Reads at most `capacity` bytes of the answer and stores how many came; 0 at its end.
// False when the connection failed.
bool readUrl(InternetHandle request, void* buffer, std::uint32_t capacity, std::uint32_t& received);

// Closes a session or a request. Null is ignored.
void closeInternetHandle(InternetHandle handle);

}  // namespace qvx::platform
