// A simulated Wi-Fi camera on a TCP port.
#pragma once

#include "simulator/program/desk.h"
#include "simulator/program/http_port.h"

namespace qvx::simulator {

class WifiService {
 public:
  // Requests that the page claims are not the camera's.
  WifiService(PluggedCamera& camera, Desk& desk);
  ~WifiService();

  bool start(const std::string& address) { return http_.start(address, camera_.spec().port); }
  int port() const { return http_.port(); }

 private:
  bool comesHome(httplib::Response& response);
  void serve(const httplib::Request& request, httplib::Response& response);
  static void send(Reply& reply, httplib::Response& response);

  PluggedCamera& camera_;
  HttpPort http_;
};

}  // namespace qvx::simulator
