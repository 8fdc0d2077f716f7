#include "simulator/fronts/capture_filter/media_type.h"

#include <algorithm>

#include "simulator/fronts/capture_filter/video_stream.h"
#include "simulator/fronts/protocol.h"

namespace qvx::simulator {

namespace {

constexpr WORD pixelBits = 16;

VIDEOINFOHEADER headerOf(const VideoMode& size) {
  VIDEOINFOHEADER header{};
  header.AvgTimePerFrame = VideoStream::frameTime_100ns;
  header.bmiHeader.biSize = sizeof header.bmiHeader;
  header.bmiHeader.biWidth = size.width;
  header.bmiHeader.biHeight = size.height;
  header.bmiHeader.biPlanes = 1;
  header.bmiHeader.biBitCount = pixelBits;
  header.bmiHeader.biCompression = MAKEFOURCC('Y', 'U', 'Y', '2');
  header.bmiHeader.biSizeImage = yuy2Bytes(size.width, size.height);
  return header;
}

}  // namespace

HRESULT fillMediaType(const VideoMode& size, AM_MEDIA_TYPE& type) {
  auto* const header = static_cast<VIDEOINFOHEADER*>(CoTaskMemAlloc(sizeof(VIDEOINFOHEADER)));
  if (header == nullptr) return E_OUTOFMEMORY;
  *header = headerOf(size);
  type = {};
  type.majortype = MEDIATYPE_Video;
  type.subtype = MEDIASUBTYPE_YUY2;
  type.bFixedSizeSamples = TRUE;
  type.lSampleSize = header->bmiHeader.biSizeImage;
  type.formattype = FORMAT_VideoInfo;
  type.cbFormat = sizeof *header;
  type.pbFormat = reinterpret_cast<BYTE*>(header);
  return S_OK;
}

HRESULT allocateMediaType(const VideoMode& size, AM_MEDIA_TYPE** type) {
  *type = static_cast<AM_MEDIA_TYPE*>(CoTaskMemAlloc(sizeof(AM_MEDIA_TYPE)));
  if (*type == nullptr) return E_OUTOFMEMORY;
  const HRESULT status = fillMediaType(size, **type);
  if (SUCCEEDED(status)) return S_OK;
  CoTaskMemFree(*type);
  *type = nullptr;
  return status;
}

VIDEO_STREAM_CONFIG_CAPS capabilitiesOf(const VideoMode& size) {
  constexpr LONG frames = 10'000'000 / VideoStream::frameTime_100ns;
  VIDEO_STREAM_CONFIG_CAPS result{};
  const SIZE pixels = {size.width, size.height};
  result.guid = FORMAT_VideoInfo;
  result.InputSize = result.MinCroppingSize = result.MaxCroppingSize = pixels;
  result.MinOutputSize = result.MaxOutputSize = pixels;
  result.MinFrameInterval = result.MaxFrameInterval = VideoStream::frameTime_100ns;
  result.MinBitsPerSecond = result.MaxBitsPerSecond =
      static_cast<LONG>(yuy2Bytes(size.width, size.height)) * 8 * frames;
  return result;
}

const VideoMode* sizeOf(const AM_MEDIA_TYPE& type, std::span<const VideoMode> sizes) {
  const bool complete = type.majortype == MEDIATYPE_Video && type.subtype == MEDIASUBTYPE_YUY2 &&
                        type.formattype == FORMAT_VideoInfo;
  const auto found = std::ranges::find_if(
      sizes, [&](const VideoMode& size) { return complete && allows(type, size); });
  return found == sizes.end() ? nullptr : &*found;
}

bool allows(const AM_MEDIA_TYPE& wanted, const VideoMode& size) {
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

}  // namespace qvx::simulator
