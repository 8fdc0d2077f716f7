#include "simulator/program/wifi_service.h"

#include "simulator/page/page_api.h"
#include "simulator/desk/live_picture.h"

namespace qvx::simulator {

namespace {

using httplib::Request;
using httplib::Response;
using Handled = httplib::Server::HandlerResponse;

enum Status { ok = 200, methodNotAllowed = 405, unavailable = 503 };

constexpr std::string_view homePage = "/", streamTarget = "/?action=stream";

// Clients detect the camera by its home page: a request for it counts as an access and is subject
// to faults, although the simulator's page is sent.
WifiAnswer answerOf(CameraDevice& device, const Request& request) {
  if (request.method != "GET") {
    return {methodNotAllowed, "text/plain", "405: GET only\n", "unknown method " + request.method};
  }
  if (request.target == homePage) return {ok, "text/html", "home page", "home page"};
  if (request.target == streamTarget) return {ok, "text/plain", "stream", "stream"};
  return device.wifi.get(request.target);
}

// Sends fewer bytes than announced, then closes the connection.
void sendPart(const Reply& reply, const std::string& contentType, Response& response) {
  response.set_content_provider(
      reply.announced, contentType,
      [part = reply.bytes](std::size_t, std::size_t, httplib::DataSink& sink) {
        sink.write(part.data(), part.size());
        return false;
      });
}

Handled serve(PluggedCamera& camera, const Request& request, Response& response) {
  constexpr int asItIs = 0xFFFF;
  WifiAnswer answer;
  const Reply reply = camera.carry([&](CameraDevice& device) {
    answer = answerOf(device, request);
    return Reply{true, answer.body, answer.description};
  });
  const bool isWhole = reply.done && reply.bytes == answer.body && answer.status == ok;
  if (isWhole && request.target == homePage) return Handled::Unhandled;
  response.status = reply.done ? answer.status : unavailable;
  if (isWhole && request.target == streamTarget) {
    sendStream(camera, asItIs, asItIs, response);
  } else if (reply.announced != 0) {
    sendPart(reply, answer.contentType, response);
  } else {
    response.set_content(reply.bytes, answer.contentType);
  }
  return Handled::Handled;
}

}  // namespace

void serveWifiCamera(HttpPort& port, PluggedCamera& camera, Desk& desk) {
  port.isDeaf = [&camera] { return camera.isDeaf(); };
  camera.onHearing = [&port] { port.reconsider(); };
  // Clients do not close their side of a connection, which must not occupy a thread after the
  // answer.
  port.server.set_keep_alive_max_count(1);
  addPageRoutes(port.server, desk);
  port.server.set_pre_routing_handler([&camera](const Request& request, Response& response) {
    const bool isForPage = request.path.starts_with(pagePrefix);
    return isForPage ? Handled::Unhandled : serve(camera, request, response);
  });
}

}  // namespace qvx::simulator
