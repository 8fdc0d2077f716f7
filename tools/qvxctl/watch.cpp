#include <windows.h>

#include <algorithm>
#include <cmath>
#include <cstdio>

#include "commands.h"
#include "message_loop.h"
#include "output.h"
#include "presentation.h"
#include "qvx64/api.h"

namespace qvxctl {

namespace {

// Two readings closer than this show as the same number. The mean that the library publishes every
// fifth time differs from the readings by less, as long as the ring stands still.
constexpr double visibleChange = 0.01;

std::string localTime() {
  SYSTEMTIME now;
  GetLocalTime(&now);
  char text[32];
  std::snprintf(text, sizeof text, "%02u:%02u:%02u", now.wHour, now.wMinute, now.wSecond);
  return text;
}

// Of the ISO form, in UTC.
std::string timestamp() {
  SYSTEMTIME now;
  GetSystemTime(&now);
  char text[64];
  std::snprintf(text, sizeof text, "%04u-%02u-%02uT%02u:%02u:%02u.%03uZ", now.wYear, now.wMonth,
                now.wDay, now.wHour, now.wMinute, now.wSecond, now.wMilliseconds);
  return text;
}

// Four blocks for each doubling: equal turns of a zoom ring look equal.
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
  return localTime() + "  " + leftPadded(magnificationText(measurement), 9) + "  " +
         leftPadded(fieldOfViewText(measurement), 9) + "  " + barOf(measurement.magnification);
}

std::string jsonLine(const Measurement& measurement) {
  std::vector<json::Member> members = {{"time", json::text(timestamp())},
                                       {"event", json::text("magnification")}};
  for (json::Member& member : membersOf(measurement)) members.push_back(std::move(member));
  return json::object(members);
}

// One source of events: reports a camera's magnification when it has changed visibly.
class MagnificationReport {
 public:
  MagnificationReport(int device, bool asJson)
      : device_(device), line_(asJson ? jsonLine : textLine) {}

  void check() {
    const Measurement measurement = measure(device_);
    if (!measurement.taken()) return;
    if (std::abs(measurement.magnification - shown_) < visibleChange) return;
    shown_ = measurement.magnification;
    printLine(line_(measurement));
  }

 private:
  int device_;
  std::string (*line_)(const Measurement&);
  double shown_ = 0;
};

// The library calls back without saying anything: presses are counted, and reported by the loop.
int presses = 0;

void countPress() {
  ++presses;
}

class ButtonReport {
 public:
  explicit ButtonReport(bool asJson) : asJson_(asJson) {
    SetEventCallback(countPress);
    EnablePressKey(1);
  }

  void check() {
    for (; reported_ < presses; ++reported_) {
      printLine(asJson_ ? json::object(
                              {{"time", json::text(timestamp())}, {"event", json::text("button")}})
                        : localTime() + "  touch button pressed");
    }
  }

 private:
  bool asJson_;
  int reported_ = presses;
};

}  // namespace

void watchCamera(const Options& options) {
  MessageLoop loop;
  const int device = openCamera(options.device.value_or(automaticIndex));
  if (!measure(device).taken()) note("this camera reports no magnification");
  std::optional<std::chrono::duration<double>> limit;
  if (options.seconds) limit = std::chrono::duration<double>(*options.seconds);
  MagnificationReport magnification(device, options.json);
  ButtonReport button(options.json);
  loop.run(limit, [&magnification, &button] {
    magnification.check();
    button.check();
  });
}

}  // namespace qvxctl
