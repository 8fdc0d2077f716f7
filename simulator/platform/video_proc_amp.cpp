// Picture properties of the simulated machine's video inputs. Every step is recorded in the
// journal.
#include "platform/system.h"

#include "simulator/platform/world.h"

namespace qvx::platform {

using simulator::CameraConnection;
using simulator::OpenCounts;
using simulator::world;

struct InputList {};
struct CaptureFilter {
  simulator::PictureControls* picture;
  CameraConnection connection{};
};
struct FilterGraph {};
struct CaptureBuilder {};
struct StreamConfig {};
struct VideoProcAmp {
  simulator::PictureControls& controls;
  CameraConnection connection;  // of its filter
};

namespace {

bool step(const char* line) {
  return world().operate("capture: ", line);
}

// A request for a property; driver and platform number them alike. Null if it fails: the camera is
// gone or lacks the property.
const simulator::PictureControl* ask(const VideoProcAmp& amplifier, const char* verb,
                                     PictureProperty property, const std::string& more = "") {
  const auto number = static_cast<std::int32_t>(property);
  return world().operate("capture: ", verb, number, more) && amplifier.connection.isThere()
             ? simulator::pictureControl(number)
             : nullptr;
}

template <class Object>
void releaseNoted(Object* object, const char* name) {
  if (object == nullptr) return;
  world().note("capture: release ", name);
  world().drop<Object>(object);
}

}  // namespace

InputList* openInputList() {
  if (!step("list inputs") || !world().pluggedIn() || world().videoInputs.empty()) return nullptr;
  return world().keep(&OpenCounts::inputLists, InputList{});
}

void release(InputList* list) {
  releaseNoted(list, "list");
}

CaptureFilter* openFilter(InputList& /*list*/,
                          const std::function<bool(const std::wstring& displayName)>& isWanted) {
  for (const auto& input : world().videoInputs) {
    if (!isWanted(input.path)) continue;
    if (!step("open filter") || !world().pluggedIn() || !input.opens) return nullptr;
    return world().keep(&OpenCounts::captureFilters, CaptureFilter{input.picture});
  }
  return nullptr;
}

FilterGraph* createFilterGraph() {
  return step("create graph") ? world().keep(&OpenCounts::filterGraphs, FilterGraph{}) : nullptr;
}

void release(FilterGraph* graph) {
  releaseNoted(graph, "graph");
}

CaptureBuilder* createCaptureBuilder() {
  return step("create builder") ? world().keep(&OpenCounts::captureBuilders, CaptureBuilder{})
                                : nullptr;
}

StreamConfig* findStreamConfig(CaptureBuilder& /*builder*/, CaptureFilter& /*filter*/) {
  return step("find stream config") ? world().keep(&OpenCounts::streamConfigs, StreamConfig{})
                                    : nullptr;
}

void countCapabilities(StreamConfig& /*config*/) {
  step("count capabilities");
}

VideoProcAmp* queryVideoProcAmp(CaptureFilter& filter) {
  if (!step("query amplifier") || filter.picture == nullptr) return nullptr;
  return world().keep(&OpenCounts::videoProcAmps, VideoProcAmp{*filter.picture, filter.connection});
}

void system::setProperty(VideoProcAmp& amplifier, PictureProperty property, std::int32_t value) {
  const auto* const control =
      ask(amplifier, "set ", property, " to " + std::to_string(value) + " manually");
  if (control != nullptr) amplifier.controls.set(*control, {value, false});
}

std::optional<std::int32_t> system::getProperty(VideoProcAmp& amplifier, PictureProperty property) {
  const auto* const control = ask(amplifier, "get ", property);
  if (control == nullptr) return std::nullopt;
  return amplifier.controls.get(*control).value;
}

std::optional<PropertyRange> system::getPropertyRange(VideoProcAmp& amplifier,
                                                      PictureProperty property) {
  const auto* const control = ask(amplifier, "range of ", property);
  if (control == nullptr) return std::nullopt;
  return PropertyRange{control->min, control->max, control->step, control->defaultValue};
}

}  // namespace qvx::platform
