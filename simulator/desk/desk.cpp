#include "simulator/desk/desk.h"

#include <algorithm>
#include <numeric>
#include <thread>
#include <utility>

#include "simulator/scene/still.h"

namespace qvx::simulator {

PluggedCamera::PluggedCamera(const CameraDescription& description, std::string id)
    : description_(description), id_(std::move(id)), device_(description, stillOf) {
  faults_.set(description.fault);
}

Reply PluggedCamera::carry(const Transfer& transfer) {
  const std::lock_guard turn(turn_);
  Fault fault;
  Reply reply = with([&](CameraDevice&) {
    fault = pluggedIn_ ? faults_.next() : Fault{.kind = Fault::unplugs};
    return suffer(fault, transfer);
  });
  onHearing();
  const std::uint64_t due_ms = now_ms() + fault.stall_ms;
  while (!closed_ && now_ms() < due_ms) std::this_thread::sleep_for(std::chrono::milliseconds(1));
  return reply;
}

Fault PluggedCamera::fault() const {
  const std::lock_guard lock(guard_);
  return faults_.fault();
}

void PluggedCamera::setFault(const Fault& fault) {
  with([&](CameraDevice&) { faults_.set(fault); });
  onHearing();
}

bool PluggedCamera::isDeaf() const {
  const std::lock_guard lock(guard_);
  const Fault::Kind next = FaultCounter(faults_).next().kind;
  return !pluggedIn_ || next == Fault::fails || next == Fault::unplugs;
}

std::vector<Access> PluggedCamera::accessesAfter(std::uint64_t number) const {
  const std::lock_guard lock(guard_);
  return {std::ranges::upper_bound(accesses_, number, {}, &Access::number), accesses_.end()};
}

std::uint64_t PluggedCamera::now_ms() const {
  using namespace std::chrono;
  const auto sincePowerUp = steady_clock::now() - poweredUp_;
  return static_cast<std::uint64_t>(duration_cast<milliseconds>(sincePowerUp).count());
}

Reply PluggedCamera::suffer(const Fault& fault, const Transfer& transfer) {
  constexpr std::size_t accessesKept = 1000;
  Reply reply;
  if (fault.kind == Fault::fails || fault.kind == Fault::unplugs) {
    reply.text = fault.kind == Fault::fails ? "refused" : "unplugged";
    if (fault.kind == Fault::unplugs) pluggedIn_ = false;
  } else {
    device_.camera.tap.losesWrites = fault.kind == Fault::loses;
    reply = transfer(device_);
    spoil(fault, reply);
  }
  accesses_.push_back(
      {++accessCount_, now_ms(), reply.text, std::exchange(device_.camera.violations, {})});
  if (accesses_.size() > accessesKept) accesses_.pop_front();
  onAccess(accesses_.back());
  return reply;
}

void PluggedCamera::spoil(const Fault& fault, Reply& reply) {
  constexpr std::size_t everyByte = 256, oneRead = 8192;  // oneRead: of a client over HTTP
  const bool overHttp = description_.transport == Transport::wifi;
  std::string& bytes = reply.bytes;
  if (fault.kind == Fault::halves) {
    reply.announced = bytes.size();
    bytes.resize(bytes.size() / 2);
  } else if (fault.kind == Fault::empties) {
    bytes.clear();
  } else if (fault.kind == Fault::fills) {
    bytes.assign(overHttp ? oneRead : bytes.size(), 'x');
  } else if (fault.kind == Fault::junks && overHttp) {
    bytes.resize(everyByte);
    std::iota(bytes.begin(), bytes.end(), '\0');
  } else if (fault.kind == Fault::junks) {
    std::ranges::generate(bytes, [this] { return static_cast<char>(dice_()); });
  }
}

PluggedCamera& Desk::plugIn(const CameraDescription& description) {
  std::string id = shortNameOf(description);
  for (int number = 2; find(id) != nullptr; ++number) {
    id = shortNameOf(description) + "-" + std::to_string(number);
  }
  return *cameras_.emplace_back(std::make_unique<PluggedCamera>(description, std::move(id)));
}

PluggedCamera* Desk::find(std::string_view id) const {
  const auto found =
      std::ranges::find_if(cameras_, [id](const auto& camera) { return camera->id() == id; });
  return found == cameras_.end() ? nullptr : found->get();
}

void Desk::close() {
  for (const auto& camera : cameras_) camera->close();
}

}  // namespace qvx::simulator
