#include "simulator/model/bridge_requests.h"

namespace qvx::simulator {

namespace {

constexpr std::string_view wrongLength = "wrong length of", notZero = "unused bytes not 0 in";

// An address of one or two bytes, the low one first.
template <std::size_t addressBytes>
std::uint16_t addressIn(Bytes body) {
  return static_cast<std::uint16_t>(body[0] | (addressBytes == 2 ? body[1] << 8 : 0));
}

// A register access after its address: count n, for a write n bytes, then zeros.
constexpr std::size_t maxRegisterBytes = 4;

template <std::size_t addressBytes>
BridgeOutcome readRegister(BridgeChip& chip, Bytes body, std::size_t /*maxAnswerBytes*/) {
  const std::size_t count = body[addressBytes];
  if (count < 1 || count > maxRegisterBytes) return {wrongLength};
  if (!allZero(body.subspan(addressBytes + 1))) return {notZero};
  BridgeOutcome outcome{.answer = std::vector<std::uint8_t>(count)};
  chip.readRegister(addressIn<addressBytes>(body), outcome.answer);
  return outcome;
}

template <std::size_t addressBytes>
BridgeOutcome writeRegister(BridgeChip& chip, Bytes body, std::size_t /*maxAnswerBytes*/) {
  const std::size_t count = body[addressBytes];
  const Bytes value = body.subspan(addressBytes + 1);
  if (count < 1 || count > std::min(maxRegisterBytes, value.size())) return {wrongLength};
  if (!allZero(value.subspan(count))) return {notZero};
  chip.writeRegister(addressIn<addressBytes>(body), value.first(count));
  return {.padding = value.size() - count};
}

// Slave address, count n, 1.
BridgeOutcome readI2c(BridgeChip& chip, Bytes body, std::size_t maxAnswerBytes) {
  const std::size_t count = body[1];
  if (count < 1 || count > maxAnswerBytes || body[2] != 1) return {wrongLength};
  BridgeOutcome outcome{.answer = std::vector<std::uint8_t>(count)};
  chip.readI2cLegacy(body[0], outcome.answer);
  return outcome;
}

// Slave address, count n, speed bit, n bytes, then zeros.
BridgeOutcome writeI2c(BridgeChip& chip, Bytes body, std::size_t /*maxAnswerBytes*/) {
  const std::size_t count = body[1];
  const Bytes bytes = body.subspan(3);
  if (count > bytes.size() || body[2] > 1) return {wrongLength};
  if (!allZero(bytes.subspan(count))) return {notZero};
  chip.writeI2cLegacy(body[0], bytes.first(count));
  return {.padding = bytes.size() - count};
}

// 0, slave address, speed bit, count n, n sub-address bytes, count d, for a write d data bytes,
// then zeros.
struct I2cOneShot {
  bool wellFormed = false;
  std::size_t count = 0;
  Bytes subAddress, data;

  I2cOneShot(Bytes bytes, bool isWrite) {
    constexpr std::size_t head = 4;
    const std::size_t countAt = head + bytes[3];
    if (bytes[0] != 0 || bytes[2] > 1 || countAt >= bytes.size()) return;
    subAddress = bytes.subspan(head, bytes[3]);
    count = bytes[countAt];
    const Bytes rest = bytes.subspan(countAt + 1);
    const std::size_t dataSize = isWrite ? count : 0;
    if (dataSize > rest.size()) return;
    data = rest.first(dataSize);
    wellFormed = allZero(rest.subspan(dataSize));
  }
};

// A slave that does not acknowledge is reported as a count of 0.
BridgeOutcome readI2cOneShot(BridgeChip& chip, Bytes body, std::size_t maxAnswerBytes) {
  const I2cOneShot request(body, false);
  if (!request.wellFormed) return {wrongLength};
  const std::size_t count = std::min(request.count, maxAnswerBytes - 1);
  BridgeOutcome outcome{.answer = std::vector<std::uint8_t>(1 + count)};
  const Room data = Room(outcome.answer).subspan(1);
  const bool done = chip.readI2c(body[1], request.subAddress, data);
  outcome.answer[0] = static_cast<std::uint8_t>(done ? count : 0);
  return outcome;
}

BridgeOutcome writeI2cOneShot(BridgeChip& chip, Bytes body, std::size_t /*maxAnswerBytes*/) {
  const I2cOneShot request(body, true);
  if (!request.wellFormed) return {wrongLength};
  chip.writeI2c(body[1], request.subAddress, request.data);
  return {};
}

BridgeOutcome readCommand(BridgeChip& chip, Bytes body, std::size_t /*maxAnswerBytes*/) {
  if (!allZero(body.subspan(bridgeCommandSize))) return {notZero};
  return {.answer = chip.readCommand(body)};
}

BridgeOutcome writeCommand(BridgeChip& chip, Bytes body, std::size_t /*maxAnswerBytes*/) {
  if (!allZero(body.subspan(bridgeCommandSize))) return {notZero};
  chip.writeCommand(body);
  return {};
}

constexpr auto narrow = BridgeFirmware::narrow, wide = BridgeFirmware::wide,
               oneShot = BridgeFirmware::oneShot;
constexpr std::nullopt_t none = std::nullopt;

constexpr BridgeRequest requests[] = {
    {narrow, true, 2, 2, 2, 0x00, readRegister<1>},
    {narrow, false, 3, 3, 6, 0x01, writeRegister<1>},
    {narrow, true, 4, 3, 3, 0x02, readI2c},
    {narrow, false, 5, 3, 131, 0x03, writeI2c},
    {wide, true, 10, 3, 3, 0x08, readRegister<2>},
    {wide, false, 11, 4, 7, 0x09, writeRegister<2>},
    {oneShot, true, 20, 32, 32, 0x0C, readI2cOneShot},
    {oneShot, false, 21, 32, 32, 0x0D, writeI2cOneShot},
    {oneShot, true, 26, 32, 32, none, readRegister<2>},
    {oneShot, false, 27, 32, 32, none, writeRegister<2>},
    {oneShot, true, none, 0, 0, 0x1D, readCommand},
    {oneShot, false, none, 0, 0, 0x1E, writeCommand},
};

}  // namespace

const BridgeRequest* findRequest(const std::function<bool(const BridgeRequest&)>& isMeant) {
  const auto* const found = std::find_if(std::begin(requests), std::end(requests), isMeant);
  return found == std::end(requests) ? nullptr : found;
}

}  // namespace qvx::simulator
