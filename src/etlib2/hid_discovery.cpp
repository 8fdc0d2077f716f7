#include "etlib2/hid_discovery.h"

#include <algorithm>

#include "etlib2/hid_bridge.h"
#include "platform/hid.h"

namespace qvx {

namespace {

constexpr std::size_t mostBridges = 24;
constexpr std::size_t mostFeatures = 3;

// Vendor and product ids play no part: many makers' cameras carry the same bridge.
bool isBridge(const platform::HidFeatures& features) {
  if (features.dataCount < 1 || features.dataCount > mostFeatures) return false;
  const auto& ids = features.valueReportIds;
  const auto looked = std::min(features.dataCount, ids.size());
  const auto end = ids.begin() + static_cast<std::ptrdiff_t>(looked);
  return std::find(ids.begin(), end, HidBridge::commandHeader) != end &&
         std::find(ids.begin(), end, HidBridge::dataBlock) != end;
}

}  // namespace

std::vector<std::unique_ptr<Bridge>> findHidBridges() {
  std::vector<std::unique_ptr<Bridge>> bridges;
  const auto paths = platform::listHidInterfaces();
  if (!paths) return bridges;
  for (const std::string& path : *paths) {
    const auto features = platform::describeHidFeatures(path);
    if (!features || !isBridge(*features)) continue;
    bridges.push_back(std::make_unique<HidBridge>(platform::openHid(path)));
    if (bridges.size() == mostBridges) break;
  }
  return bridges;
}

}  // namespace qvx
