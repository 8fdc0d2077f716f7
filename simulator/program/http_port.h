// A web server on a port of this machine.
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
  ~HttpPort();  // waits for answers under way
  HttpPort(const HttpPort&) = delete;
  HttpPort& operator=(const HttpPort&) = delete;

  // Listens on a thread of its own. Port 0 takes any free one; none is shared with another program.
  // False when it cannot be had.
  bool start(const std::string& address, int port);
  int port() const { return port_; }

  // To be called when `isDeaf` may have become true; any thread may.
  void reconsider() {
    if (bound_ && isDeaf()) server.stop();
  }

  // To be set up before the start.
  httplib::Server server;
  std::function<bool()> isDeaf = [] { return false; };  // while it holds, connections are refused

 private:
  bool bind();
  void listen();

  std::string address_;
  int port_ = 0;
  std::atomic<bool> stopping_ = false, bound_ = false;
  std::thread listener_;
};

}  // namespace qvx::simulator
