// A web server on a port of this machine.
#pragma once

#include <httplib.h>

#include <atomic>
#include <condition_variable>
#include <functional>
#include <mutex>
#include <string>
#include <thread>

namespace qvx::simulator {

class HttpPort {
 public:
  // While `isDeaf` holds, connections are refused.
  explicit HttpPort(std::function<bool()> isDeaf = [] { return false; });
  ~HttpPort();
  HttpPort(const HttpPort&) = delete;
  HttpPort& operator=(const HttpPort&) = delete;

  // Listens on a thread of its own. Port 0 takes any free one; none is shared with another program.
  // False when it cannot be had.
  bool start(const std::string& address, int port);
  int port() const { return port_; }

  // To be called when the answer of `isDeaf` may have changed; any thread may.
  void reconsider();

  // Stops and waits for answers under way.
  void stop();

  httplib::Server server;

 private:
  bool bind();
  void listen();

  const std::function<bool()> isDeaf_;
  std::string address_;
  int port_ = 0;
  std::mutex guard_;
  std::condition_variable changed_;
  bool stopping_ = false;
  std::atomic<bool> listening_ = false;
  std::thread listener_;
};

}  // namespace qvx::simulator
