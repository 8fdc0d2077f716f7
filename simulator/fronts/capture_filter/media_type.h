// The kinds of video that a virtual camera sends: uncompressed, in the sizes of its model.
#pragma once

#include <span>

#include "simulator/fronts/capture_filter/kernel_streaming.h"
#include "simulator/model/video_modes.h"

namespace qvx::simulator {

// Memory that the caller frees.
HRESULT fillMediaType(const VideoMode& size, AM_MEDIA_TYPE& type);
HRESULT allocateMediaType(const VideoMode& size, AM_MEDIA_TYPE** type);

VIDEO_STREAM_CONFIG_CAPS capabilitiesOf(const VideoMode& size);

// Which of the sizes a type describes, null for none; and whether a type that may be incomplete
// allows a size.
const VideoMode* sizeOf(const AM_MEDIA_TYPE& type, std::span<const VideoMode> sizes);
bool allows(const AM_MEDIA_TYPE& wanted, const VideoMode& size);

// A type for the time of a call.
struct MediaType : AM_MEDIA_TYPE {
  explicit MediaType(const VideoMode& size) : AM_MEDIA_TYPE{} { fillMediaType(size, *this); }
  ~MediaType() { CoTaskMemFree(pbFormat); }
  MediaType(const MediaType&) = delete;
  MediaType& operator=(const MediaType&) = delete;
};

}  // namespace qvx::simulator
