// The system calls behind the library's operations, in the same order and, where the library uses
// threads, on threads too: the baseline of the measurements.
#pragma once

#include <cstdint>
#include <memory>
#include <string>

namespace qvx::bench {

void barePause(unsigned milliseconds);

// The camera's address from the environment, and the masks of floating-point exceptions.
void bareSettings();

// A request and a single read. As in the library, both handles stay open.
void bareWifiCommand(const std::wstring& url);

// Detects the Wi-Fi camera and its product id, and searches in vain for USB cameras.
void bareWifiSearch(const std::wstring& baseUrl);

// Searches for bridge cameras in both ways, in vain.
void bareBridgeSearch();

// Searches for libusbK.dll in vain, and prints that.
void bareLibusbkSearch();

// Lists the video inputs.
void bareListing();

// Starts a timer that never fires here.
void bareTimer();

// A camera behind a bridge. Each transfer runs on a thread of its own, under the system-wide mutex.
class BareBridge {
 public:
  virtual ~BareBridge() = default;

  void readGeneration() { registerRead(); }
  void readRegister() { onWorker(&BareBridge::registerRead); }

  // Reads a controller register: reads the chip's generation, reads and writes the bus switch, then
  // reads the register itself.
  void readController();

 protected:
  virtual void registerRead() = 0;
  virtual void registerWrite() = 0;
  virtual void i2cRead() = 0;

 private:
  void onWorker(void (BareBridge::*transfer)());
};

// Finds and opens the only camera.
std::unique_ptr<BareBridge> openBareExtensionUnit();
std::unique_ptr<BareBridge> openBareHid();

// Reads a controller register of a USB 3 camera, on the device that the library has opened.
void bareUsb3Read();

// Opens the same device again and prints what the library prints.
void bareUsb3Open();

}  // namespace qvx::bench
