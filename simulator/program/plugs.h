// The cameras of a run as devices of this machine, one part of it each. Plugging in needs the
// rights of an administrator.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "simulator/program/desk.h"

namespace qvx::simulator {

class PipeServer;

// A camera and the pipe on which its fronts reach it.
struct ServedCamera {
  const PluggedCamera& camera;
  std::wstring pipe;
  std::uint64_t order;  // among all that was ever plugged in
};
using ServedCameras = std::vector<ServedCamera>;

enum class Naming {
  devicePath,  // as Windows names real cameras: "@device:pnp:\\?\usb#...\global", in the order in
               // which they were plugged in; our enumerator takes the place of the system's
  system,      // the system's own enumerator makes up the names: "@device:sw:{...}\usb#..."
};

// A part of the machine. Each says what is wrong when something cannot be plugged in.
struct VideoPlugs {
  static std::string plugIn(const ServedCameras& cameras, Naming naming);
  static void sweep();  // takes out what nobody serves
};
struct HidPlugs {
  static std::string plugIn(const ServedCameras& cameras);
  static void sweep();
};
struct Usb3Plugs {
  static std::string plugIn(const ServedCameras& cameras);
  static void sweep();
};

// The folder of the running program, with a backslash at its end; what is wrong when a file is not
// there.
std::wstring programFolder();
std::string missing(const std::wstring& file);

// The cameras that have a pipe, served and plugged in for as long as this lives.
class ServedDesk {
 public:
  explicit ServedDesk(Desk& desk, Naming naming = Naming::devicePath);
  ~ServedDesk();
  ServedDesk(const ServedDesk&) = delete;
  ServedDesk& operator=(const ServedDesk&) = delete;

  // What is wrong; nothing when all are plugged in.
  const std::string& problem() const { return problem_; }

 private:
  std::string problem_;
  Desk& desk_;
  std::vector<std::unique_ptr<PipeServer>> servers_;
};

// Takes out what is served by nobody.
void sweepPlugs();

}  // namespace qvx::simulator
