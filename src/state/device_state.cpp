#include "state/device_state.h"

#include <cstdlib>

namespace qvx {

std::string* entryAt(DeviceTable& table, int index) {
  const auto position = static_cast<std::size_t>(index);
  return index >= 0 && position < table.size() ? &table[position] : nullptr;
}

std::string entryOf(DeviceTable& table, int index) {
  const std::string* const entry = entryAt(table, index);
  return entry == nullptr ? std::string() : *entry;
}

int productIdIn(const std::string& devicePath) {
  constexpr char marker[] = "pid_";
  constexpr std::size_t markerLength = sizeof marker - 1;
  const std::size_t found = devicePath.find(marker);
  if (found == std::string::npos) return 0;
  const std::string digits = devicePath.substr(found + markerLength, 4);
  return static_cast<int>(std::strtol(digits.c_str(), nullptr, 16));
}

int productIdOf(int deviceIndex) {
  return productIdIn(entryOf(strOrvaDevice, deviceIndex));
}

}  // namespace qvx
