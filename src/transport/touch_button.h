// The touch button on the camera's body, as each transport shows it.
#pragma once

#include <cstdint>

namespace qvx {

// USB 3: the button's byte, 255 when the camera does not answer. Two bytes acknowledge a press;
// the first time the firmware wants only one of them announced.
std::uint8_t sampleUsb3Button();
enum class Acknowledge : std::uint8_t { first = 1, last = 2 };
void acknowledgeUsb3Button(Acknowledge which);

// Wi-Fi: the state of the pins, and clearing the one that latches a press.
constexpr int pressedPins = 0x18;  // on the 7xxx: touched, and latched
int readButtonPins();
void clearButtonLatch();

// Behind a bridge: whether the button's bit is set, on 4xx7 cameras and on others.
bool buttonBitSet4xx7();
bool buttonBitSet();

// Whether the button of a camera of the 7xxx family was pressed; acknowledges the press. Asks even
// while polling is switched off, which is the caller's business. The product id is not used.
int IsPID7x15PKeyFire(int pid);

}  // namespace qvx
