// The live picture of a Wi-Fi camera, as IP cameras send it.
#include <gtest/gtest.h>

#include <future>
#include <optional>

#include "simulator/program/wifi_service.h"

namespace qvx::simulator {
namespace {

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
