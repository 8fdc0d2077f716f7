// A running Wi-Fi camera: its command line, its connections, and the live picture.
#include <arpa/inet.h>
#include <gtest/gtest.h>
#include <sys/socket.h>
#include <unistd.h>

#include <future>
#include <iterator>
#include <memory>
#include <sstream>
#include <string>
#include <thread>
#include <tuple>
#include <vector>

#include "simulator/program/options.h"
#include "simulator/program/wifi_service.h"
#include "tests/support/items.h"

namespace qvx::simulator {
namespace {

// What is wrong with a command line; nothing when it is taken.
std::string parse(const std::string& line, Options& options) {
  std::istringstream words(line);
  const std::vector<std::string> arguments{std::istream_iterator<std::string>(words), {}};
  options = {};
  return optionsFrom(arguments, options);
}

TEST(SimulatorOptions, AreTakenOrRefused) {
  Options options;
  ASSERT_EQ(parse("wifi:09C0,port=0,zoom=63,fault=stall:250ms:3+2 --address 127.0.0.9 --log "
                  "--page 127.0.0.1:80 usb:1234:0970,unit=variant1,firmware=wide,name=A -- x --log",
                  options),
            "");
  ASSERT_EQ(options.cameras.size(), 2U);
  const CameraDescription &wifi = options.cameras[0], &usb = options.cameras[1];
  EXPECT_EQ(std::tuple(wifi.productId, wifi.port, wifi.zoom->from, wifi.name),
            std::tuple(0x9C0, 0, 63, "Simulated microscope 09C0"));
  EXPECT_EQ(wifi.fault, (Fault{Fault::stalls, 3, 2, 250}));
  EXPECT_EQ(textOf(wifi.fault), "stall:250ms:3+2");
  EXPECT_EQ(std::tuple(usb.vendorId, usb.unit, usb.setup.firmware, usb.name),
            std::tuple(0x1234, Unit::variant1, BridgeFirmware::wide, "A"));
  EXPECT_EQ(std::tuple(options.address, options.pagePort, options.log),
            std::tuple("127.0.0.9", 80, true));
  EXPECT_EQ(options.program, (std::vector<std::string>{"x", "--log"}));
  for (const std::string& line : tests::itemsIn(
           "|0970|wifi|wifi:|wifi:0|wifi:10000|wifi:97g|bluetooth:0970|wifi:0970,port=65536|"
           "wifi:0970,port=-1|wifi:0870,zoom=5|wifi:0970,name=|"
           "wifi:0970,chip=2|usb:0970,port=1|usb:0970,reports=none|usb3:09B0,firmware=wide|"
           "wifi:0970,button=2|wifi:0970,fault=half:0|wifi:0970,fault=half:|wifi:0970,fault=stall|"
           "wifi:0970,fault=half:1:2|wifi:0970,fault=half:1+|wifi:0970,fault=slow|"
           "wifi:0970 wifi:0971|--address localhost wifi:0970|--page 8064 wifi:0970|--page|"
           "--zoom 5 wifi:0970|wifi:0970 --|--log")) {
    EXPECT_NE(parse(line, options), "") << line;
  }
  for (const std::string& motion : tests::itemsIn(
           "|x|0.9|-5|63x|1.2.3|.5|1:200|1:200/|1:200/10|1:200/0s|1:200/10sx|1:/10s|:200/10s|"
           "1234567|1:200/1e3s")) {
    EXPECT_NE(parse("wifi:0970,zoom=" + motion, options), "") << motion;
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
    for (ssize_t count; (count = recv(socket, buffer, sizeof buffer, 0)) > 0;) {
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
  explicit Running(const std::string& description = "wifi:0970") {
    std::string problem;
    serveWifiCamera(port, desk.plugIn(*cameraDescriptionFrom(description, problem)), desk);
    EXPECT_TRUE(port.start("127.0.0.1", 0));
  }
  ~Running() { desk.close(); }

  PluggedCamera& camera() { return *desk.cameras()[0]; }

  Desk desk;
  HttpPort port;
};

TEST(WifiService, ClosesEveryConnectionOfAClientThatNeverDoes) {
  Running running;
  LeavingClient client(running.port.port());
  for (int i = 0; i < 50; ++i) ASSERT_TRUE(client.get(readFeatures).ends_with("\r\n\r\nres:86"));
  EXPECT_FALSE(HttpPort().start("127.0.0.1", running.port.port())) << "shares its port";
}

TEST(WifiService, GoesWrongFromTheRequestOn) {
  const struct {
    const char* fault;
    const char* ending;  // of the second answer
    std::size_t bodyLength;
  } cases[] = {
      {"empty:2", "\r\n\r\n", 0},  {"half:2", "\r\n\r\nres", 3}, {"no-marker:2", "xxxx", 8192},
      {"junk:2", "\xFE\xFF", 256}, {"refuse:2", "refused", 0},   {"stall:20ms:2", "res:86", 6},
      {"unplug:2", "refused", 0},
  };
  for (const auto& expected : cases) {
    SCOPED_TRACE(expected.fault);
    Running running(std::string("wifi:0970,fault=") + expected.fault);
    LeavingClient client(running.port.port());
    EXPECT_TRUE(client.get(readFeatures).ends_with("res:86"));
    const std::string second = client.get(readFeatures);
    EXPECT_TRUE(second.ends_with(expected.ending));
    const std::size_t body = second.find("\r\n\r\n");
    EXPECT_EQ(body == std::string::npos ? 0 : second.size() - body - 4, expected.bodyLength);
  }
}

TEST(WifiService, RecoversAndLosesWrites) {
  const std::string lightOn = "/?action=commandcontrol&dest=0plugin=0&id=1031&group=4&value=1";
  Running running("wifi:0970,fault=refuse:2");
  LeavingClient client(running.port.port());
  client.get(readFeatures);
  EXPECT_EQ(client.get(readFeatures), "refused");
  running.camera().setFault({Fault::loses, 1, 1});
  std::string answer = "refused";
  for (int i = 0; i < 1000 && answer == "refused"; ++i) {
    std::this_thread::sleep_for(std::chrono::milliseconds(10));
    answer = client.get(lightOn);
  }
  EXPECT_TRUE(answer.ends_with("res:0"));
  const auto lights = [](CameraDevice& device) { return device.camera.gpio.lights(); };
  EXPECT_EQ(running.camera().with(lights), 0);
  client.get(lightOn);
  EXPECT_EQ(running.camera().with(lights), 1);
  EXPECT_EQ(running.camera().accessesAfter(1).size(), 2U);
}

TEST(WifiService, EndsWhileItIsSilent) {
  auto running = std::make_unique<Running>("wifi:0970,fault=stall:600s");
  const int port = running->port.port();
  std::thread client([port] { LeavingClient(port).get("/"); });
  std::this_thread::sleep_for(std::chrono::milliseconds(50));
  running.reset();
  client.join();
}

// The pictures that came whole until there were so many, or the stream ended.
std::vector<std::string> picturesFrom(int port, std::size_t count) {
  const std::string head = "--frame\r\nContent-Type: image/jpeg\r\nContent-Length: ";
  httplib::Client client("127.0.0.1", port);
  client.set_read_timeout(60);  // on a busy machine
  std::vector<std::string> pictures;
  std::string rest;
  client.Get("/?action=stream", [&](const char* data, std::size_t size) {
    rest.append(data, size);
    const std::size_t start = rest.find("\r\n\r\n");
    if (start == std::string::npos) return true;
    if (!rest.starts_with(head)) return false;
    const std::size_t length = std::stoul(rest.substr(head.size()));
    if (rest.size() >= start + 4 + length + 2) {
      pictures.push_back(rest.substr(start + 4, length));
      rest.erase(0, start + 4 + length + 2);
    }
    return pictures.size() < count;
  });
  return pictures;
}

TEST(Stream, FlowsToEachClientUntilClientCameraOrProgramIsGone) {
  auto running = std::make_unique<Running>("wifi:09D0");
  const auto begin = [port = running->port.port()](std::size_t pictures) {
    return std::async(std::launch::async, picturesFrom, port, pictures);
  };
  auto endless = begin(1'000'000), one = begin(2), other = begin(2);
  for (auto* const client : {&one, &other}) {
    const std::vector<std::string> pictures = client->get();
    ASSERT_EQ(pictures.size(), 2U);
    for (const std::string& file : pictures) {
      EXPECT_TRUE(file.starts_with("\xFF\xD8"));
      EXPECT_TRUE(file.ends_with("\xFF\xD9"));
    }
    EXPECT_NE(pictures[0], pictures[1]);  // its noise
  }
  EXPECT_EQ(running->camera().accessesAfter(0).size(), 3U);
  running.reset();
  EXPECT_GE(endless.get().size(), 2U);
}

}  // namespace
}  // namespace qvx::simulator
