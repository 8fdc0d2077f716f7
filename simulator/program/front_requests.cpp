#include "simulator/program/front_requests.h"

#include <algorithm>
#include <cstring>

#include "simulator/desk/live_picture.h"

namespace qvx::simulator {

namespace {

using ByteVector = std::vector<std::uint8_t>;

// Transfers of bytes to or from the camera; each returns false if the camera refuses.
bool control(CameraDevice& device, const RequestHead& head, ByteVector& bytes) {
  const auto moved = device.usb3.transfer(head.setup, bytes);
  bytes.resize(moved.value_or(0));
  return moved.has_value();
}

bool property(CameraDevice& device, const RequestHead& head, ByteVector& bytes) {
  ExtensionUnit& unit = device.extensionUnit;
  return head.sets != 0 ? unit.set(head.set, head.number, bytes)
                        : unit.get(head.set, head.number, bytes);
}

bool feature(CameraDevice& device, const RequestHead& head, ByteVector& bytes) {
  if (head.sets != 0) return device.hid.setFeature(bytes);
  if (!bytes.empty()) bytes[0] = static_cast<std::uint8_t>(head.number);
  return device.hid.getFeature(bytes);
}

bool picture(CameraDevice& device, const RequestHead& head, ByteVector& bytes) {
  const auto* const control = pictureControl(static_cast<std::int32_t>(head.number));
  PictureValue wire;
  if (control == nullptr || bytes.size() != sizeof wire) return false;
  PictureControls& controls = device.camera.picture;
  std::memcpy(&wire, bytes.data(), sizeof wire);
  if (head.sets != 0) {
    return device.camera.tap.losesWrites ||
           controls.set(*control, {wire.value, wire.automatic != 0});
  }
  const auto [value, automatic] = controls.get(*control);
  wire = {value, automatic};
  std::memcpy(bytes.data(), &wire, sizeof wire);
  return true;
}

// The transfers that count as accesses, by RequestKind.
constexpr bool (*transfers[])(CameraDevice&, const RequestHead&, ByteVector&) = {control, property,
                                                                                 feature, picture};

// "control 21 01 0303 0300 2", "set 5A215226/26", "set feature", "get feature 93", "get picture 7".
std::string inWords(const RequestHead& head) {
  const std::string verb = head.sets != 0 ? "set " : "get ";
  switch (head.kind) {
    case RequestKind::control:
      return "control " + inWords(head.setup);
    case RequestKind::property:
      return verb + inWords(PropertyId{head.set, head.number});
    case RequestKind::feature:
      return verb + (head.sets != 0 ? "feature" : "feature " + hex(head.number, 2).substr(2));
    default:
      return verb + "picture " + std::to_string(head.number);
  }
}

// Shortens the padding at the end of most transfers.
std::string shortHex(std::span<const std::uint8_t> bytes) {
  constexpr std::size_t worthAWord = 4;
  std::size_t size = bytes.size();
  while (size != 0 && bytes[size - 1] == 0) --size;
  const std::size_t zeros = bytes.size() - size;
  if (zeros < worthAWord) return hex(bytes);
  return hex(bytes.first(size)) + " (and " + std::to_string(zeros) + " zeros)";
}

Reply carryOut(CameraDevice& device, const RequestHead& head, ByteVector& bytes) {
  std::string happened;
  device.camera.tap.tell = [&happened](const std::string& line) { happened += "  " + line; };
  Reply reply;
  reply.done = transfers[static_cast<std::size_t>(head.kind)](device, head, bytes);
  device.camera.tap.tell = nullptr;
  reply.text = inWords(head);
  reply.text += !reply.done ? ": refused" : bytes.empty() ? "" : ": " + shortHex(bytes);
  reply.text += happened;
  if (reply.done && head.sets == 0) reply.bytes.assign(bytes.begin(), bytes.end());
  return reply;
}

// Converts two pixels to YUY2 with the coefficients and ranges of BT.601; the added constants round
// and set the offset.
void appendYuy2(std::string& bytes, const std::uint8_t* pair) {
  const auto luma = [](const std::uint8_t* rgb) {
    return (66 * rgb[0] + 129 * rgb[1] + 25 * rgb[2] + 4224) >> 8;
  };
  const int red = pair[0] + pair[3], green = pair[1] + pair[4], blue = pair[2] + pair[5];
  const int u = (-38 * red - 74 * green + 112 * blue + 65792) >> 9;
  const int v = (112 * red - 94 * green - 18 * blue + 65792) >> 9;
  for (const int part : {luma(pair), u, luma(pair + 3), v}) bytes += static_cast<char>(part);
}

// Video frames are not counted as accesses: they would drown the others in the log.
Reply frame(PluggedCamera& camera, const RequestHead& head) {
  Reply reply;
  for (const VideoMode& mode : videoModesFor(camera.description().productId)) {
    const std::uint32_t size = yuy2Bytes(mode.width, mode.height);
    if (static_cast<std::uint32_t>(mode.command) != head.number || size > head.wanted) continue;
    const Picture picture = pictureOf(camera, mode.width, mode.height);
    reply.bytes.reserve(size);
    for (std::size_t i = 0; i < picture.rgb.size(); i += 6)
      appendYuy2(reply.bytes, &picture.rgb[i]);
    reply.done = true;
  }
  return reply;
}

}  // namespace

std::string answerFront(PluggedCamera& camera, const Request& request, std::size_t size) {
  const RequestHead& head = request.head;
  Reply reply;
  if (size >= sizeof head && head.kind == RequestKind::frame) reply = frame(camera, head);
  if (size >= sizeof head && static_cast<std::size_t>(head.kind) < std::size(transfers)) {
    ByteVector bytes(request.bytes, request.bytes + (size - sizeof head));
    if (head.sets == 0) bytes.assign(std::min<std::size_t>(head.wanted, maxBytes), 0);
    reply = camera.carry([&](CameraDevice& device) { return carryOut(device, head, bytes); });
  }
  return std::string(1, static_cast<char>(reply.done)) + reply.bytes;
}

}  // namespace qvx::simulator
