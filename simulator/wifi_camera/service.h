// A simulated Wi-Fi camera on a TCP port.
#pragma once

#include <httplib.h>

#include <chrono>
#include <condition_variable>
#include <cstdint>
#include <mutex>
#include <string>
#include <thread>

#include "simulator/model/camera.h"
#include "simulator/model/wifi_server.h"
#include "simulator/wifi_camera/options.h"

namespace qvx::wifi_camera {

class Service {
 public:
  explicit Service(const Options& options);
  ~Service();
  Service(const Service&) = delete;
  Service& operator=(const Service&) = delete;

  // False, with errno set, when the address and port cannot be had.
  bool start();

  // The port it listens on.
  int port() const { return port_; }

  void touchButton(bool touched);

 private:
  void serve(const httplib::Request& request, httplib::Response& response);
  simulator::WifiAnswer ask(const httplib::Request& request, std::uint64_t number);
  void send(const simulator::WifiAnswer& answer, std::uint64_t number, httplib::Response& response);
  void report(const simulator::WifiAnswer& answer, std::uint64_t number);
  void stopListening();
  void keepSilent();
  std::uint64_t now_ms() const;

  const Options options_;
  const std::chrono::steady_clock::time_point powerUp_ = std::chrono::steady_clock::now();

  std::mutex mutex_;  // guards what follows, up to the server
  std::condition_variable stopped_;
  bool stopping_ = false;
  std::uint64_t requests_ = 0;
  simulator::Camera camera_;
  simulator::WifiServer wifi_;

  httplib::Server server_;
  std::once_flag listeningStopped_;
  int port_ = 0;
  std::thread listener_;
};

}  // namespace qvx::wifi_camera
