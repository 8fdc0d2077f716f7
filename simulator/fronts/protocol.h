// What the fronts and the simulator say to each other. A camera has a pipe of its own, on which
// whole messages pass: a request is a head and bytes, and so is its reply. When the camera is
// unplugged its pipe is gone. A kernel-mode driver is among the fronts: nothing here needs a heap.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>

namespace qvx::simulator {

enum class RequestKind : std::uint32_t {
  describe,      // the reply is a CameraDescription
  control,       // USB control transfer: `key` begins with the setup packet
  setProperty,   // of an extension unit: `key` is the set, `number` the selector
  getProperty,   //
  setFeature,    // HID feature report, its id in byte 0
  getFeature,    // of the id `number`
  setPicture,    // picture property `number`: a PictureValue
  getPicture,    //
  pictureRange,  // the reply is a PictureRange
  frame,         // a picture for video, as YUY2, in the size of the mode `number`
};

struct RequestHead {
  RequestKind kind;
  std::uint32_t number;
  std::array<std::uint8_t, 16> key;
  std::uint32_t wanted;  // bytes of the reply at most, without its head
};
static_assert(sizeof(RequestHead) == 28);

struct ReplyHead {
  std::uint32_t done;  // 0: the camera has refused
};

// Of a property or a feature report, and of the messages that carry them.
constexpr std::size_t mostBytes = 1024;
constexpr std::size_t mostRequestBytes = sizeof(RequestHead) + mostBytes;
constexpr std::size_t mostReplyBytes = sizeof(ReplyHead) + mostBytes;

struct CameraDescription {
  std::uint16_t vendorId, productId;
  std::uint8_t unit;  // as in Unit
  std::uint8_t reserved;
  std::uint16_t reportDescriptorSize;
  std::uint8_t reportDescriptor[64];
};
static_assert(sizeof(CameraDescription) == 72);

// Two bytes a pixel: two lumas share their chroma.
constexpr std::uint32_t yuy2Bytes(std::uint32_t width, std::uint32_t height) {
  return 2 * width * height;
}

struct PictureValue {
  std::int32_t value, automatic;
};
struct PictureRange {
  std::int32_t least, most, step, standard, hasAutomatic;
};

// A transfer that takes longer has failed. Real devices are given as long by their drivers.
constexpr std::uint32_t transferLimit_ms = 3000;

// Where the record of a plugged-in camera names its pipe.
inline constexpr wchar_t pipeValueName[] = L"SimulatorPipe";

// The USB 3 devices of all runs, below the machine's part of the registry.
inline constexpr wchar_t usb3Devices[] = L"Software\\qvx-simulator\\usb3";

inline constexpr wchar_t hidServiceName[] = L"qvx-hid-bridge";

}  // namespace qvx::simulator
