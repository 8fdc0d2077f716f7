// A camera as described on the command line: "usb:0970,zoom=1:20/10s,button=2s".
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

// How the camera is connected.
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
  std::uint16_t port = 8080;  // of a Wi-Fi camera; 0: any free port
};

// Returns nothing and sets `problem` if the text does not describe a camera.
std::optional<CameraDescription> cameraDescriptionFrom(std::string_view text, std::string& problem);

// The start of the camera's id: "wifi-0998".
std::string shortNameOf(const CameraDescription& camera);

// The syntax of descriptions, for a program's help text.
std::string cameraDescriptionHelp();

}  // namespace qvx::simulator
