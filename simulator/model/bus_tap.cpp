#include "simulator/model/bus_tap.h"

#include "simulator/model/controller.h"
#include "simulator/model/register_names.h"

namespace qvx::simulator {

std::string inWords(bool isWrite, std::uint8_t address, std::span<const std::uint8_t> subAddress,
                    std::span<const std::uint8_t> data, bool acknowledged) {
  const bool isController = address == controllerAddress;
  std::string line = isWrite ? "write " : "read  ";
  line += isController ? "controller" : "I2C ";
  if (!isController) line += hex(address, 2);
  std::uint32_t reg = 0;
  for (const std::uint8_t byte : subAddress) reg = reg << 8 | byte;
  if (!subAddress.empty()) (line += ' ') += hex(reg, 2 * static_cast<int>(subAddress.size()));
  if (!acknowledged) return line + ": no answer";
  line += isWrite ? " <-" : " ->";
  for (const std::uint8_t byte : data) (line += ' ') += hex(byte, 2);
  if (isController && subAddress.size() == 1 && data.size() == 1) {
    line += "  ";
    line += meaningOf(subAddress[0], data[0]);
  }
  return line;
}

}  // namespace qvx::simulator
