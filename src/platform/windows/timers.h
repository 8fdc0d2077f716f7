// What the module needs of the timers when it is unloaded.
#pragma once

namespace qvx::platform {

// Stops every timer of the calling thread.
void stopThreadTimers();

}  // namespace qvx::platform
