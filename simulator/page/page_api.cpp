#include "simulator/page/page_api.h"

#include <json/json.h>

#include <map>
#include <thread>

#include "page_html.h"
#include "simulator/page/page_controls.h"
#include "simulator/scene/view.h"

namespace qvx::simulator {

namespace {

using httplib::DataSink;
using httplib::Request;
using httplib::Response;
using namespace std::chrono_literals;

enum Status { done = 204, wrong = 400, forbidden = 403, missing = 404 };

void refuse(Response& response, Status status, const std::string& reason) {
  response.status = status;
  response.set_content(reason, "text/plain");
}

// ---- Who may ask. A page from elsewhere cannot read an answer, but it could send changes; and
// with a name that it makes point to this machine it could even read.

bool isAddress(std::string host) {
  host.resize(host.find_last_of(':') < host.size() ? host.find_last_of(':') : host.size());
  return host == "localhost" || host.find_first_not_of("0123456789.") == std::string::npos;
}

bool isAllowed(const Request& request, Response& response) {
  const std::string host = request.get_header_value("Host");
  const bool isChange = request.method != "GET";
  if (!isAddress(host)) {
    refuse(response, forbidden, "Call this page by the address of the machine.");
  } else if (isChange && request.get_header_value("Origin") != "http://" + host) {
    refuse(response, forbidden, "Only this page itself changes a camera.");
  }
  return response.status != forbidden;
}

// ---- What the page is told

std::string textOf(const Json::Value& value) {
  Json::StreamWriterBuilder writer;
  writer["indentation"] = "";
  return Json::writeString(writer, value);
}

std::string event(const char* name, const Json::Value& value) {
  return "event: " + std::string(name) + "\ndata: " + textOf(value) + "\n\n";
}

Json::Value entryOf(const Control& control) {
  Json::Value entry;
  entry["group"] = control.group;
  entry["key"] = control.key;
  entry["label"] = control.label;
  entry["value"] = control.value;
  entry["min"] = control.least;
  entry["max"] = control.most;
  entry["step"] = control.step;
  entry["standard"] = control.standard;
  for (const char* const option : control.options) entry["options"].append(option);
  return entry;
}

Json::Value lightOf(const View& view, const Illumination& lights) {
  Json::Value light;
  for (const double lit : view.quadrants) light["quadrants"].append(std::min(lit, 1.0));
  light["axial"] = lights.axial();
  light["aim"] = lights.aim();
  return light;
}

Json::Value stateOf(PluggedCamera& camera) {
  Json::Value state;
  state["id"] = camera.id();
  state["name"] = camera.spec().name;
  state["productId"] = hex(camera.spec().productId, 4).substr(2);
  state["fault"] = textOf(camera.fault());
  state["pluggedIn"] = camera.isPluggedIn();
  camera.with([&state](CameraDevice& device) {
    state["width"] = device.camera.video().mode().width;
    state["height"] = device.camera.video().mode().height;
    const View view = viewOf(device.camera);
    state["field_um"] = view.fieldWidth_um;
    state["light"] = lightOf(view, device.camera.controller().lights());
    for (const Control& control : controlsOf(device)) state["controls"].append(entryOf(control));
  });
  return state;
}

Json::Value statesOf(Desk& desk) {
  Json::Value all(Json::arrayValue);
  for (const auto& camera : desk.cameras()) all.append(stateOf(*camera));
  return all;
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

// One listener: what it has been told already.
class Events {
 public:
  explicit Events(Desk& desk) : desk_(desk) {}

  // Waits for news, and sends them; false when the listener has gone.
  bool send(DataSink& sink) {
    std::string news = rounds_ == 0 ? introduction() : "";
    if (rounds_ != 0) {
      std::this_thread::sleep_for(40ms);
      seen_ = desk_.awaitChange(seen_, 60ms);
    }
    for (const auto& camera : desk_.cameras()) news += newsOf(*camera);
    if (++rounds_ % 16 == 0) news += ":\n\n";  // finds out whether anybody listens
    return news.empty() || sink.write(news.data(), news.size());
  }

 private:
  std::string introduction() {
    const Json::Value all = statesOf(desk_);
    for (const Json::Value& state : all) states_[state["id"].asString()] = textOf(state);
    return event("cameras", all);
  }

  std::string newsOf(PluggedCamera& camera) {
    std::string news;
    const Json::Value state = stateOf(camera);
    std::string text = textOf(state);
    if (states_[camera.id()] != text) news += event("state", state);
    states_[camera.id()] = std::move(text);
    Json::Value accesses;
    for (const Access& access : camera.accessesAfter(told_[camera.id()])) {
      accesses["entries"].append(entryOf(access));
      told_[camera.id()] = access.number;
    }
    if (accesses.empty()) return news;
    accesses["id"] = camera.id();
    return news + event("accesses", accesses);
  }

  Desk& desk_;
  std::uint64_t seen_ = 0;
  unsigned rounds_ = 0;
  std::map<std::string, std::string> states_;
  std::map<std::string, std::uint64_t> told_;  // the number of the last access
};

// ---- What the page changes

bool change(PluggedCamera& camera, const std::string& key, const Json::Value& value) {
  if (key == "fault") {
    const std::optional<Fault> fault = faultFrom(value.isString() ? value.asString() : "");
    if (fault) camera.setFault(*fault);
    return fault.has_value();
  }
  return value.isNumeric() && camera.with([&](CameraDevice& device) {
    for (const Control& control : controlsOf(device)) {
      if (control.key != key) continue;
      control.turnTo(value.asDouble());
      return true;
    }
    return false;
  });
}

void takeChanges(PluggedCamera& camera, const std::string& text, Response& response) {
  Json::CharReaderBuilder builder;
  Json::CharReaderBuilder::strictMode(&builder.settings_);
  const std::unique_ptr<Json::CharReader> reader(builder.newCharReader());
  Json::Value changes;
  if (!reader->parse(text.data(), text.data() + text.size(), &changes, nullptr) ||
      !changes.isObject()) {
    return refuse(response, wrong, "This is no JSON object.");
  }
  response.status = done;
  for (const std::string& key : changes.getMemberNames()) {
    if (change(camera, key, changes[key])) continue;
    refuse(response, wrong, "The camera does not take this value of " + key + ".");
  }
}

// ---- The routes

// The page comes with the states, so that it is whole at once. No name in them ends its script.
std::string pageOf(Desk& desk) {
  constexpr std::string_view file = pageHtml, none = "[]";
  constexpr std::size_t place = file.find("[]</script>");
  std::string page(file.substr(0, place));
  for (const char character : textOf(statesOf(desk))) {
    character == '<' ? page.append("\\u003c") : page.append(1, character);
  }
  return page.append(file.substr(place + none.size()));
}

void sendPage(Desk& desk, Response& response) {
  response.set_header("Content-Security-Policy",
                      "default-src 'none'; img-src 'self' data:; connect-src 'self'; style-src "
                      "'unsafe-inline'; script-src 'unsafe-inline'; frame-ancestors 'none'");
  response.set_header("Cache-Control", "no-cache");
  response.set_content(pageOf(desk), "text/html; charset=utf-8");
}

void sendEvents(Desk& desk, Response& response) {
  response.set_chunked_content_provider(
      "text/event-stream", [events = std::make_shared<Events>(desk)](std::size_t, DataSink& sink) {
        return events->send(sink);
      });
}

}  // namespace

bool isForPage(const Request& request) {
  return request.target == "/" || request.path.starts_with("/cameras/");
}

void addPageRoutes(httplib::Server& server, Desk& desk) {
  using Action = std::function<void(PluggedCamera&, const Request&, Response&)>;
  const auto onCamera = [&desk](const Action& action) {
    return [&desk, action](const Request& request, Response& response) {
      PluggedCamera* const camera = desk.find(request.matches[1].str());
      if (!isAllowed(request, response)) return;
      if (camera == nullptr) return refuse(response, missing, "There is no such camera.");
      action(*camera, request, response);
    };
  };
  server.Get("/", [&desk](const Request& request, Response& response) {
    if (isAllowed(request, response)) sendPage(desk, response);
  });
  server.Get("/cameras/events", [&desk](const Request& request, Response& response) {
    if (isAllowed(request, response)) sendEvents(desk, response);
  });
  server.Get("/cameras/([^/]+)/stream", onCamera([](auto& camera, const auto&, auto& response) {
               constexpr int leastWidth = 320, mostWidth = 800;
               sendStream(camera, leastWidth, mostWidth, response);
             }));
  server.Post("/cameras/([^/]+)", onCamera([](auto& camera, const auto& request, auto& response) {
                takeChanges(camera, request.body, response);
              }));
}

}  // namespace qvx::simulator
