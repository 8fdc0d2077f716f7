#include "simulator/wifi_camera/service.h"

#include <arpa/inet.h>
#include <gtest/gtest.h>
#include <sys/socket.h>
#include <unistd.h>

#include <memory>
#include <string>
#include <thread>
#include <vector>

namespace qvx::wifi_camera {
namespace {

std::string parse(std::vector<const char*> arguments, Options& options) {
  const auto parsed = optionsFrom(arguments);
  if (const auto* const wrong = std::get_if<std::string>(&parsed)) return *wrong;
  options = std::get<Options>(parsed);
  return "";
}

TEST(WifiCameraOptions, AreTaken) {
  Options options;
  ASSERT_EQ(parse({"--pid", "0x9C0", "--port", "0", "--zoom", "63", "--address", "127.0.0.9",
                   "--fault", "silent:250:3", "--log"},
                  options),
            "");
  EXPECT_EQ(options.productId, 0x9C0);
  EXPECT_EQ(options.port, 0);
  EXPECT_EQ(options.zoom->from, 63);
  EXPECT_EQ(options.address, "127.0.0.9");
  EXPECT_EQ(options.fault.silence_ms, 250U);
  EXPECT_FALSE(options.fault.strikes(FaultKind::silent, 2));
  EXPECT_TRUE(options.fault.strikes(FaultKind::silent, 3));
  EXPECT_TRUE(options.log);
}

TEST(WifiCameraOptions, AreRefused) {
  const std::vector<const char*> cases[] = {
      {"--pid"},
      {"--pid", "0"},
      {"--pid", "0x10000"},
      {"--pid", "97g"},
      {"--port", "65536"},
      {"--port", "-1"},
      {"--address", "localhost"},
      {"--zoom", "1:200"},
      {"--pid", "0x870", "--zoom", "5"},
      {"--zoom", "5", "--pid", "0x870"},
      {"--fault", "none"},
      {"--fault", "half:0"},
      {"--fault", "half:"},
      {"--fault", "silent"},
      {"--fault", "half:1:2"},
      {"8080"},
  };
  for (const auto& arguments : cases) {
    Options options;
    EXPECT_NE(parse(arguments, options), "") << arguments[0] << ' ' << arguments.back();
  }
}

// A client that leaves its side of every connection open, as WinINet clients do.
class LeavingClient {
 public:
  explicit LeavingClient(int port) : port_(port) {}
  ~LeavingClient() {
    for (const int socket : sockets_) close(socket);
  }

  // All that comes until the server closes; "refused" without a connection.
  std::string get(const std::string& target) {
    const int socket = ::socket(AF_INET, SOCK_STREAM, 0);
    sockets_.push_back(socket);
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_port = htons(static_cast<std::uint16_t>(port_));
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    if (connect(socket, reinterpret_cast<sockaddr*>(&address), sizeof address) != 0) {
      return "refused";
    }
    const std::string request = "GET " + target + " HTTP/1.1\r\nHost: camera\r\n\r\n";
    EXPECT_EQ(send(socket, request.data(), request.size(), 0), std::ssize(request));
    std::string answer;
    char buffer[4096];
    for (ssize_t count = 1; count > 0;) {
      count = recv(socket, buffer, sizeof buffer, 0);
      if (count > 0) answer.append(buffer, static_cast<std::size_t>(count));
    }
    return answer;
  }

 private:
  int port_;
  std::vector<int> sockets_;
};

constexpr char readFeatures[] =
    "/?action=commandcontrol&dest=0plugin=0&id=1378&group=5&value=8388608";

struct Running {
  explicit Running(const std::string& fault) : service(optionsWith(fault)) {
    EXPECT_TRUE(service.start());
  }
  static Options optionsWith(const std::string& fault) {
    Options options;
    options.port = 0;
    if (!fault.empty()) options.fault = *faultFrom(fault);
    return options;
  }
  Service service;
};

TEST(WifiService, ClosesEveryConnectionOfAClientThatNeverDoes) {
  Running running("");
  LeavingClient client(running.service.port());
  for (int i = 0; i < 50; ++i) ASSERT_TRUE(client.get(readFeatures).ends_with("\r\n\r\nres:86"));
}

TEST(WifiService, DoesNotShareItsPort) {
  Running running("");
  Options options;
  options.port = static_cast<std::uint16_t>(running.service.port());
  EXPECT_FALSE(Service(options).start());
}

TEST(WifiService, GoesWrongFromTheRequestOn) {
  const struct {
    const char* fault;
    const char* ending;  // of the second answer
    std::size_t bodyLength;
  } cases[] = {
      {"empty:2", "\r\n\r\n", 0},  {"half:2", "\r\n\r\nres", 3}, {"no-marker:2", "xxxx", 8192},
      {"junk:2", "\xFE\xFF", 256}, {"refuse:2", "refused", 0},   {"silent:20:2", "res:86", 6},
  };
  for (const auto& expected : cases) {
    SCOPED_TRACE(expected.fault);
    Running running(expected.fault);
    LeavingClient client(running.service.port());
    EXPECT_TRUE(client.get(readFeatures).ends_with("res:86"));
    const std::string second = client.get(readFeatures);
    EXPECT_TRUE(second.ends_with(expected.ending));
    const std::size_t body = second.find("\r\n\r\n");
    EXPECT_EQ(body == std::string::npos ? 0 : second.size() - body - 4, expected.bodyLength);
  }
}

TEST(WifiService, EndsWhileItIsSilent) {
  auto running = std::make_unique<Running>("silent:600000");
  const int port = running->service.port();
  std::thread client([port] { LeavingClient(port).get("/"); });
  std::this_thread::sleep_for(std::chrono::milliseconds(50));
  running.reset();
  client.join();
}

}  // namespace
}  // namespace qvx::wifi_camera
