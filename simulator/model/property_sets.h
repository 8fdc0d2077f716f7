// The extension unit and property sets of a camera's video interface.
#pragma once

#include <array>
#include <cstdint>
#include <string>

namespace qvx::simulator {

enum class Unit : std::uint8_t {
  bridge,    // the bridge's extension unit
  variant1,  // the extension unit of the other bridge variant
  foreign,   // an extension unit that does not belong to a bridge
  none,      // no extension unit
  plain,     // no topology at all
  absent,    // no video interface
};

// A property set's GUID, in the usual four fields.
struct PropertySetId {
  std::uint32_t data1;
  std::uint16_t data2, data3;
  std::array<std::uint8_t, 8> data4;

  bool operator==(const PropertySetId&) const = default;
};

// One property of a set, for as long as the set is there.
struct PropertyId {
  const PropertySetId& set;
  std::uint32_t selector;
};

// A property's name in the log: the first field of its set and its number, "5A215226/26".
std::string inWords(const PropertyId& property);

// The setup packet of a control transfer.
struct UsbSetup {
  std::uint8_t requestType, request;
  std::uint16_t value, index, length;
};

// The property sets of the bridges. A bridge of variant 1 has only its own.
inline constexpr PropertySetId bridgeRegisterSet = {
    0x5A215226, 0x3289, 0x4156, {0x89, 0x4A, 0x5C, 0x55, 0x7C, 0xDF, 0x96, 0x64}};
inline constexpr PropertySetId bridgeCommandSet = {
    0xC66D125B, 0x0480, 0x0844, {0x8C, 0x26, 0xB8, 0x36, 0x3A, 0x84, 0xDE, 0x63}};
inline constexpr PropertySetId bridgeVariant1Set = {
    0xAAB8F252, 0x8ED1, 0x4972, {0x8C, 0xED, 0x96, 0xB1, 0x7F, 0x04, 0x40, 0x8B}};

}  // namespace qvx::simulator
