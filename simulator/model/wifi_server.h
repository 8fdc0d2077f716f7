// The web server inside a Wi-Fi camera: its response to a GET request.
#pragma once

#include <string_view>

#include "simulator/model/camera.h"

namespace qvx::simulator {

struct WifiAnswer {
  int status;
  std::string contentType;
  std::string body;
  std::string description;  // one line for the log: the request and its result
};

// Renders what the camera sees as a JPEG file.
using Still = std::function<std::string(Camera&)>;

class WifiServer {
 public:
  // Without a `still` function the server has no snapshots.
  explicit WifiServer(Camera& camera, Still still = {})
      : camera_(camera), still_(std::move(still)) {}

  // `target` is the request target: "/?action=commandcontrol&...".
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
