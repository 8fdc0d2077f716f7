// The picture controls of a virtual camera as DirectShow sees them.
#pragma once

#include "simulator/fronts/capture_filter/com_object.h"
#include "simulator/fronts/capture_filter/kernel_streaming.h"
#include "simulator/fronts/pipe_client.h"
#include "simulator/model/picture_controls.h"

namespace qvx::simulator {

class VideoProcAmp final : public ComPart<IAMVideoProcAmp> {
 public:
  VideoProcAmp(IUnknown& filter, PipeClient& camera) : ComPart(filter), camera_(camera) {}

  STDMETHODIMP GetRange(long property, long* least, long* most, long* step, long* standard,
                        long* flags) override {
    const auto range = camera_.askFor<PictureControl>(head(RequestKind::pictureRange, property));
    if (!range) return E_PROP_ID_UNSUPPORTED;
    *least = range->least;
    *most = range->most;
    *step = range->step;
    *standard = range->standard;
    *flags = VideoProcAmp_Flags_Manual | (range->hasAutomatic ? VideoProcAmp_Flags_Auto : 0);
    return S_OK;
  }

  STDMETHODIMP Set(long property, long value, long flags) override {
    const PictureValue wanted = {value, flags == VideoProcAmp_Flags_Auto};
    const auto* const bytes = reinterpret_cast<const std::uint8_t*>(&wanted);
    const auto done =
        camera_.ask(head(RequestKind::setPicture, property), {bytes, sizeof wanted}, {});
    return done ? S_OK : E_INVALIDARG;
  }

  STDMETHODIMP Get(long property, long* value, long* flags) override {
    const auto current = camera_.askFor<PictureValue>(head(RequestKind::getPicture, property));
    if (!current) return E_PROP_ID_UNSUPPORTED;
    *value = current->value;
    *flags = current->automatic != 0 ? VideoProcAmp_Flags_Auto : VideoProcAmp_Flags_Manual;
    return S_OK;
  }

 private:
  static RequestHead head(RequestKind kind, long property) {
    return {kind, static_cast<std::uint32_t>(property)};
  }

  PipeClient& camera_;
};

}  // namespace qvx::simulator
