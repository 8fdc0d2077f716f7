// A running Wi-Fi camera: its command line, its connections, and the live picture.
#include <arpa/inet.h>
#include <gtest/gtest.h>
#include <sys/socket.h>
#include <unistd.h>

#include <future>
#include <iterator>
#include <memory>
#include <optional>
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
           "wifi:0970,port=-1|wifi:0970,zoom=1:200|wifi:0870,zoom=5|wifi:0970,name=|"
           "wifi:0970,chip=2|usb:0970,port=1|usb:0970,reports=none|usb3:09B0,firmware=wide|"
           "wifi:0970,button=2|wifi:0970,fault=half:0|wifi:0970,fault=half:|wifi:0970,fault=stall|"
           "wifi:0970,fault=half:1:2|wifi:0970,fault=half:1+|wifi:0970,fault=slow|"
           "wifi:0970 wifi:0971|--address localhost wifi:0970|--page 8064 wifi:0970|--page|"
           "--zoom 5 wifi:0970|wifi:0970 --|--log")) {
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
      close(socket);
      sockets_.pop_back();
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
  explicit Running(const std::string& more = "") {
    std::string problem;
    serveWifiCamera(port, desk.plugIn(*cameraDescriptionFrom("wifi:0970" + more, problem)), desk);
    EXPECT_TRUE(port.start("127.0.0.1", 0));
  }
  ~Running() { desk.close(); }

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
    Running running(std::string(",fault=") + expected.fault);
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
  Running running(",fault=refuse:2");
  PluggedCamera& camera = *running.desk.cameras()[0];
  LeavingClient client(running.port.port());
  client.get(readFeatures);
  EXPECT_EQ(client.get(readFeatures), "refused");
  camera.setFault({Fault::loses, 1, 1});
  std::string answer = "refused";
  for (int i = 0; i < 1000 && answer == "refused"; ++i) {
    std::this_thread::sleep_for(std::chrono::milliseconds(10));
    answer = client.get(lightOn);
  }
  EXPECT_TRUE(answer.ends_with("res:0"));
  const auto lights = [](CameraDevice& device) { return device.camera.gpio.lights(); };
  EXPECT_EQ(camera.with(lights), 0);
  client.get(lightOn);
  EXPECT_EQ(camera.with(lights), 1);
  EXPECT_EQ(camera.accessesAfter(1).size(), 2U);
}

TEST(WifiService, EndsWhileItIsSilent) {
  auto running = std::make_unique<Running>(",fault=stall:600s");
  const int port = running->port.port();
  std::thread client([port] { LeavingClient(port).get("/"); });
  std::this_thread::sleep_for(std::chrono::milliseconds(50));
  running.reset();
  client.join();
}

// What comes until so many pictures have begun, or the stream has ended.
std::string streamFrom(int port, int pictures) {
  httplib::Client client("127.0.0.1", port);
  client.set_read_timeout(60);  // on a busy machine
  std::string received;
  client.Get("/?action=stream", [&](const char* data, std::size_t size) {
    received.append(data, size);
    int begun = 0;
    for (std::size_t at = 0; (at = received.find("--frame\r\n", at)) != std::string::npos; ++at) {
      ++begun;
    }
    return begun <= pictures;
  });
  return received;
}

// The file of each part that came completely.
std::vector<std::string> filesIn(const std::string& stream) {
  const std::string head = "--frame\r\nContent-Type: image/jpeg\r\nContent-Length: ";
  std::vector<std::string> files;
  for (std::size_t at = 0; stream.compare(at, head.size(), head) == 0;) {
    const std::size_t start = stream.find("\r\n\r\n", at) + 4;
    const std::size_t size = std::stoul(stream.substr(at + head.size()));
    if (start + size + 2 > stream.size()) break;
    files.push_back(stream.substr(start, size));
    at = start + size + 2;
  }
  return files;
}

TEST(Stream, FlowsToEachClientUntilClientCameraOrProgramIsGone) {
  Desk desk;
  std::string problem;
  PluggedCamera& camera = desk.plugIn(*cameraDescriptionFrom("wifi:09D0", problem));
  std::optional<HttpPort> port(std::in_place);
  serveWifiCamera(*port, camera, desk);
  ASSERT_TRUE(port->start("127.0.0.1", 0));
  const auto begin = [&](int pictures) {
    return std::async(std::launch::async, streamFrom, port->port(), pictures);
  };
  auto endless = begin(1'000'000), one = begin(2), other = begin(2);
  for (auto* const client : {&one, &other}) {
    const std::vector<std::string> files = filesIn(client->get());
    ASSERT_GE(files.size(), 2U);
    for (const std::string& file : files) {
      EXPECT_EQ(file.substr(0, 2), "\xFF\xD8");
      EXPECT_EQ(file.substr(file.size() - 2), "\xFF\xD9");
    }
    EXPECT_NE(files[0], files[1]);  // its noise
  }
  EXPECT_EQ(camera.accessesAfter(0).size(), 3U);
  port.reset();
  EXPECT_GE(filesIn(endless.get()).size(), 2U);
}

}  // namespace
}  // namespace qvx::simulator
