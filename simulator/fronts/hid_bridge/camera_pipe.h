// The driver's end of a camera's pipe, in the kernel's terms.
#pragma once

#include "simulator/fronts/hid_bridge/minidriver.h"
#include "simulator/fronts/protocol.h"

namespace qvx::simulator {

// One request at a time.
class CameraPipe {
 public:
  // The name is a record's.
  explicit CameraPipe(const wchar_t* name) : name_(name) {}

  // The reply's bytes go to `reply`, and how many there are to `size`. False when the camera
  // refuses, takes too long or is gone.
  bool ask(const RequestHead& head, const void* bytes, ULONG byteCount, void* reply, ULONG room,
           ULONG& size);

  // What is asked next opens it anew.
  void close();

 private:
  bool open();
  bool exchange(const void* request, ULONG requestSize, void* reply, ULONG& replySize);

  const wchar_t* const name_;
  HANDLE pipe_ = nullptr, event_ = nullptr;
};

}  // namespace qvx::simulator
