// A camera as a person writes it: "usb:0970,zoom=1:20/10s,button=2s".
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "simulator/model/hid_function.h"
#include "simulator/model/fault.h"
#include "simulator/model/property_sets.h"
#include "simulator/model/zoom_ring.h"

namespace qvx::simulator {

// How a camera is reached.
enum class Transport : std::uint8_t { wifi, usb, hid, usb3 };

struct CameraDescription {
  Transport transport = Transport::wifi;
  std::uint16_t vendorId = 0x3C7E, productId = 0;
  std::string name = {};
  Unit unit = Unit::plain;
  HidReports reports = HidReports::bridge;
  BridgeSetup setup = {};
  std::optional<ZoomMotion> zoom = {};
  std::uint32_t buttonPeriod_ms = 0;
  Fault fault = {};
  std::uint16_t port = 8080;  // of a Wi-Fi camera; 0 takes any free one
};

// Nothing, and what is wrong, when the text is no camera.
std::optional<CameraDescription> cameraDescriptionFrom(std::string_view text, std::string& problem);

// "wifi-0998": begins the camera's id.
std::string shortNameOf(const CameraDescription& camera);

// What the text may hold, for a program's help.
std::string cameraDescriptionHelp();

}  // namespace qvx::simulator
