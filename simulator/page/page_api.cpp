#include "simulator/page/page_api.h"

#include <map>
#include <sstream>
#include <thread>
#include <utility>

#include "page_html.h"
#include "simulator/page/page_controls.h"
#include "simulator/desk/live_picture.h"

namespace qvx::simulator {

namespace {

using httplib::DataSink;
using httplib::Request;
using httplib::Response;

enum Status { done = 204, wrong = 400, forbidden = 403, missing = 404 };

void refuse(Response& response, Status status, const std::string& reason) {
  response.status = status;
  response.set_content(reason, "text/plain");
}

// Rejects requests of other sites: they could send changes and, with a host name that resolves to
// this machine (DNS rebinding), even read answers.
bool isAllowed(const Request& request, Response& response) {
  const std::string host = request.get_header_value("Host"), name = host.substr(0, host.find(':'));
  if (name != "localhost" && name.find_first_not_of("0123456789.") != std::string::npos) {
    refuse(response, forbidden, "Call this page by the address of the machine.");
  } else if (request.method != "GET" && request.get_header_value("Origin") != "http://" + host) {
    refuse(response, forbidden, "Only this page itself changes a camera.");
  }
  return response.status != forbidden;
}

// ---- From the simulator to the page

std::string textOf(const Json::Value& value) {
  Json::StreamWriterBuilder writer;
  writer["indentation"] = "";
  return Json::writeString(writer, value);
}

Json::Value stateOf(PluggedCamera& camera) {
  Json::Value state;
  state["id"] = camera.id();
  state["name"] = camera.description().name;
  state["productId"] = hex(camera.description().productId, 4).substr(2);
  state["fault"] = textOf(camera.fault());
  state["pluggedIn"] = camera.isPluggedIn();
  camera.with([&state](CameraDevice& device) {
    state["width"] = device.camera.video.mode().width;
    state["height"] = device.camera.video.mode().height;
    const View view = viewOf(device.camera);
    state["field_um"] = view.fieldWidth_um;
    const Illumination& lights = device.camera.controller.lights();
    for (const double lit : view.quadrants) state["lamps"].append(std::min(lit, 1.0));
    for (const double lit : {lights.axial(), lights.aim()}) state["lamps"].append(lit);
    for (Control& control : controlsOf(device)) state["controls"].append(control.described);
  });
  return state;
}

Json::Value entryOf(const Access& access) {
  Json::Value entry;
  entry["number"] = Json::UInt64{access.number};
  entry["time_ms"] = Json::UInt64{access.time_ms};
  entry["text"] = access.text;
  entry["violations"] = Json::arrayValue;
  for (const std::string& violation : access.violations) entry["violations"].append(violation);
  return entry;
}

// What a page already knows about a camera.
struct Told {
  std::string state;
  std::uint64_t accesses = 0;
};

// Empty if there is no news.
std::string newsOf(PluggedCamera& camera, Told& told) {
  Json::Value news = stateOf(camera);
  const std::string last = std::exchange(told.state, textOf(news));
  const std::vector<Access> accesses = camera.accessesAfter(told.accesses);
  if (last == told.state && accesses.empty()) return {};
  for (const Access& access : accesses) news["accesses"].append(entryOf(access));
  if (!accesses.empty()) told.accesses = accesses.back().number;
  return "data: " + textOf(news) + "\n\n";
}

void sendEvents(Desk& desk, Response& response) {
  const auto sendNext = [&desk, told = std::map<std::string, Told>()](std::size_t,
                                                                      DataSink& sink) mutable {
    std::this_thread::sleep_for(std::chrono::milliseconds(40));
    std::string news = ":\n\n";  // a comment, which detects a closed connection
    for (const auto& camera : desk.cameras()) news += newsOf(*camera, told[camera->id()]);
    return sink.write(news.data(), news.size());
  };
  response.set_chunked_content_provider("text/event-stream", sendNext);
}

// The page includes the states, so that it is complete at once. "<" is escaped: no name may end the
// script.
void sendPage(Desk& desk, Response& response) {
  constexpr std::string_view file = pageHtml, none = "[]";
  constexpr std::size_t place = file.find("[]</script>");
  Json::Value states(Json::arrayValue);
  for (const auto& camera : desk.cameras()) states.append(stateOf(*camera));
  std::string text = textOf(states);
  for (std::size_t at = 0; (at = text.find('<', at)) != std::string::npos;) {
    text.replace(at, 1, "\\u003c");
  }
  response.set_header("Content-Security-Policy",
                      "default-src 'self' 'unsafe-inline' data:; frame-ancestors 'none'");
  response.set_header("Cache-Control", "no-cache");
  response.set_content(std::string(file).replace(place, none.size(), text),
                       "text/html; charset=utf-8");
}

// ---- From the page to the simulator

bool change(PluggedCamera& camera, const std::string& key, const Json::Value& value) {
  if (key == "fault") {
    const std::optional<Fault> fault = faultFrom(value.isString() ? value.asString() : "");
    if (fault) camera.setFault(*fault);
    return fault.has_value();
  }
  return value.isNumeric() && camera.with([&](CameraDevice& device) {
    for (const Control& control : controlsOf(device)) {
      if (control.described["key"] != key) continue;
      control.turnTo(value.asDouble());
      return true;
    }
    return false;
  });
}

void takeChanges(PluggedCamera& camera, const std::string& text, Response& response) {
  Json::CharReaderBuilder reader;
  Json::CharReaderBuilder::strictMode(&reader.settings_);
  std::istringstream body(text);
  Json::Value changes;
  if (!Json::parseFromStream(reader, body, &changes, nullptr) || !changes.isObject()) {
    return refuse(response, wrong, "This is no JSON object.");
  }
  response.status = done;
  for (const std::string& key : changes.getMemberNames()) {
    if (change(camera, key, changes[key])) continue;
    refuse(response, wrong, "The camera does not take this value of " + key + ".");
  }
}

}  // namespace

void addPageRoutes(httplib::Server& server, Desk& desk) {
  const auto allowed = [&desk](auto answer) {
    return [&desk, answer](const Request& request, Response& response) {
      if (isAllowed(request, response)) answer(desk, response);
    };
  };
  const auto onCamera = [&desk](auto answer) {
    return [&desk, answer](const Request& request, Response& response) {
      PluggedCamera* const camera = desk.find(request.matches[1].str());
      if (!isAllowed(request, response)) return;
      if (camera == nullptr) return refuse(response, missing, "There is no such camera.");
      answer(*camera, request, response);
    };
  };
  server.Get("/", allowed(sendPage));
  server.Get("/cameras/events", allowed(sendEvents));
  server.Get("/cameras/([^/]+)/stream", onCamera([](auto& camera, auto&, auto& response) {
               constexpr int minWidth = 320, maxWidth = 800;
               sendStream(camera, minWidth, maxWidth, response);
             }));
  server.Post("/cameras/([^/]+)", onCamera([](auto& camera, auto& request, auto& response) {
                takeChanges(camera, request.body, response);
              }));
}

}  // namespace qvx::simulator
