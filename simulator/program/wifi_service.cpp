#include "simulator/program/wifi_service.h"

#include "simulator/page/page_api.h"

namespace qvx::simulator {

namespace {

using Handled = httplib::Server::HandlerResponse;

constexpr std::string_view streamTarget = "/?action=stream";

Reply answer(CameraDevice& device, const httplib::Request& request) {
  constexpr int ok = 200, methodNotAllowed = 405;
  if (request.target == streamTarget) return {true, {}, 0, "stream", ok, {}};
  WifiAnswer answer = request.method == "GET"
                          ? device.wifi.get(request.target)
                          : WifiAnswer{methodNotAllowed, "text/plain", "405: GET only\n",
                                       "unknown method " + request.method};
  return {true,          std::move(answer.body),       0, std::move(answer.description),
          answer.status, std::move(answer.contentType)};
}

// Fewer bytes than announced, and then the connection closes.
void sendPart(Reply& reply, httplib::Response& response) {
  response.set_content_provider(
      reply.announced, reply.contentType,
      [part = std::move(reply.bytes)](std::size_t, std::size_t, httplib::DataSink& sink) {
        sink.write(part.data(), part.size());
        return false;
      });
}

}  // namespace

WifiService::WifiService(PluggedCamera& camera, Desk& desk)
    : camera_(camera), http_([&camera] { return camera.isDeaf(); }) {
  camera.onHearing = [this] { http_.reconsider(); };
  // Clients leave their side of a connection open. It must not hold a thread after the answer.
  http_.server.set_keep_alive_max_count(1);
  addPageRoutes(http_.server, desk);
  http_.server.set_pre_routing_handler(
      [this](const httplib::Request& request, httplib::Response& response) {
        if (request.target == "/" ? comesHome(response) : isForPage(request)) {
          return Handled::Unhandled;
        }
        if (request.target != "/") serve(request, response);
        return Handled::Handled;
      });
}

WifiService::~WifiService() {
  camera_.close();
  http_.stop();
}

// Clients look for the camera by its home page: an access of the camera, which its faults spoil,
// though the page answers it.
bool WifiService::comesHome(httplib::Response& response) {
  const std::string whole = "home page";
  Reply reply = camera_.carry(
      [&whole](CameraDevice&) { return Reply{true, whole, 0, whole, 200, "text/html"}; });
  const bool unspoiled = reply.bytes == whole;
  if (!unspoiled) send(reply, response);
  return unspoiled;
}

void WifiService::serve(const httplib::Request& request, httplib::Response& response) {
  Reply reply = camera_.carry([&](CameraDevice& device) { return answer(device, request); });
  if (reply.done && request.target == streamTarget) {
    constexpr int asItIs = 0xFFFF;
    return sendStream(camera_, asItIs, asItIs, response);
  }
  send(reply, response);
}

void WifiService::send(Reply& reply, httplib::Response& response) {
  constexpr int unavailable = 503;
  response.status = reply.done ? reply.status : unavailable;
  if (reply.bytes.size() < reply.announced) return sendPart(reply, response);
  response.set_content(reply.bytes, reply.contentType);
}

}  // namespace qvx::simulator
