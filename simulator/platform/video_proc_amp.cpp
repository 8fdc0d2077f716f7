// Picture properties of the simulated machine's video inputs. Every step goes into the journal.
#include "platform/system.h"

#include <memory>
#include <vector>

#include "simulator/platform/world.h"

namespace qvx::platform {

struct InputList {};
struct CaptureFilter {
  simulator::VideoInput input;
  unsigned connection;  // of the cameras, when it was opened
};
struct FilterGraph {};
struct CaptureBuilder {};
struct StreamConfig {};
struct VideoProcAmp {
  simulator::PictureControls& controls;
  unsigned connection;  // its filter's
};

namespace {

using simulator::world;

template <class Object>
Object* opened(int& count, Object object) {
  ++count;
  return world().keep(std::move(object));
}

template <class Object>
void released(int& count, Object* object) {
  --count;
  world().drop(object);
}

bool step(const char* line) {
  return world().operate([line] { return std::string("capture: ") + line; });
}

// What the simulated driver calls it: it numbers the properties as the platform does.
std::int32_t numberOf(PictureProperty property) {
  return static_cast<std::int32_t>(property);
}

bool step(const char* verb, PictureProperty property, const std::string& more = "") {
  return world().operate(
      [&] { return std::string("capture: ") + verb + std::to_string(numberOf(property)) + more; });
}

// False while the camera is gone, and for what was opened before it went.
bool isThere(const VideoProcAmp& amplifier) {
  return amplifier.connection == world().connection();
}

}  // namespace

InputList* openInputList() {
  if (!step("list inputs") || !world().pluggedIn() || world().videoInputs.empty()) return nullptr;
  return opened(world().open.inputLists, InputList{});
}

void release(InputList* list) {
  if (list == nullptr) return;
  world().note([] { return "capture: release list"; });
  released(world().open.inputLists, list);
}

CaptureFilter* openFilter(InputList& /*list*/,
                          const std::function<bool(const std::wstring& displayName)>& isWanted) {
  for (const auto& input : world().videoInputs) {
    if (!isWanted(input.path)) continue;
    if (!step("open filter") || !world().pluggedIn() || !input.opens) return nullptr;
    return opened(world().open.captureFilters, CaptureFilter{input, world().connection()});
  }
  return nullptr;
}

FilterGraph* createFilterGraph() {
  return step("create graph") ? opened(world().open.filterGraphs, FilterGraph{}) : nullptr;
}

void release(FilterGraph* graph) {
  if (graph == nullptr) return;
  world().note([] { return "capture: release graph"; });
  released(world().open.filterGraphs, graph);
}

CaptureBuilder* createCaptureBuilder() {
  return step("create builder") ? opened(world().open.captureBuilders, CaptureBuilder{}) : nullptr;
}

StreamConfig* findStreamConfig(CaptureBuilder& /*builder*/, CaptureFilter& /*filter*/) {
  return step("find stream config") ? opened(world().open.streamConfigs, StreamConfig{}) : nullptr;
}

void countCapabilities(StreamConfig& /*config*/) {
  step("count capabilities");
}

VideoProcAmp* queryVideoProcAmp(CaptureFilter& filter) {
  simulator::PictureControls* const controls = filter.input.picture;
  if (!step("query amplifier") || controls == nullptr) return nullptr;
  return opened(world().open.videoProcAmps, VideoProcAmp{*controls, filter.connection});
}

void system::setProperty(VideoProcAmp& amplifier, PictureProperty property, std::int32_t value) {
  const auto* const control = simulator::pictureControl(numberOf(property));
  const bool reached =
      step("set ", property, " to " + std::to_string(value) + " manually") && isThere(amplifier);
  if (reached && control != nullptr) amplifier.controls.set(*control, {value, false});
}

std::optional<std::int32_t> system::getProperty(VideoProcAmp& amplifier, PictureProperty property) {
  const auto* const control = simulator::pictureControl(numberOf(property));
  if (!step("get ", property) || !isThere(amplifier) || control == nullptr) return std::nullopt;
  return amplifier.controls.get(*control).value;
}

std::optional<PropertyRange> system::getPropertyRange(VideoProcAmp& amplifier,
                                                      PictureProperty property) {
  const auto* const control = simulator::pictureControl(numberOf(property));
  const bool answers = step("range of ", property) && isThere(amplifier);
  if (!answers || control == nullptr) return std::nullopt;
  return PropertyRange{control->least, control->most, control->step, control->standard};
}

}  // namespace qvx::platform
