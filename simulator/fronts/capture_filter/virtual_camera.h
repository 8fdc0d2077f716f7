// A virtual camera as this process sees it: what all filter objects on one video input share.
#pragma once

#include <cstdint>
#include <memory>
#include <span>
#include <string>

#include "simulator/fronts/pipe_client.h"
#include "simulator/model/video_modes.h"

namespace qvx::simulator {

class VirtualCamera {
 public:
  // The camera of a registered instance, the same for all callers. Null when there is none.
  static std::shared_ptr<VirtualCamera> at(const std::wstring& instance);

  VirtualCamera(const std::wstring& pipe, const CameraDescription& description)
      : pipe_(pipe), description_(description) {}

  const CameraDescription& description() const { return description_; }
  const std::wstring& pipe() const { return pipe_.pipe(); }

  // One property request to the extension unit, on any thread. Nothing when the camera refuses it
  // or is gone, otherwise the bytes that came back.
  std::optional<std::size_t> set(const GUID& set, std::uint32_t selector,
                                 std::span<const std::uint8_t> data) {
    return pipe_.ask(RequestKind::setProperty, selector, keyOf(set), data, {});
  }
  std::optional<std::size_t> get(const GUID& set, std::uint32_t selector,
                                 std::span<std::uint8_t> data) {
    return pipe_.ask(RequestKind::getProperty, selector, keyOf(set), {}, data);
  }

  // What it sees, as YUY2 that fills the bytes.
  bool frame(const VideoMode& size, std::span<std::uint8_t> bytes) {
    constexpr std::uint32_t limit_ms = 15'000;  // large pictures on a busy machine
    return pipe_.ask(RequestKind::frame, static_cast<std::uint32_t>(size.command), {}, {}, bytes,
                     limit_ms) == bytes.size();
  }

  std::optional<PictureRange> pictureRange(std::uint32_t property) {
    return pipe_.askFor<PictureRange>(RequestKind::pictureRange, property);
  }
  std::optional<PictureValue> picture(std::uint32_t property) {
    return pipe_.askFor<PictureValue>(RequestKind::getPicture, property);
  }
  bool setPicture(std::uint32_t property, const PictureValue& value) {
    const auto* const bytes = reinterpret_cast<const std::uint8_t*>(&value);
    return pipe_.ask(RequestKind::setPicture, property, {}, {bytes, sizeof value}, {}).has_value();
  }

 private:
  static std::span<const std::uint8_t> keyOf(const GUID& set) {
    return {reinterpret_cast<const std::uint8_t*>(&set), sizeof set};
  }

  PipeClient pipe_;
  const CameraDescription description_;
};

}  // namespace qvx::simulator
