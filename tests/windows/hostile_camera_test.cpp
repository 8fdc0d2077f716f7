// The DLL against something at the camera's address that is no camera.
#include <winsock2.h>
// winsock2.h goes before windows.h.
#include <atomic>
#include <thread>

#include "tests/windows/support.h"

namespace qvx::tests {
namespace {

// Answers every request on port 8080 with the same bytes, and closes.
class Peer {
 public:
  explicit Peer(std::string answer) : answer_(std::move(answer)) {
    WSADATA data;
    WSAStartup(MAKEWORD(2, 2), &data);
    listener_ = socket(AF_INET, SOCK_STREAM, 0);
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_port = htons(8080);
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    listening_ =
        bind(listener_, reinterpret_cast<const sockaddr*>(&address), sizeof address) == 0 &&
        listen(listener_, 16) == 0;
    thread_ = std::thread([this] { serve(); });
  }
  ~Peer() {
    ends_ = true;
    thread_.join();
    closesocket(listener_);  // not while the thread still waits on it
    WSACleanup();
  }

  bool listening() const { return listening_; }
  int requests() const { return requests_; }

 private:
  void serve() {
    while (!ends_) {
      fd_set readable;
      FD_ZERO(&readable);
      FD_SET(listener_, &readable);
      timeval soon = {0, 20000};
      if (select(0, &readable, nullptr, nullptr, &soon) != 1) continue;
      const SOCKET client = accept(listener_, nullptr, nullptr);
      if (client == INVALID_SOCKET) continue;
      answer(client);
    }
  }

  void answer(SOCKET client) {
    char buffer[4096];
    std::string request;
    while (request.find("\r\n\r\n") == std::string::npos) {
      const int count = recv(client, buffer, sizeof buffer, 0);
      if (count <= 0) break;
      request.append(buffer, static_cast<std::size_t>(count));
    }
    ++requests_;
    send(client, answer_.data(), static_cast<int>(answer_.size()), 0);
    shutdown(client, SD_SEND);
    closesocket(client);
  }

  std::string answer_;
  SOCKET listener_ = INVALID_SOCKET;
  bool listening_ = false;
  std::atomic<bool> ends_{false};
  std::atomic<int> requests_{0};
  std::thread thread_;
};

std::string http(const std::string& body, std::size_t length) {
  return "HTTP/1.0 200 OK\r\nContent-Type: text/plain\r\nContent-Length: " +
         std::to_string(length) + "\r\nConnection: close\r\n\r\n" + body;
}

TEST(HostileCamera, NothingItSaysHangsOrBreaksTheLibrary) {
  std::string binary;
  for (int i = 0; i < 8192; ++i) binary += static_cast<char>(i * 37 % 256);
  const struct {
    const char* name;
    std::string answer;
  } rows[] = {
      {"nothing at all", ""},
      {"no body", http("", 0)},
      {"half an answer", http("res", 100)},
      {"8192 bytes without a result", http(std::string(8192, 'x'), 8192)},
      {"binary junk", http(binary, binary.size())},
      {"junk instead of HTTP", binary},
      {"an error", "HTTP/1.0 500 Oops\r\nContent-Length: 5\r\n\r\nres:7"},
      {"a result beyond any register", http("res:99999999999999999999", 24)},
  };
  for (const auto& row : rows) {
    Peer peer(row.answer);
    ASSERT_TRUE(peer.listening()) << "port 8080 is in use";
    SetVideoDeviceIndex(90);
    const ULONGLONG start = GetTickCount64();
    Init();
    pumpMessages(300);
    EXPECT_LT(GetTickCount64() - start, 15000u) << row.name;
    EXPECT_GE(peer.requests(), 1) << row.name;
    EXPECT_FALSE(GetMAG(90) < 0.0) << row.name;
  }
  SetVideoDeviceIndex(90);
  EXPECT_EQ(Init(), 0) << "and when it is gone, it is gone";
}

}  // namespace
}  // namespace qvx::tests
