#include "simulator/program/http_port.h"

namespace qvx::simulator {

namespace {

constexpr auto pause = std::chrono::milliseconds(5);
constexpr std::size_t maxConnections = 32;  // a stream occupies its thread

// Allows an immediate restart on the same port. On Windows the option would share the port instead.
void configureSocket([[maybe_unused]] socket_t socket) {
#ifndef _WIN32
  const int on = 1;
  setsockopt(socket, SOL_SOCKET, SO_REUSEADDR, &on, sizeof on);
#endif
}

}  // namespace

HttpPort::HttpPort() {
  server.set_socket_options(configureSocket);
  server.set_keep_alive_timeout(1);
  server.new_task_queue = [] { return new httplib::ThreadPool(maxConnections); };
}

HttpPort::~HttpPort() {
  for (stopping_ = true; bound_; std::this_thread::sleep_for(pause)) server.stop();
  if (listener_.joinable()) listener_.join();
}

bool HttpPort::start(const std::string& address, int port) {
  address_ = address;
  port_ = port;
  if (!isDeaf() && !bind()) return false;
  listener_ = std::thread([this] { listen(); });
  while (bound_ && !server.is_running()) std::this_thread::sleep_for(pause);
  return true;
}

bool HttpPort::bind() {
  const bool any = port_ == 0;
  if (any) port_ = server.bind_to_any_port(address_);
  return bound_ = any ? port_ > 0 : server.bind_to_port(address_, port_);
}

void HttpPort::listen() {
  for (;; std::this_thread::sleep_for(pause)) {
    if (bound_ && !stopping_) server.listen_after_bind();
    bound_ = false;
    if (stopping_) return;
    if (!isDeaf()) bind();
  }
}

}  // namespace qvx::simulator
