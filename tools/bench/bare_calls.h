// The system calls that the library's operations come down to, in their order and on threads of
// their own where the library has some: what it is measured against.
#pragma once

#include <cstdint>
#include <memory>
#include <string>

namespace qvx::bench {

void barePause(unsigned milliseconds);

// The camera's address from the environment, and the masks of floating-point exceptions.
void bareSettings();

// A request and its one read. Like the library's, both handles stay open.
void bareWifiCommand(const std::wstring& url);

// Is a camera there, and which? Also looks for USB cameras, of which there are none.
void bareWifiSearch(const std::wstring& baseUrl);

// Looks for bridge cameras in both ways, in vain.
void bareBridgeSearch();

// Looks for libusbK.dll in vain, and says so.
void bareLibusbkSearch();

// Lists the video inputs.
void bareListing();

// Starts a timer that never runs here.
void bareTimer();

// A camera behind a bridge. Each transfer runs on a thread of its own, under the system-wide mutex.
class BareBridge {
 public:
  virtual ~BareBridge() = default;

  void readGeneration() { registerRead(); }
  void readRegister() { onWorker(&BareBridge::registerRead); }

  // A register of the camera's controller: the chip's generation, the bus (read and written), and
  // the register itself.
  void readController();

 protected:
  virtual void registerRead() = 0;
  virtual void registerWrite() = 0;
  virtual void i2cRead() = 0;

 private:
  void onWorker(void (BareBridge::*transfer)());
};

// Finds the one camera there is and opens it.
std::unique_ptr<BareBridge> openBareExtensionUnit();
std::unique_ptr<BareBridge> openBareHid();

// A register of a USB 3 camera's controller, on the device that the library has opened.
void bareUsb3Read();

// Opens the library's device anew, in its words.
void bareUsb3Open();

}  // namespace qvx::bench
