#include "tests/fuzz/arbitrary_machine.h"

#include <algorithm>
#include <array>
#include <atomic>
#include <cstdio>
#include <cwchar>
#include <new>

namespace qvx::fuzz {

using namespace simulator;

namespace {

constexpr std::uint64_t longStall_ms = 1000;  // two make up the time a camera access may take
constexpr std::size_t readCapacity = 8192;

// Four bytes of input make a reply: the last of them fills the rest. One pattern stands for memory
// that is exhausted on the way.
void answer(Input& input, Room reply, std::uint8_t sent = 0) {
  constexpr std::array<std::uint8_t, 4> exhausted = {0xFF, 0, 0xFF, 0};
  std::array<std::uint8_t, 4> head{};
  for (std::uint8_t& byte : head) byte = input.registerValue(sent);
  if (head == exhausted) throw std::bad_alloc();
  std::fill(reply.begin(), reply.end(), head.back());
  std::copy_n(head.begin(), std::min(head.size(), reply.size()), reply.begin());
}

// Replies with what the input says, sometimes with a byte that it was just sent.
class MadeUpCamera final : public CameraPort {
 public:
  // A bit for each property set that it supports: registers, commands, and the others.
  explicit MadeUpCamera(Input& input, int sets = 0) : input_(input), sets_(sets) {}

  bool supports(const PropertySetId& set) override {
    return (sets_ & (set == bridgeRegisterSet ? 1 : set == bridgeCommandSet ? 2 : 4)) != 0;
  }
  bool setProperty(const PropertySetId&, std::uint32_t, Bytes bytes) override {
    sent_ = bytes[1 % bytes.size()];  // the first byte that is not a code
    return true;
  }
  bool getProperty(const PropertySetId&, std::uint32_t, Room bytes) override {
    answer(input_, bytes, sent_);
    return true;
  }
  bool setFeature(Bytes report) override {
    sent_ = report[1];  // behind the report id
    return true;
  }
  bool getFeature(Room report) override {
    answer(input_, report, sent_);
    return true;
  }
  std::optional<std::size_t> transfer(const UsbSetup& setup, Room buffer) override {
    if (setup.requestType < 0x80) return buffer.size();
    answer(input_, buffer);
    const std::uint8_t outcome = input_.byte();
    if (outcome == 0xFF) world().clock.sleep(longStall_ms);
    if (outcome >= 0xF0) return std::nullopt;
    return outcome < 0x80 ? buffer.size() : outcome;
  }

 private:
  Input& input_;
  int sets_;
  std::atomic<std::uint8_t> sent_ = 0;
};

std::vector<std::string> pieces(const std::string& text, std::size_t length) {
  std::vector<std::string> parts;
  for (std::size_t at = 0; at < text.size(); at += length) parts.push_back(text.substr(at, length));
  return parts;
}

int productId(Input& input) {
  constexpr int blocks[] = {0x9E0, 0x9C0, 0x9B0, 0x9D0, 0x9A0, 0x990, 0x980, 0x970,
                            0x960, 0x920, 0x910, 0x890, 0x870, 0x880, 0x840, 0x000};
  return input.oneOf(blocks) + input.number(0, 15);
}

std::wstring path(Input& input) {
  constexpr std::size_t markerPositions[] = {20, 20, 20, 20, 0, 1, 600, 601, 3000};
  wchar_t marker[32];
  std::swprintf(marker, std::size(marker), L"vid_3c7e&pid_%04x&mi_00#", productId(input));
  std::wstring path = std::wstring(input.oneOf(markerPositions), L'A') + marker;
  if (input.oneIn(8)) path.resize(input.number<std::size_t>(0, path.size()));
  if (input.oneIn(8) && !path.empty()) {
    path[input.number<std::size_t>(0, path.size() - 1)] = input.number<wchar_t>(0, 0x10FFFF);
  }
  return path;
}

VideoInput videoInput(Input& input, PictureControls& picture) {
  VideoInput device{path(input), L"Microscope", {}, nullptr, !input.oneIn(8)};
  if (input.oneIn(8)) device.name = std::nullopt;
  const int nodes = input.number(0, 3);
  for (int i = 0; i < nodes; ++i) {
    const bool isOther = input.oneIn(4);
    device.nodes.push_back(isOther ? nullptr
                                   : std::make_shared<MadeUpCamera>(input, input.number(0, 7)));
  }
  if (!input.oneIn(4)) device.picture = &picture;
  return device;
}

HidInterface hidInterface(Input& input, std::size_t number) {
  HidInterface interface {
    "hid#" + std::to_string(number), 2, {0x87, 0x93, 0x97}, std::make_shared<MadeUpCamera>(input)
  };
  if (input.oneIn(4)) interface.device = nullptr;
  if (input.oneIn(4)) interface.featureItems = input.number<std::size_t>(0, 4);
  if (input.oneIn(8)) interface.featureItems = std::nullopt;
  if (input.oneIn(8)) interface.featureReportIds.resize(input.number<std::size_t>(0, 3));
  return interface;
}

UsbDevice usbDevice(Input& input) {
  constexpr std::size_t textLengths[] = {4, 0, 255, 256, 1000};
  constexpr std::size_t pipeCounts[] = {2, 0, 1, 300};
  const auto text = [&] { return std::string(input.oneOf(textLengths), '%'); };
  // The input is read in the order of the members.
  UsbDevice device{input.oneIn(8) ? 0 : 0x3C7E,
                   productId(input),
                   text(),
                   text(),
                   text(),
                   std::vector<UsbPipe>(input.oneOf(pipeCounts), {0x81, 2, 255, 65535}),
                   !input.oneIn(4),
                   nullptr};
  if (!input.oneIn(4)) device.endpoint = std::make_shared<MadeUpCamera>(input);
  return device;
}

std::string rawText(Input& input) {
  std::string text(input.byte() % 64, '\0');
  for (char& character : text) character = static_cast<char>(input.byte());
  return text;
}

// One or two controls; their values are texts, numbers or something else.
std::string controlDocument(Input& input) {
  constexpr const char* names[] = {"Brightness", "Contrast", "Hue", "Saturation"};
  constexpr const char* values[] = {"\"%d\"", "%d", "null", "{}", "-1e99", "\"%d", "99999999999%d"};
  constexpr const char* members[] = {"value", "min", "max", "step", "default"};
  std::string document = R"({"controls":[)";
  for (int count = 1 + input.byte() % 2; count > 0; --count) {
    document += std::string(R"({"name":")") + names[input.byte() % std::size(names)] + '"';
    for (const char* const member : members) {
      char value[40];
      const std::uint8_t kind = input.byte();
      std::snprintf(value, sizeof value, values[kind % std::size(values)], kind);
      document += std::string(",\"") + member + "\":" + value;
    }
    document += count > 1 ? "}," : "}";
  }
  return document + "]}";
}

// As the camera writes them, the product id's digits stand 25 characters behind the vendor id.
std::string deviceList(Input& input) {
  std::string list;
  for (int count = (input.byte() + 1) % 3; count > 0; --count) {
    char entry[64];
    std::snprintf(entry, sizeof entry, "\"0x3c7e\", \"idProduct\": \"0x0%c%02x\"",
                  "9890"[input.byte() % 4], input.byte());
    list += entry;
  }
  return list;
}

std::string bodyFor(Input& input, const std::string& url) {
  if (url.ends_with("usbdevlist.json")) return deviceList(input);
  if (url.ends_with("input_0_control.json")) return controlDocument(input);
  if (url.ends_with("snapshot")) return rawText(input);
  return "res:" + std::to_string(input.registerValue());
}

HttpAnswer answerTo(Input& input, const std::string& url) {
  std::string body = bodyFor(input, url);
  const std::uint8_t way = input.byte();
  const int change = way < 0xC0 ? -1 : way % 10;
  if (change == 0) return {false, {}};
  if (change == 1) return {true, {}, input.byte() % 2 == 0};
  if (change == 2) return {true, pieces(body, 1 + input.byte() % 64), input.byte() % 2 == 0};
  if (change == 3) return {true, {rawText(input)}};
  if (change == 4) body.insert(0, readCapacity - 100 + input.byte(), '[');
  if (change == 5) body.insert(input.byte() % (body.size() + 1), 1, '\0');
  if (change == 6) body.insert(std::min<std::size_t>(4, body.size()), "-4294967296");
  if (change == 7) body.resize(std::min<std::size_t>(4, body.size()));
  if (change == 8) throw std::bad_alloc();
  if (change == 9) world().clock.sleep(longStall_ms);
  return {true, {body}};
}

}  // namespace

Machine::Machine(Input& input) : input_(input) {
  resetWorld();
  World& machine = world();
  machine.keepsJournal = false;
  machine.workersInline = true;
  machine.permits = [this] { return permits(); };
  machine.workerIsLate = [this] { return isLate(); };
  furnish();
}

void Machine::changeMood() {
  mood_ = static_cast<Mood>(input_.number(0, 3));
}

bool Machine::permits() {
  if (mood_ != Mood::capricious) return mood_ != Mood::refusing;
  const std::uint8_t whim = input_.byte();
  const bool onWorker = std::this_thread::get_id() != applicationThread_;
  if (whim >= 0xF0 && onWorker) world().clock.sleep(longStall_ms);
  return whim < 0xD0;
}

bool Machine::isLate() {
  return mood_ == Mood::silent || (mood_ == Mood::capricious && input_.byte() >= 0xE0);
}

void Machine::furnish() {
  constexpr std::size_t counts[] = {1, 0, 2, 10}, hidCounts[] = {1, 0, 2, 30};
  World& machine = world();
  machine.wifi = nullptr;
  if (!input_.oneIn(4))
    machine.wifi = [this](const std::string& url) { return answerTo(input_, url); };
  machine.videoInputs.clear();
  for (std::size_t count = input_.oneOf(counts); count > 0; --count) {
    machine.videoInputs.push_back(videoInput(input_, picture_));
  }
  machine.hidInterfaces.emplace();
  for (std::size_t count = input_.oneOf(hidCounts); count > 0; --count) {
    machine.hidInterfaces->push_back(hidInterface(input_, count));
  }
  if (input_.oneIn(8)) machine.hidInterfaces = std::nullopt;
  machine.usbDevices.clear();
  for (int count = input_.number(0, 2); count > 0; --count) {
    machine.usbDevices.push_back(usbDevice(input_));
  }
  machine.libusbkInstalled = !input_.oneIn(8);
  machine.threadsStart = !input_.oneIn(8);
  machine.diskRoom = std::nullopt;
  if (input_.oneIn(8)) machine.diskRoom = input_.number<std::size_t>(0, 5000);
}

}  // namespace qvx::fuzz
