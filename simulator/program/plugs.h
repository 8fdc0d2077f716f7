// The cameras of a run as devices of this machine. Plugging in requires administrator rights.
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "simulator/fronts/camera_list.h"
#include "simulator/desk/desk.h"

namespace qvx::simulator {

class PipeServer;

// A kind of device as which the machine lists cameras.
struct DeviceKind {
  bool (*includes)(const CameraRecord& camera);
  // Returns what is wrong, or nothing. Never called without cameras.
  std::string (*plugIn)(const CameraRecords& cameras);
  // Removes cameras that nobody serves any longer; `last`: no served camera of this kind remains.
  void (*takeOut)(const CameraRecords& cameras, bool last);
};
extern const DeviceKind videoInputs, usb3Devices, hidDevices;

// The running program; its folder, with a trailing backslash; the message if a file does not exist,
// or nothing.
std::wstring programPath();
std::wstring programFolder();
std::string missing(const std::wstring& file);

// Text values below HKEY_LOCAL_MACHINE; a missing one reads as empty.
std::wstring readText(const std::wstring& key, const wchar_t* name);
bool writeText(const std::wstring& key, const wchar_t* name, const std::wstring& text);

// Serves and plugs in the desk's cameras, except Wi-Fi ones, while it lives.
class ServedDesk {
 public:
  explicit ServedDesk(Desk& desk);
  ~ServedDesk();
  ServedDesk(const ServedDesk&) = delete;
  ServedDesk& operator=(const ServedDesk&) = delete;

  // What is wrong; empty if all cameras are plugged in.
  const std::string& problem() const { return problem_; }
  bool isEmpty() const { return servers_.empty(); }

 private:
  CameraRecord serve(PluggedCamera& camera);

  std::string problem_;
  Desk& desk_;
  std::vector<std::unique_ptr<PipeServer>> servers_;
};

// Unplugs cameras that nobody serves any longer.
void sweepPlugs();

}  // namespace qvx::simulator
