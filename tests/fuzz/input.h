// A stream of bytes made up by a fuzzer. The script (which machine, which calls with which
// arguments) is taken from the end of its bytes, what devices answer from their beginning: a
// changed answer leaves the script as it was. When the bytes are used up, everything is 0.
#pragma once

#include <fuzzer/FuzzedDataProvider.h>

#include <cstdint>
#include <mutex>
#include <span>

namespace qvx::fuzz {

class Input {
 public:
  Input(const std::uint8_t* bytes, std::size_t size) : provider_(bytes, size) {}

  bool isOver() {
    const std::lock_guard<std::mutex> lock(guard_);
    return provider_.remaining_bytes() == 0;
  }

  // For the script.
  template <class Number>
  Number number(Number min, Number max) {
    const std::lock_guard<std::mutex> lock(guard_);
    return provider_.ConsumeIntegralInRange<Number>(min, max);
  }
  bool oneIn(int chances) { return number(1, chances) == chances; }
  const auto& oneOf(const auto& choices) {
    return choices[number<std::size_t>(0, std::size(choices) - 1)];
  }

  // For answers; workers ask, too. What registers hold is mostly small, 255 often has a meaning,
  // and firmware likes to echo what it was sent.
  std::uint8_t registerValue(std::uint8_t sent = 0) {
    const std::uint8_t choice = byte();
    if (choice >= 0xF0) return 0xFF;
    if (choice >= 0xE0) return sent;
    return choice < 0x80 ? choice % 16 : byte();
  }
  std::uint8_t byte() {
    std::uint8_t byte = 0;
    fill({&byte, 1});
    return byte;
  }
  void fill(std::span<std::uint8_t> bytes) {
    const std::lock_guard<std::mutex> lock(guard_);
    provider_.ConsumeData(bytes.data(), bytes.size());
  }

 private:
  std::mutex guard_;
  FuzzedDataProvider provider_;
};

}  // namespace qvx::fuzz
