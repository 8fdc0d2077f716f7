#include <windows.h>

#include <algorithm>
#include <cmath>
#include <cstdio>

#include "commands.h"
#include "message_loop.h"
#include "output.h"
#include "presentation.h"
#include "presses.h"
#include "qvx64/api.h"

namespace qvxctl {

namespace {

using Clock = std::chrono::steady_clock;

// Two readings closer than this are printed as the same number. While the ring stands still, the
// mean that the library publishes on every fifth reading differs from the readings by less.
constexpr double visibleChange = 0.01;

std::string localTime() {
  SYSTEMTIME now;
  GetLocalTime(&now);
  char text[32];
  std::snprintf(text, sizeof text, "%02u:%02u:%02u", now.wHour, now.wMinute, now.wSecond);
  return text;
}

// ISO 8601, in UTC.
std::string timestamp() {
  SYSTEMTIME now;
  GetSystemTime(&now);
  char text[64];
  std::snprintf(text, sizeof text, "%04u-%02u-%02uT%02u:%02u:%02u.%03uZ", now.wYear, now.wMonth,
                now.wDay, now.wHour, now.wMinute, now.wSecond, now.wMilliseconds);
  return text;
}

// Four blocks for each doubling, so that equal turns of a zoom ring look equal.
std::string barOf(double magnification) {
  constexpr double blocksPerDoubling = 4, longest = 48;
  std::string bar;
  const double length = std::min(std::log2(magnification) * blocksPerDoubling, longest);
  for (int i = 0; i < length; ++i) bar += "█";
  return bar;
}

std::string leftPadded(const std::string& text, std::size_t width) {
  return text.size() < width ? std::string(width - text.size(), ' ') + text : text;
}

std::string textLine(const Measurement& measurement) {
  return leftPadded(magnificationText(measurement), 9) + "  " +
         leftPadded(fieldOfViewText(measurement), 9) + "  " + barOf(measurement.magnification);
}

// Prints each event as a line.
class Events {
 public:
  explicit Events(const Options& options) : options_(options) {}

  void print(const char* event, const std::string& text, Json::Value json = {}) const {
    json["time"] = timestamp();
    json["event"] = event;
    printResult(options_, json, localTime() + "  " + text);
  }

 private:
  const Options& options_;
};

// Reports when the camera stops answering, and when it answers again. In between, measurements mean
// nothing.
class Presence {
 public:
  Presence(const Model& camera, const Events& events) : camera_(camera), events_(events) {
    if (!monitored_) note("whether this camera still answers cannot be found out");
  }

  // Asks the camera when the answer is needed at once, and otherwise every few seconds.
  bool isThere(bool urgent) {
    constexpr std::chrono::seconds usually(3);
    const bool due = (urgent && there_) || Clock::now() - asked_ >= usually;
    if (!monitored_ || !due) return there_;
    const bool before = there_;
    there_ = ask();
    if (before && !there_) events_.print("silent", "the camera has stopped answering");
    if (!before && there_) events_.print("answering", "the camera answers again");
    return there_;
  }

 private:
  // A camera without exposure has nothing to ask for, and asking would end its measurements.
  bool canBeAsked() const {
    return camera_.device == QVX_WIFI_CAMERA || camera_.exposure.time != ExposureTime::none;
  }

  bool ask() {
    const bool answered = answers(camera_.device, isUsb3(camera_.productId));
    asked_ = Clock::now();
    return answered;
  }

  const Model& camera_;
  const Events& events_;
  Clock::time_point asked_;
  bool there_ = true;
  bool monitored_ = canBeAsked() && ask();
};

// Reports a visible change of the magnification. A reading is held until the next one, because the
// means that the library publishes now and then step back for one reading; the first of them is
// half as large as it should be. The camera must still answer before a reading is shown.
class MagnificationReport {
 public:
  MagnificationReport(int device, Presence& presence, const Events& events)
      : device_(device), presence_(presence), events_(events) {
    latest_ = measure(device_);
    if (latest_.taken()) show();
  }

  void check() {
    constexpr std::chrono::milliseconds standing(400);
    const Measurement now = measure(device_);
    const bool waits = differ(latest_, shown_), moved = differ(now, latest_);
    const bool stood = !moved && Clock::now() - since_ > standing;
    const bool stepsBack = moved && (now.magnification > latest_.magnification) !=
                                        (latest_.magnification > shown_.magnification);
    const bool due = waits && (moved ? !stepsBack : stood);
    if (presence_.isThere(due) && due) show();
    if (!moved) return;
    latest_ = now;
    since_ = Clock::now();
  }

 private:
  static bool differ(const Measurement& one, const Measurement& other) {
    return std::abs(one.magnification - other.magnification) >= visibleChange;
  }

  void show() {
    shown_ = latest_;
    Json::Value json;
    addTo(json, shown_);
    events_.print("magnification", textLine(shown_), json);
  }

  int device_;
  Presence& presence_;
  const Events& events_;
  Measurement shown_{}, latest_{};
  Clock::time_point since_;
};

class ButtonReport {
 public:
  explicit ButtonReport(const Events& events) : events_(events) {
    SetEventCallback(countPress);
    EnablePressKey(1);
  }

  void check() {
    for (; reported_ < presses; ++reported_) events_.print("button", "touch button pressed");
  }

 private:
  const Events& events_;
  int reported_ = presses;
};

}  // namespace

void watchCamera(const Options& options) {
  MessageLoop loop;
  const Model camera = openModel(options);
  const Events events(options);
  if (!measure(camera.device).taken()) note("this camera reports no magnification");
  Presence presence(camera, events);
  MagnificationReport magnification(camera.device, presence, events);
  ButtonReport button(events);
  std::optional<std::chrono::duration<double>> limit;
  if (options.seconds) limit = std::chrono::duration<double>(*options.seconds);
  loop.run(limit, [&magnification, &button] {
    magnification.check();
    button.check();
  });
}

}  // namespace qvxctl
