#include "simulator/model/wifi_server.h"

#include <bit>
#include <charconv>
#include <cstdio>

#include "simulator/model/words.h"

namespace qvx::simulator {

namespace {

constexpr int refused = -1;  // the firmware's answer when it or the bus refuses

constexpr int ok = 200, missing = 404, unavailable = 503;

// The bits of a GPIO command's id, from the lowest. The command's value holds the levels.
struct GpioId {
  std::uint32_t mask : 8, port : 2, isWrite : 1, unknown : 21;
};

// The bits of an I2C command's id, from the lowest. The command's value holds the register above 16
// bits of data.
struct I2cId {
  std::uint32_t address : 8, dataBytes : 2, registerBytes : 2, isWrite : 1, unknown : 19;
};

std::string hexOf(std::int32_t number) {
  return hex(static_cast<std::uint32_t>(number), 2);
}

std::string sizeOf(const VideoMode& mode) {
  return std::to_string(mode.width) + " x " + std::to_string(mode.height);
}

WifiAnswer result(int value, std::string description) {
  return {ok, "text/plain", "res:" + std::to_string(value), std::move(description)};
}

// Only as printf writes a number: no "+", no "-0", no leading zeros.
bool takeDecimal(std::string_view& text, std::int32_t& number) {
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
  return error == std::errc{} && take(text, std::to_string(number));
}

}  // namespace

// Parses the whole query, from its "?"; nothing if any character differs. "dest=0plugin=0" lacks an
// "&" because this server never splits it.
std::optional<WifiServer::Command> WifiServer::commandFrom(std::string_view query) {
  Command command{};
  const bool matches = take(query, "?action=commandcontrol&dest=0plugin=0&id=") &&
                       takeDecimal(query, command.id) && take(query, "&group=") &&
                       takeDecimal(query, command.group) && take(query, "&value=") &&
                       takeDecimal(query, command.value) && query.empty();
  return matches ? std::optional(command) : std::nullopt;
}

WifiAnswer WifiServer::get(std::string_view target) {
  // The simulator serves its own page here.
  if (target == "/")
    return {ok, "text/html", "<!DOCTYPE html><title>Camera</title>\n", "home page"};
  if (target == "/usbdevlist.json") return deviceList();
  if (target == "/input_0_control.json") return controls();
  if (target == "/?action=snapshot") return snapshot();
  const std::string unknown = "unknown request " + std::string(target);
  const auto command = take(target, "/") ? commandFrom(target) : std::nullopt;
  if (!command) {
    camera_.violations.push_back("wifi: " + unknown);
    return {missing, "text/plain", "404: not found\n", unknown};
  }
  static const std::map<std::int32_t, WifiAnswer (WifiServer::*)(const Command&)> groups = {
      {1, &WifiServer::picture},
      {2, &WifiServer::videoMode},
      {4, &WifiServer::gpio},
      {5, &WifiServer::i2c}};
  const auto group = groups.find(command->group);
  if (group != groups.end()) return (this->*group->second)(*command);
  return refuse("unknown group " + hexOf(command->group));
}

// For requests that no client familiar with the firmware would send.
WifiAnswer WifiServer::refuse(const std::string& complaint) {
  camera_.violations.push_back("wifi: " + complaint);
  return result(refused, complaint);
}

// Clients do not parse this JSON: they take the four digits that begin 25 characters after the
// start of "0x3c7e", so the length of the text between must not change.
WifiAnswer WifiServer::deviceList() const {
  const std::string id = hex(camera_.productId(), 4);
  return {ok, "application/json",
          R"([{"idVendor": "0x3c7e", "idProduct": ")" + id +
              R"(", "name": "Simulated camera"}])"
              "\n",
          "product id -> " + id};
}

// Every number in this JSON is a string.
WifiAnswer WifiServer::controls() const {
  std::string entries;
  for (const auto& [control, name, wifiId] : wifiPictureRows) {
    char text[256];
    std::snprintf(text, sizeof text,
                  R"({"name": "%s", "id": "%d", "type": "1", "min": "%d", "max": "%d", )"
                  R"("step": "%d", "default": "%d", "value": "%d", "dest": "0", "flags": "0", )"
                  R"("group": "1"})",
                  name, wifiId, control.min, control.max, control.step, control.defaultValue,
                  camera_.picture.get(control).value);
    entries += (entries.empty() ? "\n" : ",\n") + std::string(text);
  }
  return {ok, "application/json", "{\"controls\": [" + entries + "\n]}\n", "picture controls"};
}

WifiAnswer WifiServer::snapshot() const {
  if (!still_) return {unavailable, "text/plain", "503: no picture here\n", "still: none here"};
  std::string file = still_(camera_);
  const std::string description = "still of " + sizeOf(camera_.video.mode()) + " pixels, " +
                                  std::to_string(file.size()) + " bytes";
  return {ok, "image/jpeg", std::move(file), description};
}

// A value beyond the limits is clamped.
WifiAnswer WifiServer::picture(const Command& command) {
  for (const auto& [control, name, wifiId] : wifiPictureRows) {
    if (wifiId != command.id) continue;
    const std::int32_t value = std::clamp(command.value, control.min, control.max);
    if (!camera_.tap.losesWrites) camera_.picture.set(control, {value, false});
    return result(0, std::string(name) + " <- " + std::to_string(value));
  }
  return refuse("unknown picture control " + hex(static_cast<std::uint32_t>(command.id), 6));
}

WifiAnswer WifiServer::videoMode(const Command& command) {
  VideoOutput& video = camera_.video;
  if (command.id != 0 || (!camera_.tap.losesWrites && !video.choose(command.value))) {
    return refuse("unknown video mode " + hexOf(command.value));
  }
  return result(0, "video mode <- " + sizeOf(video.mode()));
}

// Levels are a signed byte: a port whose highest pin is set reads as a negative number.
WifiAnswer WifiServer::gpio(const Command& command) {
  const auto id = std::bit_cast<GpioId>(command.id);
  const std::uint8_t mask = id.mask, port = id.port;
  if (id.unknown != 0) return refuse("unknown bits in GPIO id " + hexOf(command.id));
  if (!id.isWrite && mask != 0) return refuse("GPIO read with a mask: " + hexOf(command.id));
  if (command.value < 0 || command.value > (id.isWrite ? 0xFF : 0)) {
    return refuse("GPIO levels that cannot be: " + hexOf(command.value));
  }

  const std::string pins = "GPIO port " + std::to_string(port);
  if (id.isWrite) {
    const auto levels = static_cast<std::uint8_t>(command.value);
    const std::string what =
        "write " + pins + " mask " + hex(mask, 2) + " levels " + hex(levels, 2);
    const bool done = camera_.tap.losesWrites || camera_.gpio.write(port, mask, levels);
    return done ? result(0, what) : result(refused, what + ": refused");
  }
  const auto levels = camera_.gpio.read(port);
  if (!levels) return result(refused, "read  " + pins + ": no such port");
  return result(static_cast<std::int8_t>(*levels),
                "read  " + pins + " -> " + hex(*levels, 2) +
                    (port == buttonPort ? "  touch button" : "  lights"));
}

WifiAnswer WifiServer::i2c(const Command& command) {
  const auto id = std::bit_cast<I2cId>(command.id);
  const auto value = static_cast<std::uint32_t>(command.value);
  const std::uint32_t reg = value >> 16, data = value & 0xFFFF;
  const std::uint8_t address = id.address;
  if (id.unknown != 0) return refuse("unknown bits in I2C id " + hexOf(command.id));
  if (id.dataBytes != 1) return refuse("I2C data bytes: " + hex(id.dataBytes, 2));
  if (id.registerBytes > 2) return refuse("I2C register bytes: " + hex(id.registerBytes, 2));
  // The bus would truncate a longer number; without a register address it is ignored.
  if (id.registerBytes == 1 && reg > 0xFF)
    return refuse("I2C register over a byte: " + hex(reg, 2));
  if (data > (id.isWrite ? 0xFF : 0)) return refuse("I2C data that cannot be: " + hex(data, 2));
  const auto place = camera_.placeAt(address);
  if (!place) return refuse("nothing on the I2C bus at " + hex(address, 2));

  const std::uint8_t bytes[] = {static_cast<std::uint8_t>(reg >> 8),
                                static_cast<std::uint8_t>(reg)};
  const Bytes subAddress = Bytes(bytes).last(id.registerBytes);
  auto byte = static_cast<std::uint8_t>(data);
  const bool done = id.isWrite ? camera_.write(*place, subAddress, {&byte, 1})
                               : camera_.read(*place, subAddress, {&byte, 1});
  std::string words = inWords(id.isWrite, address, subAddress, {&byte, 1}, done);
  if (!done) return result(refused, std::move(words));
  return result(id.isWrite ? 0 : byte, std::move(words));
}

}  // namespace qvx::simulator
