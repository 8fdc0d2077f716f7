// The small web server inside a Wi-Fi camera: what it answers to the target of a GET.
#pragma once

#include <functional>
#include <string>
#include <string_view>

#include "simulator/model/camera.h"
#include "simulator/model/wifi_command.h"

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
  bool losesWrites() const { return camera_.tap().losesWrites; }
  WifiAnswer deviceList() const;
  WifiAnswer controls() const;
  WifiAnswer snapshot() const;
  WifiAnswer notFound(std::string_view target);
  WifiAnswer command(const WifiCommand& command);
  WifiAnswer i2c(const I2cAccess& access);
  WifiAnswer gpio(const GpioAccess& access);
  WifiAnswer picture(const WifiCommand& command);
  WifiAnswer videoMode(const WifiCommand& command);

  Camera& camera_;
  Still still_;
};

}  // namespace qvx::simulator
