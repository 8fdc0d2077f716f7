// IKsTopologyInfo, which mingw-w64's headers lack.
#pragma once

#include <windows.h>
#include <ks.h>

namespace qvx::platform {

inline constexpr GUID IID_IKsTopologyInfo = {
    0x720D4AC0, 0x7533, 0x11D0, {0xA5, 0xD6, 0x28, 0xDB, 0x04, 0xC1, 0x00, 0x00}};

struct IKsTopologyInfo : public IUnknown {
  virtual HRESULT STDMETHODCALLTYPE get_NumCategories(DWORD* count) = 0;
  virtual HRESULT STDMETHODCALLTYPE get_Category(DWORD index, GUID* category) = 0;
  virtual HRESULT STDMETHODCALLTYPE get_NumConnections(DWORD* count) = 0;
  virtual HRESULT STDMETHODCALLTYPE get_ConnectionInfo(DWORD index,
                                                       KSTOPOLOGY_CONNECTION* connection) = 0;
  virtual HRESULT STDMETHODCALLTYPE get_NodeName(DWORD node, WCHAR* name, DWORD size,
                                                 DWORD* length) = 0;
  virtual HRESULT STDMETHODCALLTYPE get_NumNodes(DWORD* count) = 0;
  virtual HRESULT STDMETHODCALLTYPE get_NodeType(DWORD node, GUID* type) = 0;
  virtual HRESULT STDMETHODCALLTYPE CreateNodeInstance(DWORD node, REFIID iid, void** object) = 0;

 protected:
  ~IKsTopologyInfo() = default;
};

}  // namespace qvx::platform
