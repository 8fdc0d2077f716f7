// Picture properties of the simulated machine's video inputs. Every step goes into the journal.
#include "platform/video_proc_amp.h"

#include <memory>
#include <vector>

#include "simulator/platform/world.h"

namespace qvx::platform {

struct InputList {};
struct CaptureFilter {
  simulator::VideoInput input;
};
struct FilterGraph {};
struct CaptureBuilder {};
struct StreamConfig {};
struct VideoProcAmp {
  simulator::PictureControls& controls;
};

namespace {

using simulator::world;

// What the library leaves open is kept reachable, as the system keeps it. Each object is counted.
template <class Object>
Object* opened(int& count, Object object) {
  static std::vector<std::unique_ptr<Object>> all;
  ++count;
  all.push_back(std::make_unique<Object>(std::move(object)));
  return all.back().get();
}

bool step(const std::string& line) {
  return world().operate("capture: " + line);
}

}  // namespace

InputList* openInputList() {
  if (!step("list inputs") || world().videoInputs.empty()) return nullptr;
  return opened(world().open.inputLists, InputList{});
}

void release(InputList* list) {
  if (list == nullptr) return;
  world().note("capture: release list");
  --world().open.inputLists;
}

CaptureFilter* openFilter(InputList& /*list*/,
                          const std::function<bool(const std::wstring& displayName)>& isWanted) {
  for (const auto& input : world().videoInputs) {
    if (!isWanted(input.path)) continue;
    if (!step("open filter") || !input.opens) return nullptr;
    return opened(world().open.captureFilters, CaptureFilter{input});
  }
  return nullptr;
}

FilterGraph* createFilterGraph() {
  return step("create graph") ? opened(world().open.filterGraphs, FilterGraph{}) : nullptr;
}

void release(FilterGraph* graph) {
  if (graph == nullptr) return;
  world().note("capture: release graph");
  --world().open.filterGraphs;
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
  return opened(world().open.videoProcAmps, VideoProcAmp{*controls});
}

void setProperty(VideoProcAmp& amplifier, std::int32_t property, std::int32_t value) {
  const auto* const control = simulator::pictureControl(property);
  const bool reached =
      step("set " + std::to_string(property) + " to " + std::to_string(value) + " manually");
  if (reached && control != nullptr) amplifier.controls.set(*control, {value, false});
}

std::optional<std::int32_t> getProperty(VideoProcAmp& amplifier, std::int32_t property) {
  const auto* const control = simulator::pictureControl(property);
  if (!step("get " + std::to_string(property)) || control == nullptr) return std::nullopt;
  return amplifier.controls.get(*control).value;
}

std::optional<PropertyRange> getPropertyRange(VideoProcAmp& /*amplifier*/, std::int32_t property) {
  const auto* const control = simulator::pictureControl(property);
  if (!step("range of " + std::to_string(property)) || control == nullptr) return std::nullopt;
  return PropertyRange{control->least, control->most, control->step, control->standard};
}

}  // namespace qvx::platform
