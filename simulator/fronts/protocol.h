// What the fronts and the simulator say to each other. A camera has a pipe of its own, on which
// whole messages pass: a request is a head and bytes, and so is its reply. When the camera is
// unplugged its pipe is gone. A kernel-mode driver is among the fronts: nothing here needs a heap.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>

#include "simulator/model/property_sets.h"

namespace qvx::simulator {

enum class RequestKind : std::uint32_t {
  control,       // USB control transfer: `key` begins with the setup packet
  setProperty,   // of an extension unit: `key` is the set, `number` the selector
  getProperty,   //
  setFeature,    // HID feature report, its id in byte 0
  getFeature,    // of the id `number`
  setPicture,    // picture property `number`: a PictureValue
  getPicture,    //
  pictureRange,  // the reply is a PictureControl
  frame,         // a picture for video, as YUY2, in the size of the mode `number`
};

using RequestKey = std::array<std::uint8_t, 16>;

struct RequestHead {
  RequestKind kind;
  std::uint32_t number = 0;
  RequestKey key{};
  std::uint32_t wanted = 0;  // bytes of the reply at most, without its head
};
static_assert(sizeof(RequestHead) == 28);

struct ReplyHead {
  std::uint32_t done;  // 0: the camera has refused
};

// Of a property or a feature report, and of the messages that carry them.
constexpr std::size_t mostBytes = 1024;
constexpr std::size_t mostRequestBytes = sizeof(RequestHead) + mostBytes;
constexpr std::size_t mostReplyBytes = sizeof(ReplyHead) + mostBytes;

// Two bytes a pixel: two lumas share their chroma.
constexpr std::uint32_t yuy2Bytes(std::uint32_t width, std::uint32_t height) {
  return 2 * width * height;
}

struct PictureValue {
  std::int32_t value, automatic;
};

// A transfer that takes longer has failed. Real devices are given as long by their drivers.
constexpr std::uint32_t transferLimit_ms = 3000;

// A camera that is plugged in, as the registry keeps it for the fronts. Texts are terminated.
struct CameraRecord {
  std::uint64_t order;  // the time of plugging in: what comes later is listed later
  wchar_t pipe[64];
  char name[128];  // UTF-8
  std::uint16_t vendorId, productId;
  Unit unit;  // not absent: it is a video input
  bool isUsb3, isHid;
  std::uint16_t number;  // among all that are plugged in
  std::uint16_t reportDescriptorSize;
  std::uint8_t reportDescriptor[64];
};

// The value with its record in the registry's key of a HID device.
inline constexpr wchar_t recordValueName[] = L"SimulatedCamera";

}  // namespace qvx::simulator
