// The bridge's HID interface: three feature reports, and what the firmware makes of them.
#pragma once

#include "simulator/model/bridge_requests.h"

namespace qvx::simulator {

// What a HID interface offers: a bridge's reports, or those of what only looks a little like one.
enum class HidReports : std::uint8_t {
  bridge,
  extra,         // one feature report more than a bridge has
  withoutBlock,  // none for data blocks
  none,          // no feature report at all
};

class HidFunction {
 public:
  enum Report : std::uint8_t {
    commandHeader = 0x87,  // 4 bytes: what the next data block means
    dataBlock = 0x93,      // 40 bytes
    oneShot = 0x97,        // 40 bytes; only the newest firmware has it
  };
  static constexpr std::size_t headerSize = 4, blockSize = 40;

  explicit HidFunction(BridgeChip& chip, HidReports reports) : chip_(chip), reports_(reports) {}

  // The interface's report descriptor: firmware without one-shot requests has two reports.
  std::vector<std::uint8_t> reportDescriptor() const;

  // As after power-up.
  void reset() { open_ = nullptr; }

  // One feature report, its id in byte 0; false when the camera refuses it. What is no bridge
  // refuses all.
  bool setFeature(Bytes report);
  // The answer's first byte takes the place of the report id: so the firmware does it.
  bool getFeature(Room report);

 private:
  bool violate(std::string_view what);
  bool begin(Bytes payload);
  bool finish(Bytes block);

  BridgeChip& chip_;
  HidReports reports_;
  const BridgeRequest* open_ = nullptr;  // begun; its data block is still to come
  std::uint8_t report_ = 0;              // id of the report at work
  std::vector<std::uint8_t> block_;      // the answer, or the request to be repeated
};

}  // namespace qvx::simulator
