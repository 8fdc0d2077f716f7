#include "platform/com.h"

#include <objbase.h>

namespace qvx::platform {

void initializeCom() {
  CoInitialize(nullptr);
}

void uninitializeCom() {
  CoUninitialize();
}

}  // namespace qvx::platform
