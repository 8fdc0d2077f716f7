// The protocol between fronts and simulator. Each camera has a message pipe: a request consists of
// a head and bytes, and so does its reply. When the camera is unplugged its pipe is closed. One
// front is a kernel-mode driver: nothing here may use a heap.
#pragma once

#include <cstddef>
#include <cstdint>

#include "simulator/model/property_sets.h"

namespace qvx::simulator {

enum class RequestKind : std::uint32_t {
  control,   // USB control transfer with this `setup`
  property,  // of an extension unit: `number` is its selector in `set`
  feature,   // HID feature report of the id `number`, the id in byte 0
  picture,   // picture property `number`: a PictureValue
  frame,     // a picture for video, as YUY2, in the size of the mode `number`
};

struct RequestHead {
  RequestKind kind;
  std::uint32_t sets;  // 1: bytes for the camera follow; 0: the reply brings some
  std::uint32_t number = 0;
  PropertySetId set{};
  UsbSetup setup{};
  std::uint32_t wanted = 0;  // of these bytes at most
};
static_assert(sizeof(RequestHead) == 40);

// Of a property or a feature report.
constexpr std::size_t maxBytes = 1024;

struct Request {
  RequestHead head;
  std::uint8_t bytes[maxBytes];
};

// The head of a reply is one byte, which is 0 if the camera has refused.
constexpr std::uint32_t replyHeadSize = 1;

// Two bytes per pixel: two lumas share their chroma.
constexpr std::uint32_t yuy2Bytes(std::uint32_t width, std::uint32_t height) {
  return 2 * width * height;
}

struct PictureValue {
  std::int32_t value, automatic;
};

// A transfer that takes longer fails, as with the drivers of real devices.
constexpr std::uint32_t transferLimit_ms = 3000;

// A plugged-in camera as stored in the registry for the fronts. Texts are null-terminated.
struct CameraRecord {
  std::uint64_t order;  // the time of plugging in, by which cameras are listed
  wchar_t pipe[64];
  char name[128];  // UTF-8
  std::uint16_t vendorId, productId;
  Unit unit;  // absent: the camera is no video input
  bool isUsb3, isHid;
  std::uint16_t number;  // unique among the plugged-in cameras
  std::uint16_t reportDescriptorSize;
  std::uint8_t reportDescriptor[64];
};

// The registry value of a HID device that holds its record.
inline constexpr wchar_t recordValueName[] = L"SimulatedCamera";

}  // namespace qvx::simulator
