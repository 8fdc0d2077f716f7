// The picture controls of a virtual camera as DirectShow sees them.
#pragma once

#include "simulator/capture_filter/com_object.h"
#include "simulator/capture_filter/kernel_streaming.h"
#include "simulator/capture_filter/picture_controls.h"

namespace qvx::simulator {

class VideoProcAmp final : public ComPart<IAMVideoProcAmp> {
 public:
  VideoProcAmp(IUnknown& filter, PictureControlValues& values) : ComPart(filter), values_(values) {}

  STDMETHODIMP GetRange(long property, long* least, long* most, long* step, long* standard,
                        long* flags) override {
    const PictureControl* const control = pictureControl(property);
    if (control == nullptr) return E_PROP_ID_UNSUPPORTED;
    *least = control->least;
    *most = control->most;
    *step = control->step;
    *standard = control->standard;
    *flags = VideoProcAmp_Flags_Manual | (control->hasAutomatic ? VideoProcAmp_Flags_Auto : 0);
    return S_OK;
  }

  STDMETHODIMP Set(long property, long value, long flags) override {
    const PictureControl* const control = pictureControl(property);
    if (control == nullptr) return E_PROP_ID_UNSUPPORTED;
    return values_.set(*control, {value, flags == VideoProcAmp_Flags_Auto}) ? S_OK : E_INVALIDARG;
  }

  STDMETHODIMP Get(long property, long* value, long* flags) override {
    const PictureControl* const control = pictureControl(property);
    if (control == nullptr) return E_PROP_ID_UNSUPPORTED;
    const auto [current, automatic] = values_.get(*control);
    *value = current;
    *flags = automatic ? VideoProcAmp_Flags_Auto : VideoProcAmp_Flags_Manual;
    return S_OK;
  }

 private:
  PictureControlValues& values_;
};

}  // namespace qvx::simulator
