// The component object model of the calling thread.
#pragma once

namespace qvx::platform {

// Enters the single-threaded apartment. Every call counts; calling again on a thread is harmless.
void initializeCom();

// Takes back one initializeCom of the same thread.
void uninitializeCom();

}  // namespace qvx::platform
