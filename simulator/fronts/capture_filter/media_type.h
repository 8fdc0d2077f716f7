// The video formats of a simulated camera: uncompressed, in the sizes of its model.
#pragma once

#include <algorithm>
#include <span>

#include "simulator/fronts/capture_filter/kernel_streaming.h"
#include "simulator/fronts/protocol.h"
#include "simulator/model/video_modes.h"

namespace qvx::simulator {

inline constexpr REFERENCE_TIME frameTime_100ns = 666'666;

// The receiver of the type frees the format.
inline HRESULT fillMediaType(const VideoMode& size, AM_MEDIA_TYPE& type) {
  type = {};
  auto* const format = static_cast<VIDEOINFOHEADER*>(CoTaskMemAlloc(sizeof(VIDEOINFOHEADER)));
  if (format == nullptr) return E_OUTOFMEMORY;
  const DWORD bytes = yuy2Bytes(size.width, size.height);
  const BITMAPINFOHEADER header = {
      sizeof header, size.width, size.height, 1, 16, MAKEFOURCC('Y', 'U', 'Y', '2'),
      bytes,         0,          0,           0, 0};
  *format = {{}, {}, 0, 0, frameTime_100ns, header};
  type = {MEDIATYPE_Video,
          MEDIASUBTYPE_YUY2,
          TRUE,
          FALSE,
          bytes,
          FORMAT_VideoInfo,
          nullptr,
          sizeof *format,
          reinterpret_cast<BYTE*>(format)};
  return S_OK;
}

// The receiver also frees the type itself.
inline HRESULT allocateMediaType(const VideoMode& size, AM_MEDIA_TYPE** type) {
  *type = static_cast<AM_MEDIA_TYPE*>(CoTaskMemAlloc(sizeof(AM_MEDIA_TYPE)));
  return *type == nullptr ? E_OUTOFMEMORY : fillMediaType(size, **type);
}

inline VIDEO_STREAM_CONFIG_CAPS capabilitiesOf(const VideoMode& size) {
  constexpr LONG frames = 10'000'000 / frameTime_100ns;
  VIDEO_STREAM_CONFIG_CAPS result{};
  const SIZE pixels = {size.width, size.height};
  result.guid = FORMAT_VideoInfo;
  result.InputSize = result.MinCroppingSize = result.MaxCroppingSize = pixels;
  result.MinOutputSize = result.MaxOutputSize = pixels;
  result.MinFrameInterval = result.MaxFrameInterval = frameTime_100ns;
  result.MinBitsPerSecond = result.MaxBitsPerSecond =
      static_cast<LONG>(yuy2Bytes(size.width, size.height)) * 8 * frames;
  return result;
}

// Whether a possibly partial type allows a size.
inline bool allows(const AM_MEDIA_TYPE& wanted, const VideoMode& size) {
  const auto isOpen = [](const GUID& id) { return id == GUID_NULL; };
  if (!isOpen(wanted.majortype) && wanted.majortype != MEDIATYPE_Video) return false;
  if (!isOpen(wanted.subtype) && wanted.subtype != MEDIASUBTYPE_YUY2) return false;
  if (isOpen(wanted.formattype) || wanted.pbFormat == nullptr) return true;
  if (wanted.formattype != FORMAT_VideoInfo || wanted.cbFormat < sizeof(VIDEOINFOHEADER)) {
    return false;
  }
  const auto& header = reinterpret_cast<const VIDEOINFOHEADER*>(wanted.pbFormat)->bmiHeader;
  return header.biWidth == size.width && header.biHeight == size.height;
}

// The size that a complete type describes; null for none of these sizes.
inline const VideoMode* sizeOf(const AM_MEDIA_TYPE& type, std::span<const VideoMode> sizes) {
  const bool complete = type.majortype == MEDIATYPE_Video && type.subtype == MEDIASUBTYPE_YUY2 &&
                        type.formattype == FORMAT_VideoInfo;
  const auto found = std::ranges::find_if(
      sizes, [&](const VideoMode& size) { return complete && allows(type, size); });
  return found == sizes.end() ? nullptr : &*found;
}

}  // namespace qvx::simulator
