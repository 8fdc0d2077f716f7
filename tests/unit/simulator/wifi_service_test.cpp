#include "simulator/wifi_camera/service.h"

#include <arpa/inet.h>
#include <gtest/gtest.h>
#include <sys/socket.h>
#include <unistd.h>

#include <iterator>
#include <memory>
#include <sstream>
#include <string>
#include <thread>
#include <vector>

namespace qvx::wifi_camera {
namespace {

// What is wrong with a command line; nothing when it is taken.
std::string parse(const std::string& line, Options& options) {
  std::istringstream words(line);
  const std::vector<std::string> arguments{std::istream_iterator<std::string>(words), {}};
  std::vector<const char*> texts;
  for (const std::string& argument : arguments) texts.push_back(argument.c_str());
  const auto parsed = optionsFrom(texts);
  if (const auto* const wrong = std::get_if<std::string>(&parsed)) return *wrong;
  options = std::get<Options>(parsed);
  return "";
}

TEST(WifiCameraOptions, AreTakenOrRefused) {
  Options options;
  ASSERT_EQ(parse("--pid 0x9C0 --port 0 --zoom 63 --address 127.0.0.9 --fault silent:250:3 --log",
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
  for (const char* const line :
       {"--pid", "--pid 0", "--pid 0x10000", "--pid 97g", "--port 65536", "--port -1",
        "--address localhost", "--zoom 1:200", "--pid 0x870 --zoom 5", "--zoom 5 --pid 0x870",
        "--fault none", "--fault half:0", "--fault half:", "--fault silent", "--fault half:1:2",
        "8080"}) {
    EXPECT_NE(parse(line, options), "") << line;
  }
}

// A client that leaves its side of every connection open, as WinINet clients do.
class LeavingClient {
 public:
  explicit LeavingClient(int port) : port_(static_cast<std::uint16_t>(port)) {}
  ~LeavingClient() {
    for (const int socket : sockets_) close(socket);
  }

  // All that comes until the server closes; "refused" without a connection.
  std::string get(const std::string& target) {
    const int socket = sockets_.emplace_back(::socket(AF_INET, SOCK_STREAM, 0));
    const sockaddr_in address{AF_INET, htons(port_), {htonl(INADDR_LOOPBACK)}, {}};
    if (connect(socket, reinterpret_cast<const sockaddr*>(&address), sizeof address) != 0) {
      return "refused";
    }
    const std::string request = "GET " + target + " HTTP/1.1\r\nHost: camera\r\n\r\n";
    EXPECT_EQ(send(socket, request.data(), request.size(), 0), std::ssize(request));
    std::string answer;
    char buffer[4096];
    while (const ssize_t count = recv(socket, buffer, sizeof buffer, 0)) {
      if (count < 0) break;
      answer.append(buffer, static_cast<std::size_t>(count));
    }
    return answer;
  }

 private:
  std::uint16_t port_;
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
    EXPECT_EQ(parse("--port 0 " + fault, options), "");
    return options;
  }
  Service service;
};

TEST(WifiService, ClosesEveryConnectionOfAClientThatNeverDoes) {
  Running running("");
  LeavingClient client(running.service.port());
  for (int i = 0; i < 50; ++i) ASSERT_TRUE(client.get(readFeatures).ends_with("\r\n\r\nres:86"));
  Options samePort;
  samePort.port = static_cast<std::uint16_t>(running.service.port());
  EXPECT_FALSE(Service(samePort).start()) << "shares its port";
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
    Running running(std::string("--fault ") + expected.fault);
    LeavingClient client(running.service.port());
    EXPECT_TRUE(client.get(readFeatures).ends_with("res:86"));
    const std::string second = client.get(readFeatures);
    EXPECT_TRUE(second.ends_with(expected.ending));
    const std::size_t body = second.find("\r\n\r\n");
    EXPECT_EQ(body == std::string::npos ? 0 : second.size() - body - 4, expected.bodyLength);
  }
}

TEST(WifiService, EndsWhileItIsSilent) {
  auto running = std::make_unique<Running>("--fault silent:600000");
  const int port = running->service.port();
  std::thread client([port] { LeavingClient(port).get("/"); });
  std::this_thread::sleep_for(std::chrono::milliseconds(50));
  running.reset();
  client.join();
}

}  // namespace
}  // namespace qvx::wifi_camera
