// The Wi-Fi camera's control document: JSON with an array "controls" of objects, whose numbers are
// strings. What a camera sends is not trusted: whatever it is, the worst that can come of it is
// that nothing is found.
#pragma once

#include <cstdint>
#include <optional>
#include <string_view>

#include "platform/video_proc_amp.h"

namespace qvx {

struct PictureControl {
  std::int32_t value;
  platform::PropertyRange range;
};

// The first control of that name; nothing when there is none or the text does not start with a
// whole document. A number that is missing or no number reads as 0.
std::optional<PictureControl> controlIn(std::string_view document, std::string_view name);

}  // namespace qvx
