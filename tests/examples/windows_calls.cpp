// What the examples call of Windows, beside the library on the simulated machine: with both in one
// shared library, examples in C# and Python run here unchanged. A Wi-Fi camera is plugged in whose
// ring turns and whose button is touched now and then; its time runs faster than ours.
#include <deque>
#include <mutex>
#include <thread>

#include "simulator/platform/cameras.h"

using namespace qvx::simulator;

namespace {

struct Message {
  void* window;
  std::uint32_t number;
  std::uint64_t wParam;
  std::int64_t lParam;
};

constexpr std::uint32_t quitMessage = 0x12, timerMessage = 0x113;
constexpr std::chrono::milliseconds betweenTimers{20};
constexpr std::uint64_t betweenTimers_ms = 250;  // of the camera's time

std::mutex guard;
std::deque<Message> messages;

Camera& camera() {
  static Camera* const camera = new Camera(0x998);  // the machine refers to it until the end
  return *camera;
}

__attribute__((constructor)) void plugIn() {
  camera().setZoom({1, 200, 2000});
  world().wifi = wifiFront(camera());
}

void turnTime() {
  static int turns = 0;
  if (++turns % 4 == 0) camera().gpio.touch(true);
  if (turns % 4 == 2) camera().gpio.touch(false);
  world().pumpMessages(betweenTimers_ms);
}

}  // namespace

extern "C" {

int PeekMessageW(Message*, void*, std::uint32_t, std::uint32_t, std::uint32_t) {
  return 0;
}

std::uint32_t GetCurrentThreadId() {
  return 1;
}

int PostThreadMessageW(std::uint32_t, std::uint32_t number, std::uint64_t wParam,
                       std::int64_t lParam) {
  const std::lock_guard lock(guard);
  messages.push_back({nullptr, number, wParam, lParam});
  return 1;
}

int GetMessageW(Message* message, void*, std::uint32_t, std::uint32_t) {
  std::this_thread::sleep_for(betweenTimers);
  const std::lock_guard lock(guard);
  *message = {nullptr, timerMessage, 0, 0};
  if (!messages.empty()) {
    *message = messages.front();
    messages.pop_front();
  }
  return message->number == quitMessage ? 0 : 1;
}

std::int64_t DispatchMessageW(const Message* message) {
  if (message->number == timerMessage) turnTime();
  return 0;
}
}
