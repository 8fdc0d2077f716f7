#include "platform/com.h"

#include <objbase.h>

namespace qvx::platform {

void initializeCom() {
  CoInitialize(nullptr);
}

ComUse::ComUse() {
  if (SUCCEEDED(CoInitialize(nullptr))) thread_ = GetCurrentThreadId();
}

ComUse::~ComUse() {
  if (thread_ == GetCurrentThreadId()) CoUninitialize();
}

}  // namespace qvx::platform
