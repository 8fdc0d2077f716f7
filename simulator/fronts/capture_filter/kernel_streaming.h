// The kernel-streaming headers in the order that they require, and declarations that mingw-w64
// lacks.
#pragma once

#include <windows.h>
// Before dshow.h, which would hide parts of it.
#include <shlwapi.h>

#include <dshow.h>
#include <ks.h>
#include <ksmedia.h>
#include <ksproxy.h>

struct IKsTopologyInfo : public IUnknown {
  STDMETHOD(get_NumCategories)(DWORD* count) PURE;
  STDMETHOD(get_Category)(DWORD index, GUID* category) PURE;
  STDMETHOD(get_NumConnections)(DWORD* count) PURE;
  STDMETHOD(get_ConnectionInfo)(DWORD index, KSTOPOLOGY_CONNECTION* connection) PURE;
  STDMETHOD(get_NodeName)(DWORD node, WCHAR* name, DWORD size, DWORD* length) PURE;
  STDMETHOD(get_NumNodes)(DWORD* count) PURE;
  STDMETHOD(get_NodeType)(DWORD node, GUID* type) PURE;
  STDMETHOD(CreateNodeInstance)(DWORD node, REFIID iid, void** object) PURE;

 protected:
  ~IKsTopologyInfo() = default;
};

__CRT_UUID_DECL(IKsTopologyInfo, 0x720D4AC0, 0x7533, 0x11D0, 0xA5, 0xD6, 0x28, 0xDB, 0x04, 0xC1,
                0x00, 0x00)
__CRT_UUID_DECL(IKsControl, 0x28F54685, 0x06FD, 0x11D2, 0xB2, 0x7A, 0x00, 0xA0, 0xC9, 0x22, 0x31,
                0x96)
