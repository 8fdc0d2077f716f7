#include "simulator/program/desk.h"

#include <algorithm>

#include "simulator/scene/still.h"

namespace qvx::simulator {

namespace {

constexpr std::size_t accessesKept = 1000;

// Every byte value, NUL first.
std::string everyByte() {
  std::string bytes;
  for (int value = 0; value < 256; ++value) bytes += static_cast<char>(value);
  return bytes;
}

std::vector<std::string> takeViolations(Camera& camera) {
  std::vector<std::string> lines;
  for (std::size_t i = 0; i < camera.violations().count(); ++i) {
    lines.emplace_back(camera.violations()[i]);
  }
  camera.violations().clear();
  return lines;
}

}  // namespace

PluggedCamera::PluggedCamera(const CameraSpec& spec, std::string id, std::function<void()> onChange)
    : spec_(spec), id_(std::move(id)), onChange_(std::move(onChange)), device_(spec, stillOf) {
  if (spec.zoom) device_.camera.setZoom(*spec.zoom);
  device_.setButtonPeriod(spec.buttonPeriod_ms);
  faults_.set(spec.fault);
}

Reply PluggedCamera::carry(const std::function<Reply(CameraDevice&)>& transfer) {
  const std::lock_guard turn(turn_);
  const Fault fault = begin();
  Reply reply = perform(fault, transfer);
  onHearing();
  onChange_();
  if (fault.kind == Fault::stalls) {
    std::unique_lock lock(guard_);
    closing_.wait_for(lock, std::chrono::milliseconds(fault.stall_ms), [this] { return closed_; });
  }
  return reply;
}

void PluggedCamera::touchButton(bool touched) {
  with(
      [touched](CameraDevice& device) { touched ? device.pressButton() : device.releaseButton(); });
  onChange_();
}

void PluggedCamera::setZoom(const ZoomMotion& motion) {
  with([&motion](CameraDevice& device) { device.camera.setZoom(motion); });
  onChange_();
}

Fault PluggedCamera::fault() const {
  const std::lock_guard lock(guard_);
  return faults_.fault();
}

void PluggedCamera::setFault(const Fault& fault) {
  {
    const std::lock_guard lock(guard_);
    faults_.set(fault);
  }
  onHearing();
  onChange_();
}

bool PluggedCamera::isPluggedIn() const {
  const std::lock_guard lock(guard_);
  return pluggedIn_;
}

void PluggedCamera::unplug() {
  {
    const std::lock_guard lock(guard_);
    pluggedIn_ = false;
  }
  onHearing();
  onChange_();
}

bool PluggedCamera::isDeaf() const {
  const std::lock_guard lock(guard_);
  FaultCounter ahead = faults_;
  const Fault::Kind next = ahead.next().kind;
  return !pluggedIn_ || next == Fault::fails || next == Fault::unplugs;
}

std::vector<Access> PluggedCamera::accessesAfter(std::uint64_t number) const {
  const std::lock_guard lock(guard_);
  const auto first =
      std::find_if(accesses_.begin(), accesses_.end(),
                   [number](const Access& access) { return access.number > number; });
  return {first, accesses_.end()};
}

void PluggedCamera::close() {
  {
    const std::lock_guard lock(guard_);
    closed_ = true;
  }
  closing_.notify_all();
}

std::uint64_t PluggedCamera::now_ms() const {
  using namespace std::chrono;
  const auto sincePowerUp = steady_clock::now() - poweredUp_;
  return static_cast<std::uint64_t>(duration_cast<milliseconds>(sincePowerUp).count());
}

Fault PluggedCamera::begin() {
  const std::lock_guard lock(guard_);
  const Fault fault = pluggedIn_ ? faults_.next() : Fault{.kind = Fault::unplugs};
  if (fault.kind == Fault::unplugs) pluggedIn_ = false;
  return fault;
}

Reply PluggedCamera::perform(const Fault& fault,
                             const std::function<Reply(CameraDevice&)>& transfer) {
  const std::lock_guard lock(guard_);
  device_.advanceTo(now_ms());
  Reply reply;
  if (fault.kind == Fault::fails || fault.kind == Fault::unplugs) {
    reply.text = fault.kind == Fault::fails ? "refused" : "unplugged";
  } else {
    device_.camera.tap().losesWrites = fault.kind == Fault::loses;
    reply = transfer(device_);
    spoil(fault, reply);
  }
  accesses_.push_back({++accessCount_, now_ms(), reply.text, takeViolations(device_.camera)});
  if (accesses_.size() > accessesKept) accesses_.pop_front();
  if (onAccess) onAccess(accesses_.back());
  return reply;
}

void PluggedCamera::spoil(const Fault& fault, Reply& reply) {
  constexpr std::size_t oneRead = 8192;  // as much as a client takes of an answer over HTTP
  const bool overHttp = spec_.transport == Transport::wifi;
  const std::size_t size = reply.bytes.size();
  reply.announced = size;
  if (fault.kind == Fault::halves) {
    reply.bytes.resize(size / 2);
    return;
  }
  if (fault.kind == Fault::empties) reply.bytes.clear();
  if (fault.kind == Fault::fills) reply.bytes = std::string(overHttp ? oneRead : size, 'x');
  if (fault.kind == Fault::junks && overHttp) reply.bytes = everyByte();
  if (fault.kind == Fault::junks && !overHttp) {
    for (char& byte : reply.bytes) byte = static_cast<char>(dice_());
  }
  reply.announced = reply.bytes.size();
}

Desk::~Desk() {
  close();
}

PluggedCamera& Desk::plugIn(const CameraSpec& spec) {
  std::string id = shortNameOf(spec);
  for (int number = 2; find(id) != nullptr; ++number) {
    id = shortNameOf(spec) + "-" + std::to_string(number);
  }
  return *cameras_.emplace_back(
      std::make_unique<PluggedCamera>(spec, std::move(id), [this] { noteChange(); }));
}

PluggedCamera* Desk::find(std::string_view id) const {
  for (const auto& camera : cameras_) {
    if (camera->id() == id) return camera.get();
  }
  return nullptr;
}

std::uint64_t Desk::awaitChange(std::uint64_t seen, std::chrono::milliseconds limit) {
  std::unique_lock lock(guard_);
  changed_.wait_for(lock, limit, [&] { return changes_ != seen || closed_; });
  return changes_;
}

void Desk::close() {
  for (const auto& camera : cameras_) camera->close();
  {
    const std::lock_guard lock(guard_);
    closed_ = true;
  }
  changed_.notify_all();
}

void Desk::noteChange() {
  {
    const std::lock_guard lock(guard_);
    ++changes_;
  }
  changed_.notify_all();
}

}  // namespace qvx::simulator
