// The cameras of a run as devices of this machine. Plugging in needs the rights of an
// administrator.
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "simulator/fronts/camera_list.h"
#include "simulator/program/desk.h"

namespace qvx::simulator {

class PipeServer;

// A part of the machine in which cameras are listed.
struct DeviceKind {
  bool (*includes)(const CameraRecord& camera);
  // What is wrong; nothing when they are there. Never called for none.
  std::string (*plugIn)(const CameraRecords& cameras);
  // What nobody serves; `last` when nothing that is served is left.
  void (*takeOut)(const CameraRecords& cameras, bool last);
};
extern const DeviceKind videoInputs, usb3Devices, hidDevices;

// The running program and its folder, with a backslash at its end; what is wrong when a file is not
// there.
std::wstring programPath();
std::wstring programFolder();
std::string missing(const std::wstring& file);

// Texts of the registry's machine-wide part; an absent one reads as an empty one.
std::wstring readText(const std::wstring& key, const wchar_t* name);
bool writeText(const std::wstring& key, const wchar_t* name, const std::wstring& text);

// The cameras that have a pipe, served and plugged in for as long as this lives.
class ServedDesk {
 public:
  explicit ServedDesk(Desk& desk);
  ~ServedDesk();
  ServedDesk(const ServedDesk&) = delete;
  ServedDesk& operator=(const ServedDesk&) = delete;

  // What is wrong; nothing when all are plugged in.
  const std::string& problem() const { return problem_; }
  bool isEmpty() const { return servers_.empty(); }

 private:
  CameraRecord serve(PluggedCamera& camera);

  std::string problem_;
  Desk& desk_;
  std::vector<std::unique_ptr<PipeServer>> servers_;
};

// Takes out what is served by nobody.
void sweepPlugs();

}  // namespace qvx::simulator
