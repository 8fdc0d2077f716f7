#include "simulator/model/wifi_command.h"

#include <charconv>
#include <string>

#include "simulator/model/text.h"

namespace qvx::simulator {

namespace {

enum I2cId : std::uint32_t {
  i2cAddress = 0x00FF,
  i2cDataBytes = 0x0300,
  i2cDataBytesShift = 8,
  i2cRegisterBytes = 0x0C00,
  i2cRegisterBytesShift = 10,
  i2cWrite = 0x1000,
  i2cAllBits = 0x1FFF,
};

enum GpioId : std::uint32_t {
  gpioMask = 0x00FF,
  gpioPort = 0x0300,
  gpioPortShift = 8,
  gpioWrite = 0x0400,
  gpioAllBits = 0x07FF,
};

// In the one form that printf gives a number: no "+", no "-0", no leading zeros.
bool takeDecimal(std::string_view& text, std::int32_t& number) {
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
  if (error != std::errc{}) return false;
  return take(text, std::to_string(number));
}

bool fail(Violations& violations, std::string_view what, std::uint32_t number) {
  violations.add({"wifi: ", what, hex(number, 2)});
  return false;
}

// A one-byte register of a larger number would be cut by the bus; without a register address the
// number is not looked at.
bool registerFits(std::uint32_t reg, std::uint32_t registerBytes) {
  return registerBytes != 1 || reg <= 0xFF;
}

bool isI2cAccess(std::uint32_t id, std::uint32_t registerBytes, std::uint32_t reg,
                 std::uint32_t data, Violations& violations) {
  const std::uint32_t dataBytes = (id & i2cDataBytes) >> i2cDataBytesShift;
  const std::uint32_t mostData = (id & i2cWrite) != 0 ? 0xFF : 0;
  if ((id & ~i2cAllBits) != 0) return fail(violations, "unknown bits in I2C id ", id);
  if (dataBytes != 1) return fail(violations, "I2C data bytes: ", dataBytes);
  if (registerBytes > 2) return fail(violations, "I2C register bytes: ", registerBytes);
  if (!registerFits(reg, registerBytes)) return fail(violations, "I2C register over a byte: ", reg);
  return data <= mostData || fail(violations, "I2C data that cannot be: ", data);
}

bool isGpioAccess(std::uint32_t id, std::uint32_t value, Violations& violations) {
  const bool isWrite = (id & gpioWrite) != 0;
  if ((id & ~gpioAllBits) != 0) return fail(violations, "unknown bits in GPIO id ", id);
  if (!isWrite && (id & gpioMask) != 0) return fail(violations, "GPIO read with a mask: ", id);
  return value <= (isWrite ? 0xFF : 0) || fail(violations, "GPIO levels that cannot be: ", value);
}

}  // namespace

std::optional<WifiCommand> wifiCommandFrom(std::string_view query) {
  WifiCommand command{};
  // "dest=0plugin=0" stands without an "&": this server never split it.
  const bool matches = take(query, "?action=commandcontrol&dest=0plugin=0&id=") &&
                       takeDecimal(query, command.id) && take(query, "&group=") &&
                       takeDecimal(query, command.group) && take(query, "&value=") &&
                       takeDecimal(query, command.value) && query.empty();
  return matches ? std::optional(command) : std::nullopt;
}

std::optional<I2cAccess> i2cAccessFrom(const WifiCommand& command, Violations& violations) {
  const auto id = static_cast<std::uint32_t>(command.id);
  const auto value = static_cast<std::uint32_t>(command.value);
  const std::uint32_t reg = value >> 16, data = value & 0xFFFF;
  const std::uint32_t length = (id & i2cRegisterBytes) >> i2cRegisterBytesShift;
  if (!isI2cAccess(id, length, reg, data, violations)) return std::nullopt;
  const auto low = static_cast<std::uint8_t>(reg), high = static_cast<std::uint8_t>(reg >> 8);
  I2cAccess access{};
  access.isWrite = (id & i2cWrite) != 0;
  access.address = static_cast<std::uint8_t>(id & i2cAddress);
  access.length = static_cast<std::uint8_t>(length);
  if (length == 1) access.bytes = {low};
  if (length == 2) access.bytes = {high, low};
  access.data = static_cast<std::uint8_t>(data);
  return access;
}

std::optional<GpioAccess> gpioAccessFrom(const WifiCommand& command, Violations& violations) {
  const auto id = static_cast<std::uint32_t>(command.id);
  const auto value = static_cast<std::uint32_t>(command.value);
  if (!isGpioAccess(id, value, violations)) return std::nullopt;
  return GpioAccess{(id & gpioWrite) != 0,
                    static_cast<std::uint8_t>((id & gpioPort) >> gpioPortShift),
                    static_cast<std::uint8_t>(id & gpioMask), static_cast<std::uint8_t>(value)};
}

}  // namespace qvx::simulator
