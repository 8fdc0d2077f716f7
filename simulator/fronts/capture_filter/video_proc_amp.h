// The picture controls of a virtual camera as DirectShow sees them.
#pragma once

#include "simulator/fronts/capture_filter/com_object.h"
#include "simulator/fronts/capture_filter/kernel_streaming.h"
#include "simulator/fronts/capture_filter/virtual_camera.h"

namespace qvx::simulator {

class VideoProcAmp final : public ComPart<IAMVideoProcAmp> {
 public:
  VideoProcAmp(IUnknown& filter, VirtualCamera& camera) : ComPart(filter), camera_(camera) {}

  STDMETHODIMP GetRange(long property, long* least, long* most, long* step, long* standard,
                        long* flags) override {
    const auto range = camera_.pictureRange(static_cast<std::uint32_t>(property));
    if (!range) return E_PROP_ID_UNSUPPORTED;
    *least = range->least;
    *most = range->most;
    *step = range->step;
    *standard = range->standard;
    *flags = VideoProcAmp_Flags_Manual | (range->hasAutomatic != 0 ? VideoProcAmp_Flags_Auto : 0);
    return S_OK;
  }

  STDMETHODIMP Set(long property, long value, long flags) override {
    const bool done = camera_.setPicture(static_cast<std::uint32_t>(property),
                                         {value, flags == VideoProcAmp_Flags_Auto});
    return done ? S_OK : E_INVALIDARG;
  }

  STDMETHODIMP Get(long property, long* value, long* flags) override {
    const auto current = camera_.picture(static_cast<std::uint32_t>(property));
    if (!current) return E_PROP_ID_UNSUPPORTED;
    *value = current->value;
    *flags = current->automatic != 0 ? VideoProcAmp_Flags_Auto : VideoProcAmp_Flags_Manual;
    return S_OK;
  }

 private:
  VirtualCamera& camera_;
};

}  // namespace qvx::simulator
