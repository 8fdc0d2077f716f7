// The small web server inside a Wi-Fi camera: what it answers to the target of a GET.
#pragma once

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

class WifiServer {
 public:
  explicit WifiServer(Camera& camera) : camera_(camera) {}

  // `target` as it stands in the request line: "/", "/?action=commandcontrol&...".
  WifiAnswer get(std::string_view target);

 private:
  WifiAnswer homePage() const;
  WifiAnswer deviceList() const;
  WifiAnswer notFound(std::string_view target);
  WifiAnswer command(const WifiCommand& command);
  WifiAnswer i2c(const I2cAccess& access);
  WifiAnswer gpio(const GpioAccess& access);

  Camera& camera_;
};

}  // namespace qvx::simulator
