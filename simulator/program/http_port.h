// A web server on a TCP port of this machine.
#pragma once

#include <httplib.h>

#include <atomic>
#include <functional>
#include <string>
#include <thread>

namespace qvx::simulator {

class HttpPort {
 public:
  HttpPort();
  ~HttpPort();  // waits for responses in progress
  HttpPort(const HttpPort&) = delete;
  HttpPort& operator=(const HttpPort&) = delete;

  // Listens on a thread of its own; port 0 takes any free one. Ports are not shared with other
  // programs. Returns false if the port is not available.
  bool start(const std::string& address, int port);
  int port() const { return port_; }

  // To be called when `isDeaf` may have become true; on any thread.
  void reconsider() {
    if (bound_ && isDeaf()) server.stop();
  }

  // To be set before start().
  httplib::Server server;
  std::function<bool()> isDeaf = [] { return false; };  // while true, connections are refused

 private:
  bool bind();
  void listen();

  std::string address_;
  int port_ = 0;
  std::atomic<bool> stopping_ = false, bound_ = false;
  std::thread listener_;
};

}  // namespace qvx::simulator
