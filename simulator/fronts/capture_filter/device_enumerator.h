// Stands in for the system's device enumerator: virtual cameras get the display names that Windows
// gives to real ones. Everything else is left to the system's own.
#pragma once

#include "simulator/fronts/capture_filter/com_object.h"
#include "simulator/fronts/capture_filter/kernel_streaming.h"

namespace qvx::simulator {

class DeviceEnumerator final : public ComObject<ICreateDevEnum> {
 public:
  STDMETHODIMP CreateClassEnumerator(REFCLSID category, IEnumMoniker** monikers,
                                     DWORD flags) override;
};

}  // namespace qvx::simulator
