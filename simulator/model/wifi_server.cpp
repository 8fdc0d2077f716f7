#include "simulator/model/wifi_server.h"

#include <algorithm>

#include "simulator/model/wifi_controls.h"

namespace qvx::simulator {

namespace {

constexpr int ok = 200, missing = 404, unavailable = 503;

std::string text(std::initializer_list<std::string_view> parts) {
  std::string whole;
  for (const std::string_view part : parts) whole += part;
  return whole;
}

WifiAnswer result(int value, std::string description) {
  return {ok, "text/plain", "res:" + std::to_string(value), std::move(description)};
}

// What the firmware says when the bus or it itself refuses.
WifiAnswer refused(std::string description) {
  return result(-1, std::move(description));
}

std::string describe(const GpioAccess& access) {
  const std::string number = std::to_string(access.port);
  if (!access.isWrite) return text({"read  GPIO port ", number});
  return text({"write GPIO port ", number, " mask ", hex(access.mask, 2), " levels ",
               hex(access.levels, 2)});
}

}  // namespace

WifiAnswer WifiServer::get(std::string_view target) {
  // The simulator puts its own page here.
  if (target == "/")
    return {ok, "text/html", "<!DOCTYPE html><title>Camera</title>\n", "home page"};
  if (target == "/usbdevlist.json") return deviceList();
  if (target == "/input_0_control.json") return controls();
  if (target == "/?action=snapshot") return snapshot();
  if (target.starts_with("/")) {
    const auto parsed = wifiCommandFrom(target.substr(1));
    if (parsed) return command(*parsed);
  }
  return notFound(target);
}

// Clients do not parse this: they take the four digits that begin 25 characters after the start of
// the vendor id's "0x3c7e". Nothing between the two may change its length.
WifiAnswer WifiServer::deviceList() const {
  const std::string id = text({hex(camera_.productId(), 4)});
  return {ok, "application/json",
          R"([{"idVendor": "0x3c7e", "idProduct": ")" + id +
              R"(", "name": "Simulated camera"}])"
              "\n",
          "product id -> " + id};
}

WifiAnswer WifiServer::controls() const {
  return {ok, "application/json", controlDocument(camera_.picture()), "picture controls"};
}

WifiAnswer WifiServer::snapshot() const {
  if (!still_) return {unavailable, "text/plain", "503: no picture here\n", "still: none here"};
  const VideoMode& mode = camera_.video().mode();
  std::string file = still_(camera_);
  std::string description = "still of " + std::to_string(mode.width) + " x " +
                            std::to_string(mode.height) + " pixels, " +
                            std::to_string(file.size()) + " bytes";
  return {ok, "image/jpeg", std::move(file), std::move(description)};
}

WifiAnswer WifiServer::notFound(std::string_view target) {
  camera_.violations().add({"wifi: unknown request ", target});
  return {missing, "text/plain", "404: not found\n", text({"unknown request ", target})};
}

WifiAnswer WifiServer::command(const WifiCommand& command) {
  switch (static_cast<WifiGroup>(command.group)) {
    case WifiGroup::picture:
      return picture(command);
    case WifiGroup::videoMode:
      return videoMode(command);
    case WifiGroup::gpio: {
      const auto access = gpioAccessFrom(command, camera_.violations());
      return access ? gpio(*access) : refused("GPIO command that cannot be");
    }
    case WifiGroup::i2c: {
      const auto access = i2cAccessFrom(command, camera_.violations());
      return access ? i2c(*access) : refused("I2C command that cannot be");
    }
  }
  camera_.violations().add(
      {"wifi: unknown group ", hex(static_cast<std::uint32_t>(command.group), 2)});
  return refused("command of an unknown group");
}

WifiAnswer WifiServer::i2c(const I2cAccess& access) {
  I2cDevice* const device = camera_.deviceAt(access.address);
  if (device == nullptr) {
    camera_.violations().add({"wifi: nothing on the I2C bus at ", hex(access.address, 2)});
    return refused(inWords(access.isWrite, access.address, access.subAddress(), {}, false));
  }
  std::uint8_t data = access.data;
  const bool acknowledged = access.isWrite ? device->write(access.subAddress(), {&data, 1})
                                           : device->read(access.subAddress(), {&data, 1});
  std::string words =
      inWords(access.isWrite, access.address, access.subAddress(), {&data, 1}, acknowledged);
  if (!acknowledged) return refused(std::move(words));
  return result(access.isWrite ? 0 : data, std::move(words));
}

// Levels travel as a signed byte: a port whose highest pin is set reads as a negative number.
WifiAnswer WifiServer::gpio(const GpioAccess& access) {
  if (access.isWrite) {
    if (!losesWrites() && !camera_.gpio().write(access.port, access.mask, access.levels)) {
      return refused(describe(access) + ": refused");
    }
    return result(0, describe(access));
  }
  const auto levels = camera_.gpio().read(access.port);
  if (!levels) return refused(describe(access) + ": no such port");
  return result(static_cast<std::int8_t>(*levels),
                text({describe(access), " -> ", hex(*levels, 2),
                      access.port == buttonPort ? "  touch button" : "  lights"}));
}

// A value beyond the limits becomes the nearest one that there is.
WifiAnswer WifiServer::picture(const WifiCommand& command) {
  const WifiControl* const known = wifiControl(command.id);
  if (known == nullptr) {
    camera_.violations().add(
        {"wifi: unknown picture control ", hex(static_cast<std::uint32_t>(command.id), 6)});
    return refused("picture control that is not there");
  }
  const PictureControl& control = *known->control;
  const std::int32_t value = std::clamp(command.value, control.least, control.most);
  if (!losesWrites()) camera_.picture().set(control, {value, false});
  return result(0, text({known->name, " <- ", std::to_string(value)}));
}

WifiAnswer WifiServer::videoMode(const WifiCommand& command) {
  if (command.id != 0 || (!losesWrites() && !camera_.video().choose(command.value))) {
    camera_.violations().add(
        {"wifi: unknown video mode ", hex(static_cast<std::uint32_t>(command.value), 2)});
    return refused("video mode that is not there");
  }
  const VideoMode& mode = camera_.video().mode();
  return result(
      0, "video mode <- " + std::to_string(mode.width) + " x " + std::to_string(mode.height));
}

}  // namespace qvx::simulator
