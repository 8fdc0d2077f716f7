// Sequences of calls on machines that answer whatever the fuzzer makes up. The sanitizers look for
// memory errors; results, times and open handles are checked here.
#include <array>
#include <bit>
#include <cstdio>
#include <cstdlib>
#include <limits>
#include <memory>
#include <new>
#include <string>
#include <string_view>
#include <typeinfo>
#include <vector>

#include "api/guard.h"
#include "etlib2/etLib2.h"
#include "qvx64/api.h"
#include "simulator/platform/world.h"
#include "tests/fuzz/arbitrary_machine.h"
#include "tests/support/promises.h"
#include "tests/support/reset_library.h"
#include "transport/wifi.h"

namespace qvx::fuzz {

namespace {

using simulator::world;

constexpr int maxCalls = 24;
constexpr std::uint64_t access_ms = 2000;  // what the machine lets an access take at most

// Ends the process, as a sanitizer does.
[[noreturn]] void broken(const char* what, const std::string& how) {
  std::fprintf(stderr, "broken: %s: %s\n", what, how.c_str());
  std::abort();
}

void checkOpenCounts() {
  using Counts = std::array<int, sizeof(simulator::OpenCounts) / sizeof(int)>;
  for (const int count : std::bit_cast<Counts>(world().open)) {
    if (count < 0) broken("a handle", "closed twice");
  }
}

class Story {
 public:
  explicit Story(Input& input) : input_(input), machine_(input) { current = this; }
  ~Story() {
    world().clock.waitForOthers();  // late workers still ask for answers
    tests::resetLibrary();
    current = nullptr;
  }

  void run() {
    constexpr Act acts[] = {
        &Story::callExport,      &Story::callExport, &Story::callExport,  &Story::callExport,
        &Story::callExport,      &Story::initialize, &Story::initialize,  &Story::pump,
        &Story::callWithoutRoom, &Story::changeMood, &Story::furnish,     &Story::receive,
        &Story::callRegister,    &Story::callI2c,    &Story::callCommand, &Story::callWithThreads};
    for (int calls = 0; calls < maxCalls && !input_.isOver(); ++calls) {
      (this->*input_.oneOf(acts))();
      checkOpenCounts();
    }
  }

 private:
  using Act = void (Story::*)();

  // The application's callback. One that calls FireEvent would call itself for ever.
  static void onEvent() {
    if (current == nullptr || current->inCallback_) return;
    const std::uint64_t start_ms = world().clock.now_ms();
    current->inCallback_ = true;
    current->callExport();
    current->inCallback_ = false;
    current->callbacks_ms_ += world().clock.now_ms() - start_ms;
  }

  void callExport() { call(input_.oneOf(tests::everyExport())); }

  // With workers in threads of their own, which costs as much as hundreds of other calls.
  void callWithThreads() {
    world().workersInline = !input_.oneIn(32);
    callExport();
    world().clock.waitForOthers();
    world().workersInline = true;
  }

  void initialize() {
    SetVideoDeviceIndex(index());
    call(tests::exportNamed("Init"));
  }

  // Checks the result and the time against what the header promises.
  void call(const tests::ExportedCall& exported) {
    const std::uint64_t start_ms = world().clock.now_ms() - callbacks_ms_;
    const std::string result = exported.call(makeArguments());
    const std::uint64_t took_ms = world().clock.now_ms() - callbacks_ms_ - start_ms;
    if (!isAllowed(exported, result)) broken(exported.name, "result " + result);
    if (took_ms > tests::promiseOf(exported.name).limit_ms(access_ms))
      broken(exported.name, "took " + std::to_string(took_ms) + " ms");
  }

  int index() {
    constexpr int indexes[] = {0, 90, -1, 1, 7};
    if (input_.oneIn(2)) return GetVideoDeviceIndex();
    if (input_.oneIn(4)) return input_.oneIn(4) ? anyNumber() : input_.number(-4, 95);
    return input_.oneOf(indexes);
  }
  int anyNumber() {
    using Limits = std::numeric_limits<int>;
    return input_.number(Limits::min(), Limits::max());
  }
  int value() {
    if (input_.oneIn(8)) return anyNumber();
    return input_.oneIn(2) ? input_.number(-1, 6) : input_.number(-8, 247);
  }

  tests::Arguments makeArguments() {
    constexpr double magnifications[] = {1, 0, -1, 1e300, std::numeric_limits<double>::quiet_NaN()};
    static const std::string longName(300, 'x');
    const char* const files[] = {"still.jpg", "", "none\\still.jpg", longName.c_str(), nullptr};
    constexpr int widths[] = {640, 1280, 1600, 2592}, heights[] = {480, 960, 1024, 1944};
    tests::Arguments arguments;
    arguments.index = index();
    const bool isSize = input_.oneIn(4);
    arguments.value = isSize ? input_.oneOf(widths) : value();
    arguments.second = isSize ? input_.oneOf(heights) : value();
    arguments.magnification = input_.oneOf(magnifications);
    arguments.file = input_.oneOf(files);
    arguments.callback = input_.oneIn(4) ? nullptr : onEvent;
    return arguments;
  }

  // With some of the output pointers null.
  void callWithoutRoom() {
    constexpr std::size_t maxModes = 5;
    qvx_long number = value(), first = 0, second = 0, third = 0;
    const auto maybe = [&](qvx_long& output) { return input_.oneIn(2) ? nullptr : &output; };
    GetLensPosLimits(index(), maybe(first), maybe(second));
    GetLensFinePosLimits(index(), maybe(first), maybe(second));
    GetVideoProcAmpValueRange(maybe(number), maybe(first), maybe(second), maybe(third), nullptr);
    const auto widths = std::make_unique<short[]>(maxModes);
    GetWiFiVideoCaps(maybe(first), input_.oneIn(2) ? nullptr : widths.get(), nullptr);
  }

  void pump() {
    if (input_.oneIn(4)) SetEventCallback(onEvent);
    if (input_.oneIn(2)) EnablePressKey(1);
    world().pumpMessages(static_cast<std::uint64_t>(input_.number(1, 1024)));
  }
  void changeMood() { machine_.changeMood(); }
  void furnish() { machine_.furnish(); }

  // The call layer takes lengths and buffers that no export gives it. What it may touch lies in
  // blocks of its own, so that a byte too many is seen.
  using Bytes = std::vector<std::uint8_t>;

  std::uint32_t device() { return static_cast<std::uint32_t>(input_.number(0, 9)); }
  Bytes block() { return Bytes(input_.number<std::size_t>(0, 65)); }

  void callRegister() {
    auto number = static_cast<std::uint32_t>(value());
    const std::uint32_t length = input_.number(0U, 5U);
    std::uint32_t* const room = input_.oneIn(8) ? nullptr : &number;
    guarded([&] {
      etLib2_RegRead_DevNum(device(), number, length, room);
      etLib2_RegWrite_DevNum(device(), number, length, room);
      etLib2_SelectI2cBus_DevNum(device(), static_cast<std::uint8_t>(number), length);
    });
  }

  void callI2c() {
    constexpr std::uint32_t slaves[] = {0xA0, 0x62, 0x78, 0xFFFFFFFF};
    const auto length = [](const Bytes& bytes) { return static_cast<std::uint32_t>(bytes.size()); };
    const std::uint32_t slave = input_.oneOf(slaves);
    Bytes address = block(), data = block();
    guarded([&] {
      etLib2_I2cRead_DevNum(device(), slave, length(address), address.data(), length(data),
                            data.data());
      etLib2_I2cWrite_DevNum(device(), slave, length(address), address.data(), length(data),
                             data.data());
    });
  }

  void callCommand() {
    constexpr std::size_t maxBytes = 32;
    const auto code = static_cast<std::uint8_t>(value());
    Bytes sent(input_.number<std::size_t>(0, maxBytes)), fetched(maxBytes);
    guarded([&] {
      etLib2_Custom_CMD_Write(device(), code, static_cast<std::uint8_t>(sent.size()), sent.data());
      etLib2_Custom_CMD_Read(device(), code, input_.number<std::uint8_t>(0, 255), fetched.data());
    });
  }

  // The receive buffer that HTTP client libraries fill, here in two parts.
  void receive() {
    std::vector<std::uint8_t> bytes(input_.byte());
    MemoryStruct buffer{nullptr, 0};
    WriteMemoryCallback(bytes.data(), 1, bytes.size(), &buffer);
    WriteMemoryCallback(bytes.data(), bytes.size(), 1, &buffer);
    std::free(buffer.memory);
  }

  static Story* current;

  Input& input_;
  Machine machine_;
  bool inCallback_ = false;
  std::uint64_t callbacks_ms_ = 0;  // that callbacks have taken so far
};

Story* Story::current = nullptr;

}  // namespace

}  // namespace qvx::fuzz

// Only exhausted memory may make the library throw: anything else would be a check that is missing,
// hidden by the guards of the exports. jsoncpp throws at what is nested too deeply.
extern "C" void __interceptor___cxa_throw(void*, std::type_info*, void (*)(void*));
extern "C" [[noreturn]] void __cxa_throw(void* exception, std::type_info* type,
                                         void (*destroy)(void*)) {
  const bool isJson = std::string_view(type->name()).starts_with("N4Json");
  if (!isJson && *type != typeid(std::bad_alloc)) qvx::fuzz::broken("an exception", type->name());
  __interceptor___cxa_throw(exception, type, destroy);
  std::abort();
}

// The library prints what it learns of USB 3 cameras.
extern "C" int LLVMFuzzerInitialize(int*, char***) {
  return std::freopen("/dev/null", "w", stdout) == nullptr ? 1 : 0;
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size) {
  qvx::fuzz::Input input(bytes, size);
  qvx::fuzz::Story story(input);
  // Every other length is traced, which must make no difference.
  if (size % 2 == 0) qvx::simulator::world().environment["QVX64_TRACE"] = "camera.trace";
  story.run();
  return 0;
}
