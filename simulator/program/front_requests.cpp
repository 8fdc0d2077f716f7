#include "simulator/program/front_requests.h"

#include <algorithm>
#include <cstdio>
#include <cstring>
#include <optional>

#include "simulator/program/live_picture.h"

namespace qvx::simulator {

namespace {

using ByteVector = std::vector<std::uint8_t>;

struct Request {
  RequestHead head;
  std::span<const std::uint8_t> bytes;
};

// What bytes begin with.
template <class Value>
Value as(std::span<const std::uint8_t> bytes) {
  Value value;
  std::memcpy(&value, bytes.data(), sizeof value);
  return value;
}

template <class Value>
bool give(const Value& value, ByteVector& reply) {
  reply.resize(sizeof value);
  std::memcpy(reply.data(), &value, sizeof value);
  return true;
}

// What is asked for carries its answer into the reply, which has the size that is wanted. False for
// a refusal.
bool control(CameraDevice& device, const Request& request, ByteVector& reply) {
  constexpr std::uint8_t toHost = 0x80;
  const auto setup = as<UsbSetup>(request.head.key);
  const bool reads = (setup.requestType & toHost) != 0;
  if (!reads) reply.assign(request.bytes.begin(), request.bytes.end());
  const auto moved = device.usb3.transfer(setup, reply);
  reply.resize(reads ? moved.value_or(0) : 0);
  return moved.has_value();
}

bool setProperty(CameraDevice& device, const Request& request, ByteVector& /*reply*/) {
  return device.extensionUnit.set(as<PropertySetId>(request.head.key), request.head.number,
                                  request.bytes);
}

bool getProperty(CameraDevice& device, const Request& request, ByteVector& reply) {
  return device.extensionUnit.get(as<PropertySetId>(request.head.key), request.head.number, reply);
}

bool setFeature(CameraDevice& device, const Request& request, ByteVector& /*reply*/) {
  return device.hid.setFeature(request.bytes);
}

bool getFeature(CameraDevice& device, const Request& request, ByteVector& reply) {
  if (!reply.empty()) reply[0] = static_cast<std::uint8_t>(request.head.number);
  return device.hid.getFeature(reply);
}

const PictureControl* controlOf(const Request& request) {
  return pictureControl(static_cast<std::int32_t>(request.head.number));
}

bool setPicture(CameraDevice& device, const Request& request, ByteVector& /*reply*/) {
  const PictureControl* const control = controlOf(request);
  if (control == nullptr || request.bytes.size() != sizeof(PictureValue)) return false;
  const auto [value, automatic] = as<PictureValue>(request.bytes);
  return device.camera.tap().losesWrites ||
         device.camera.picture().set(*control, {value, automatic != 0});
}

bool getPicture(CameraDevice& device, const Request& request, ByteVector& reply) {
  const PictureControl* const control = controlOf(request);
  if (control == nullptr) return false;
  const auto [value, automatic] = device.camera.picture().get(*control);
  return give(PictureValue{value, automatic}, reply);
}

bool pictureRange(CameraDevice& /*device*/, const Request& request, ByteVector& reply) {
  const PictureControl* const control = controlOf(request);
  return control != nullptr && give(*control, reply);
}

// What is an access of the camera, and how the log calls it.
constexpr struct {
  RequestKind kind;
  const char* name;
  bool (*carry)(CameraDevice&, const Request&, ByteVector&);
} transfers[] = {
    {RequestKind::control, "control", control},
    {RequestKind::setProperty, "set", setProperty},
    {RequestKind::getProperty, "get", getProperty},
    {RequestKind::setFeature, "set feature", setFeature},
    {RequestKind::getFeature, "get feature", getFeature},
    {RequestKind::setPicture, "set picture", setPicture},
    {RequestKind::getPicture, "get picture", getPicture},
    {RequestKind::pictureRange, "picture range", pictureRange},
};

// Without the padding that most transfers end with.
std::string shortHex(std::span<const std::uint8_t> bytes) {
  constexpr std::size_t worthAWord = 4;
  std::size_t size = bytes.size();
  while (size != 0 && bytes[size - 1] == 0) --size;
  const std::size_t zeros = bytes.size() - size;
  if (zeros < worthAWord) return hex(bytes);
  return hex(bytes.first(size)) + " (and " + std::to_string(zeros) + " zeros)";
}

// "control 21 01 0303 0300 2", "set 5A215226/26", "get picture 7".
std::string headInWords(const char* name, const RequestHead& head) {
  char text[64];
  if (head.kind == RequestKind::control) {
    const auto setup = as<UsbSetup>(head.key);
    std::snprintf(text, sizeof text, "%s %02X %02X %04X %04X %u", name, setup.requestType,
                  setup.request, setup.value, setup.index, setup.length);
  } else if (head.kind == RequestKind::setProperty || head.kind == RequestKind::getProperty) {
    std::snprintf(text, sizeof text, "%s %08X/%u", name, as<PropertySetId>(head.key).data1,
                  head.number);
  } else if (head.kind == RequestKind::setFeature) {
    std::snprintf(text, sizeof text, "%s", name);
  } else if (head.kind == RequestKind::getFeature) {
    std::snprintf(text, sizeof text, "%s %02X", name, head.number);
  } else {
    std::snprintf(text, sizeof text, "%s %u", name, head.number);
  }
  return text;
}

template <class Transfer>
Reply carryOut(CameraDevice& device, const Transfer& transfer, const Request& request) {
  std::string happened;
  device.camera.tap().tell = [&happened](const std::string& line) { happened += "  " + line; };
  ByteVector bytes(request.head.wanted);
  Reply reply;
  reply.done = transfer.carry(device, request, bytes);
  device.camera.tap().tell = nullptr;
  reply.text = headInWords(transfer.name, request.head);
  if (reply.done) reply.bytes.assign(bytes.begin(), bytes.end());
  const auto moved = bytes.empty() ? request.bytes : std::span<const std::uint8_t>(bytes);
  reply.text += !reply.done ? ": refused" : moved.empty() ? "" : ": " + shortHex(moved);
  reply.text += happened;
  return reply;
}

// Two pixels become their two lumas and the mean of their colours, in the ranges of BT.601: the
// last numbers round and move the zero.
void appendYuy2(std::string& bytes, const std::uint8_t* pair) {
  const auto luma = [](const std::uint8_t* rgb) {
    return (66 * rgb[0] + 129 * rgb[1] + 25 * rgb[2] + 4224) >> 8;
  };
  const int red = pair[0] + pair[3], green = pair[1] + pair[4], blue = pair[2] + pair[5];
  const int u = (-38 * red - 74 * green + 112 * blue + 65792) >> 9;
  const int v = (112 * red - 94 * green - 18 * blue + 65792) >> 9;
  for (const int part : {luma(pair), u, luma(pair + 3), v}) bytes += static_cast<char>(part);
}

// Video is no access: it would drown the others.
Reply frame(PluggedCamera& camera, const RequestHead& head) {
  Reply reply;
  for (const VideoMode& mode : videoModesFor(camera.spec().productId)) {
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

std::string answerFront(PluggedCamera& camera, std::span<const std::uint8_t> message) {
  Reply reply;
  if (message.size() >= sizeof(RequestHead)) {
    Request request{as<RequestHead>(message), message.subspan(sizeof(RequestHead))};
    if (request.head.kind == RequestKind::frame) reply = frame(camera, request.head);
    request.head.wanted = std::min<std::uint32_t>(request.head.wanted, mostBytes);
    for (const auto& transfer : transfers) {
      if (transfer.kind != request.head.kind) continue;
      reply =
          camera.carry([&](CameraDevice& device) { return carryOut(device, transfer, request); });
    }
  }
  const ReplyHead head{reply.done};
  return std::string(reinterpret_cast<const char*>(&head), sizeof head) + reply.bytes;
}

}  // namespace qvx::simulator
