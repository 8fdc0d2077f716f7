// For tests that run in the client's process: any filter object of a virtual camera has this
// interface, which looks beneath what the client sees.
#pragma once

#include <unknwn.h>

struct IVirtualCamera : public IUnknown {
  // What the client did that it must not do.
  STDMETHOD_(ULONG, ViolationCount)() PURE;
  // Copies one to the buffer, cut to its size; empty when there is none of that index.
  STDMETHOD(Violation)(ULONG index, char* text, ULONG size) PURE;

 protected:
  ~IVirtualCamera() = default;
};

// {33BCC172-7A4A-4A66-8288-EBF727CAE582}
__CRT_UUID_DECL(IVirtualCamera, 0x33BCC172, 0x7A4A, 0x4A66, 0x82, 0x88, 0xEB, 0xF7, 0x27, 0xCA,
                0xE5, 0x82)
