#include "simulator/program/http_port.h"

namespace qvx::simulator {

namespace {

constexpr auto pause = std::chrono::milliseconds(1), retry = std::chrono::milliseconds(100);
constexpr std::size_t mostConnections = 32;  // a stream holds its thread for as long as it flows

// Restarts on the same port at once. On Windows the option would mean to share it.
void configureSocket([[maybe_unused]] socket_t socket) {
#ifndef _WIN32
  const int on = 1;
  setsockopt(socket, SOL_SOCKET, SO_REUSEADDR, &on, sizeof on);
#endif
}

}  // namespace

HttpPort::HttpPort(std::function<bool()> isDeaf) : isDeaf_(std::move(isDeaf)) {
  server.set_socket_options(configureSocket);
  server.set_keep_alive_timeout(1);
  server.new_task_queue = [] { return new httplib::ThreadPool(mostConnections); };
}

HttpPort::~HttpPort() {
  stop();
}

bool HttpPort::start(const std::string& address, int port) {
  address_ = address;
  port_ = port;
  const bool deaf = isDeaf_();
  if (!deaf && !bind()) return false;
  listening_ = !deaf;
  listener_ = std::thread([this] { listen(); });
  while (listening_ && !server.is_running()) std::this_thread::sleep_for(pause);
  return true;
}

void HttpPort::reconsider() {
  if (listening_ && isDeaf_()) server.stop();
  const std::lock_guard lock(guard_);
  changed_.notify_all();
}

void HttpPort::stop() {
  if (!listener_.joinable()) return;
  {
    const std::lock_guard lock(guard_);
    stopping_ = true;
  }
  changed_.notify_all();
  while (listening_) {
    server.stop();
    std::this_thread::sleep_for(pause);
  }
  listener_.join();
}

bool HttpPort::bind() {
  if (port_ != 0) return server.bind_to_port(address_, port_);
  port_ = server.bind_to_any_port(address_);
  return port_ > 0;
}

void HttpPort::listen() {
  for (;;) {
    if (listening_) server.listen_after_bind();
    listening_ = false;
    std::unique_lock lock(guard_);
    changed_.wait(lock, [this] { return stopping_ || !isDeaf_(); });
    if (stopping_) return;
    listening_ = bind();
    if (!listening_) changed_.wait_for(lock, retry, [this] { return stopping_; });
  }
}

}  // namespace qvx::simulator
