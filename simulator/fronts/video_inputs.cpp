#include "simulator/fronts/video_inputs.h"

#include <algorithm>

#include "simulator/fronts/protocol.h"
#include "simulator/fronts/registry_key.h"

namespace qvx::simulator {

std::vector<VideoInput> registeredInputs() {
  std::vector<VideoInput> inputs;
  for (const std::wstring& name : RegistryKey::open(videoInputs).children()) {
    auto input = registeredInput(name);
    if (input) inputs.push_back(std::move(*input));
  }
  std::sort(inputs.begin(), inputs.end(),
            [](const VideoInput& a, const VideoInput& b) { return a.order < b.order; });
  return inputs;
}

std::optional<VideoInput> registeredInput(const std::wstring& instance) {
  const RegistryKey key = RegistryKey::open(videoInputs + instance);
  const std::optional<std::wstring> pipe = key.text(pipeValueName);
  if (!pipe) return std::nullopt;
  return VideoInput{instance, key.text(friendlyNameValue).value_or(L""), *pipe,
                    key.number(orderValueName)};
}

std::wstring devicePathOf(const VideoInput& input) {
  return L"\\\\?\\" + input.instance + L"\\global";
}

}  // namespace qvx::simulator
