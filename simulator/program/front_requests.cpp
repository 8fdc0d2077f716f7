#include "simulator/program/front_requests.h"

#include <algorithm>
#include <cstdio>
#include <cstring>
#include <optional>

namespace qvx::simulator {

namespace {

using Bytes = std::vector<std::uint8_t>;

struct Request {
  RequestHead head;
  std::span<const std::uint8_t> bytes;
};

// The bytes of the reply; nothing for a refusal.
using Answer = std::optional<Bytes>;

// What bytes begin with.
template <class Value>
Value as(std::span<const std::uint8_t> bytes) {
  Value value;
  std::memcpy(&value, bytes.data(), sizeof value);
  return value;
}

PropertySetId setOf(const RequestHead& head) {
  return as<PropertySetId>(head.key);
}

// The same bytes for as many as were filled.
Answer filled(bool done, Bytes bytes) {
  return done ? Answer(std::move(bytes)) : std::nullopt;
}

template <class Value>
Answer answerOf(const Value& value) {
  Bytes bytes(sizeof value);
  std::memcpy(bytes.data(), &value, sizeof value);
  return bytes;
}

Answer control(CameraDevice& device, const Request& request) {
  constexpr std::uint8_t toHost = 0x80;
  const auto setup = as<UsbSetup>(request.head.key);
  const bool reads = (setup.requestType & toHost) != 0;
  Bytes bytes(request.bytes.begin(), request.bytes.end());
  if (reads) bytes.resize(request.head.wanted);
  const auto moved = device.usb3.transfer(setup, bytes);
  if (!moved) return std::nullopt;
  bytes.resize(reads ? *moved : 0);
  return bytes;
}

Answer setProperty(CameraDevice& device, const Request& request) {
  return filled(device.extensionUnit.set(setOf(request.head), request.head.number, request.bytes),
                {});
}

Answer getProperty(CameraDevice& device, const Request& request) {
  Bytes bytes(request.head.wanted);
  const bool done = device.extensionUnit.get(setOf(request.head), request.head.number, bytes);
  return filled(done, std::move(bytes));
}

Answer setFeature(CameraDevice& device, const Request& request) {
  return filled(device.hid.setFeature(request.bytes), {});
}

Answer getFeature(CameraDevice& device, const Request& request) {
  Bytes bytes(request.head.wanted);
  if (!bytes.empty()) bytes[0] = static_cast<std::uint8_t>(request.head.number);
  const bool done = device.hid.getFeature(bytes);
  return filled(done, std::move(bytes));
}

const PictureControl* controlOf(const Request& request) {
  return pictureControl(static_cast<std::int32_t>(request.head.number));
}

Answer setPicture(CameraDevice& device, const Request& request) {
  const PictureControl* const control = controlOf(request);
  if (control == nullptr || request.bytes.size() != sizeof(PictureValue)) return std::nullopt;
  const auto [value, automatic] = as<PictureValue>(request.bytes);
  const bool lost = device.camera.tap().losesWrites;
  return filled(lost || device.camera.picture().set(*control, {value, automatic != 0}), {});
}

Answer getPicture(CameraDevice& device, const Request& request) {
  const PictureControl* const control = controlOf(request);
  if (control == nullptr) return std::nullopt;
  const auto [value, automatic] = device.camera.picture().get(*control);
  return answerOf(PictureValue{value, automatic});
}

Answer pictureRange(CameraDevice& /*device*/, const Request& request) {
  const PictureControl* const control = controlOf(request);
  if (control == nullptr) return std::nullopt;
  return answerOf(PictureRange{control->least, control->most, control->step, control->standard,
                               control->hasAutomatic});
}

// What is an access of the camera, and how the log calls it.
constexpr struct {
  RequestKind kind;
  const char* name;
  Answer (*answer)(CameraDevice&, const Request&);
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
    std::snprintf(text, sizeof text, "%s %08X/%u", name, setOf(head).data1, head.number);
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
  std::vector<std::string> happened;
  device.camera.tap().tell = [&happened](std::string line) { happened.push_back(std::move(line)); };
  const Answer answer = transfer.answer(device, request);
  device.camera.tap().tell = nullptr;
  Reply reply;
  reply.done = answer.has_value();
  reply.text = headInWords(transfer.name, request.head);
  const std::span<const std::uint8_t> moved =
      answer && !answer->empty() ? std::span<const std::uint8_t>(*answer) : request.bytes;
  reply.text += !reply.done ? ": refused" : moved.empty() ? "" : ": ";
  if (answer) {
    reply.text += shortHex(moved);
    reply.bytes.assign(answer->begin(), answer->end());
  }
  for (const std::string& line : happened) (reply.text += "  ") += line;
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
    const Picture picture = camera.live.picture(camera, mode.width, mode.height);
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
