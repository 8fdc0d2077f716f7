#include "simulator/wifi_camera/service.h"

#include <sys/socket.h>

#include <cstdio>

#include "simulator/scene/still.h"

namespace qvx::wifi_camera {

namespace {

// Restarts on the same port at once, but never shares it with another program.
void configureSocket(int socket) {
  const int on = 1;
  setsockopt(socket, SOL_SOCKET, SO_REUSEADDR, &on, sizeof on);
}

}  // namespace

Service::Service(const Options& options)
    : options_(options), camera_(options.productId), wifi_(camera_, simulator::stillOf) {
  if (options.zoom) camera_.setZoom(*options.zoom);
  server_.set_socket_options(configureSocket);
  // Clients leave their side of a connection open. It must not hold a thread after the answer.
  server_.set_keep_alive_max_count(1);
  server_.set_pre_routing_handler(
      [this](const httplib::Request& request, httplib::Response& response) {
        serve(request, response);
        return httplib::Server::HandlerResponse::Handled;
      });
}

Service::~Service() {
  {
    const std::lock_guard lock(mutex_);
    stopping_ = true;
  }
  stopped_.notify_all();
  stopListening();
  if (listener_.joinable()) listener_.join();
}

bool Service::start() {
  port_ = options_.port;
  if (options_.fault.strikes(FaultKind::refuse, 1)) return true;
  if (options_.port == 0) {
    port_ = server_.bind_to_any_port(options_.address);
  } else if (!server_.bind_to_port(options_.address, options_.port)) {
    port_ = -1;
  }
  if (port_ < 0) return false;
  listener_ = std::thread([this] { server_.listen_after_bind(); });
  while (!server_.is_running()) std::this_thread::sleep_for(std::chrono::milliseconds(1));
  return true;
}

void Service::touchButton(bool touched) {
  const std::lock_guard lock(mutex_);
  touched ? camera_.gpio().pressButton() : camera_.gpio().releaseButton();
}

void Service::serve(const httplib::Request& request, httplib::Response& response) {
  std::uint64_t number = 0;
  simulator::WifiAnswer answer;
  {
    const std::lock_guard lock(mutex_);
    number = ++requests_;
    answer = ask(request, number);
  }
  if (options_.fault.strikes(FaultKind::silent, number)) keepSilent();
  send(answer, number, response);
  // The answer under way still goes out.
  if (options_.fault.strikes(FaultKind::refuse, number + 1)) stopListening();
}

simulator::WifiAnswer Service::ask(const httplib::Request& request, std::uint64_t number) {
  constexpr int methodNotAllowed = 405;
  camera_.advanceTo(now_ms());
  simulator::WifiAnswer answer =
      request.method == "GET"
          ? wifi_.get(request.target)
          : simulator::WifiAnswer{methodNotAllowed, "text/plain", "405: GET only\n",
                                  "unknown method " + request.method};
  report(answer, number);
  return answer;
}

void Service::send(const simulator::WifiAnswer& answer, std::uint64_t number,
                   httplib::Response& response) {
  response.status = answer.status;
  const std::string body = spoiled(options_.fault, number, answer.body);
  if (!options_.fault.strikes(FaultKind::half, number)) {
    response.set_content(body, answer.contentType);
    return;
  }
  response.set_content_provider(
      body.size(), answer.contentType,
      [half = body.substr(0, body.size() / 2)](std::size_t, std::size_t, httplib::DataSink& sink) {
        sink.write(half.data(), half.size());
        return false;
      });
}

void Service::report(const simulator::WifiAnswer& answer, std::uint64_t number) {
  if (options_.log) {
    std::printf("%10.3f s  %4llu  %s\n", static_cast<double>(now_ms()) / 1000.0,
                static_cast<unsigned long long>(number), answer.description.c_str());
    std::fflush(stdout);
  }
  simulator::Violations& violations = camera_.violations();
  for (std::size_t i = 0; i < violations.count(); ++i) {
    std::fprintf(stderr, "violation: %s\n", std::string(violations[i]).c_str());
  }
  violations.clear();
}

void Service::stopListening() {
  std::call_once(listeningStopped_, [this] { server_.stop(); });
}

void Service::keepSilent() {
  std::unique_lock lock(mutex_);
  stopped_.wait_for(lock, std::chrono::milliseconds(options_.fault.silence_ms),
                    [this] { return stopping_; });
}

std::uint64_t Service::now_ms() const {
  using namespace std::chrono;
  const auto sincePowerUp = steady_clock::now() - powerUp_;
  return static_cast<std::uint64_t>(duration_cast<milliseconds>(sincePowerUp).count());
}

}  // namespace qvx::wifi_camera
