// The bridge's HID interface: three feature reports and their execution.
#pragma once

#include "simulator/model/bridge_requests.h"

namespace qvx::simulator {

// The feature reports of a HID interface: a bridge's, or those of a device that resembles one.
enum class HidReports : std::uint8_t {
  bridge,
  extra,         // one feature report too many
  withoutBlock,  // the report for data blocks is missing
  none,          // no feature report at all
};

class HidFunction {
 public:
  enum Report : std::uint8_t {
    commandHeader = 0x87,  // 4 bytes: announces the meaning of the next data block
    dataBlock = 0x93,      // 40 bytes
    oneShot = 0x97,        // 40 bytes; newest firmware only
  };
  static constexpr std::size_t headerSize = 4, blockSize = 40;

  explicit HidFunction(BridgeChip& chip, HidReports reports) : chip_(chip), reports_(reports) {}

  // The report descriptor; firmware without one-shot requests has two reports only.
  std::vector<std::uint8_t> reportDescriptor() const;

  // Returns to the state at power-up.
  void reset() { open_ = nullptr; }

  // One feature report with its id in byte 0; false if the camera refuses it. A device that is not
  // a bridge refuses all.
  bool setFeature(Bytes report);
  // The first byte of the answer overwrites the report id, as in the real firmware.
  bool getFeature(Room report);

 private:
  bool violate(std::string_view what);
  bool begin(Bytes payload);
  bool finish(Bytes block);

  BridgeChip& chip_;
  HidReports reports_;
  const BridgeRequest* open_ = nullptr;  // started; its data block is still missing
  std::uint8_t report_ = 0;              // id of the report in use
  std::vector<std::uint8_t> block_;      // the answer, or the request that has to be repeated
};

}  // namespace qvx::simulator
