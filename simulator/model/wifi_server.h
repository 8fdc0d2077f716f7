// The small web server inside a Wi-Fi camera: what it answers to the target of a GET.
#pragma once

#include <string_view>

#include "simulator/model/camera.h"

namespace qvx::simulator {

struct WifiAnswer {
  int status;
  std::string contentType;
  std::string body;
  std::string description;  // one line for a person: what was asked and what came of it
};

// What the camera sees, as a JPEG file.
using Still = std::function<std::string(Camera&)>;

class WifiServer {
 public:
  // Without a still, the server is out of snapshots.
  explicit WifiServer(Camera& camera, Still still = {})
      : camera_(camera), still_(std::move(still)) {}

  // `target` as it stands in the request line: "/?action=commandcontrol&...".
  WifiAnswer get(std::string_view target);

 private:
  struct Command {
    std::int32_t id, group, value;
  };

  static std::optional<Command> commandFrom(std::string_view query);
  WifiAnswer refuse(const std::string& complaint);
  WifiAnswer deviceList() const;
  WifiAnswer controls() const;
  WifiAnswer snapshot() const;
  WifiAnswer picture(const Command& command);
  WifiAnswer videoMode(const Command& command);
  WifiAnswer gpio(const Command& command);
  WifiAnswer i2c(const Command& command);

  Camera& camera_;
  Still still_;
};

}  // namespace qvx::simulator
