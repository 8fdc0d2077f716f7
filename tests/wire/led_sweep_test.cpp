// LED states of all 4096 product ids, with every register value that a rule looks at: a digest per
// block of 16 ids tells which ids are told something else after a change. The call layer is
// replaced by one that notes calls and answers from a table, since a worker thread for each access
// would take minutes; it is driven for real in led_state_test.cpp.
#include <array>
#include <map>

#include "controls/lighting.h"
#include "etlib2/etLib2.h"
#include "qvx64/api.h"
#include "simulator/platform/world.h"
#include "state/device_state.h"
#include "tests/support/library.h"
#include "tests/support/wifi_registers.h"
#include "transport/usb3.h"

namespace qvx {

namespace {

std::array<std::uint8_t, 256> controller;  // of the camera at every device number

std::uint32_t note(const char* what, std::uint32_t device, std::uint32_t first,
                   std::uint32_t second) {
  char line[64];
  std::snprintf(line, sizeof line, "%s %u %X %X", what, device, first, second);
  simulator::world().note([&] { return std::string(line); });
  return 0;
}

}  // namespace

int etLib2_Init() {
  return 0;
}
void etLib2_Release() {}
int etLib2_GetDevTotalNum() {
  return 0;
}

void etLib2_SelectI2cBus_DevNum(std::uint32_t DevNum, std::uint8_t bus, std::uint32_t fast) {
  note("bus", DevNum, bus, fast);
}
std::uint32_t etLib2_RegRead_DevNum(std::uint32_t DevNum, std::uint32_t address, std::uint32_t,
                                    std::uint32_t*) {
  return note("register", DevNum, address, 0);
}
std::uint32_t etLib2_RegWrite_DevNum(std::uint32_t DevNum, std::uint32_t address, std::uint32_t,
                                     const std::uint32_t* value) {
  return note("set register", DevNum, address, *value);
}
std::uint32_t etLib2_I2cRead_DevNum(std::uint32_t DevNum, std::uint32_t slave, std::uint32_t,
                                    std::uint8_t* subAddress, std::uint32_t, std::uint8_t* data) {
  *data = controller[*subAddress];
  return note("read", DevNum, slave, *subAddress);
}
std::uint32_t etLib2_I2cWrite_DevNum(std::uint32_t DevNum, std::uint32_t slave, std::uint32_t,
                                     std::uint8_t* subAddress, std::uint32_t,
                                     const std::uint8_t* data) {
  return note("write", DevNum, slave << 8 | *subAddress, *data);
}
std::uint32_t etLib2_Custom_CMD_Read(std::uint32_t DevNum, std::uint8_t command, std::uint8_t,
                                     std::uint8_t* buffer) {
  return note("ask", DevNum, command, buffer[0]);
}
std::uint32_t etLib2_Custom_CMD_Write(std::uint32_t DevNum, std::uint8_t command, std::uint8_t,
                                      const std::uint8_t* buffer) {
  return note("command", DevNum, command, static_cast<std::uint32_t>(buffer[0] << 8 | buffer[1]));
}

namespace tests {
namespace {

struct Registers {
  std::uint8_t features, kind, board;  // 0x80, 0x83, 0x84
};

class Usb3Registers final : public simulator::ControlEndpoint {
 public:
  std::optional<std::size_t> transfer(const simulator::UsbSetup& setup,
                                      std::span<std::uint8_t> buffer) override {
    if (setup.requestType == 0x21 && setup.value == 0x0303) register_ = buffer[1];
    if (setup.requestType == 0xA1) buffer[0] = controller[register_];
    return buffer.size();
  }

 private:
  std::uint8_t register_ = 0;
};

// A block of 16 product ids and the digest of what they are told; it stands for the blocks after it
// up to the next one listed.
using Digests = std::map<int, std::uint32_t>;

class LedSweep : public LibraryTest {
 protected:
  LedSweep() { s_mainhttp = "http://127.0.0.1:8080/"; }

  void openUsb3() {
    machine().usbDevices = {
        {cameraVendorId, 0x9B0, "", "", "", {}, true, std::make_shared<Usb3Registers>()}};
    nPid = 0x9B0;
    testing::internal::CaptureStdout();
    U3Open();
    testing::internal::GetCapturedStdout();
    journal();
  }

  void program(int pid, const Registers& registers) {
    controller[0x80] = registers.features;
    controller[0x83] = registers.kind;
    controller[0x84] = registers.board;
    wifi.values = {{0x80, registers.features}, {0x83, registers.kind}};
    char path[32];
    std::snprintf(path, sizeof path, "pid_%04x", static_cast<unsigned>(pid));
    strOrvaDevice[0] = path;
    nCurrPid = pid;
    ul80 = registers.features;  // what an earlier call may have left
    ul84 = registers.board;
    SEGCount.fill(0);
  }

  void add(const std::vector<std::string>& lines) {
    for (const std::string& line : lines) {
      for (const char character : line + '\n') {
        digest = (digest ^ static_cast<std::uint8_t>(character)) * 16777619;
      }
    }
  }

  std::uint32_t digestOf(int block, int device, const std::vector<Registers>& combinations) {
    digest = 2166136261;  // FNV-1a
    for (int pid = 16 * block; pid < 16 * (block + 1); ++pid) {
      for (const Registers& registers : combinations) {
        for (const int state : {0, 1, 2, 3}) {
          program(pid, registers);
          nTmpIdx = device;
          SetLEDState(device, state);
          add(journal());
        }
      }
    }
    return digest;
  }

  void expect(const Digests& listed, int device, const std::vector<Registers>& newer) {
    // Older models look at no register, so that two cameras of them do.
    const std::vector<Registers> older = {{0xFF, 0, 0xFF}, {0x17, 4, 5}};
    std::uint32_t expected = 0;
    for (int block = 0; block < 256; ++block) {
      if (listed.count(block) != 0) expected = listed.at(block);
      const bool isNewer = block >= 0x96 && block <= 0x9E;
      const std::uint32_t found = digestOf(block, device, isNewer ? newer : older);
      EXPECT_EQ(found, expected) << "product ids 0x" << std::hex << block << "0 on: {0x" << block
                                 << ", 0x" << found << '}';
    }
  }

  WifiRegisters wifi;
  std::uint32_t digest = 0;
};

TEST_F(LedSweep, UsbCameras) {
  openUsb3();
  std::vector<Registers> combinations;
  for (const int features : {0x00, 0x01, 0x02, 0x03, 0x04, 0x05, 0x06, 0x0A, 0x0B, 0x10, 0xFF}) {
    for (const int kind : {0, 4}) {
      for (const int board : {4, 5, 255}) {
        combinations.push_back({static_cast<std::uint8_t>(features),
                                static_cast<std::uint8_t>(kind), static_cast<std::uint8_t>(board)});
      }
    }
  }
  const Digests listed = {{0x00, 0xE058AAC5}, {0x87, 0xFDF50BD5}, {0x88, 0x30920D15},
                          {0x89, 0x6CFDD31D}, {0x8A, 0xE058AAC5}, {0x91, 0xEC5871CD},
                          {0x92, 0xEB4D8F69}, {0x93, 0xE058AAC5}, {0x96, 0x915C0145},
                          {0x97, 0x42032365}, {0x98, 0x0E5F8E35}, {0x99, 0x08149A3D},
                          {0x9A, 0xC32704C5}, {0x9B, 0x3C664AEC}, {0x9C, 0x0BF5BBED},
                          {0x9D, 0xAF865B3D}, {0x9E, 0x9225E595}, {0x9F, 0xE058AAC5}};
  expect(listed, 0, combinations);
}

TEST_F(LedSweep, WifiCameras) {
  machine().wifi = wifi.server();
  const std::vector<Registers> combinations = {{0x00, 0, 0}, {0x00, 4, 0}, {0x01, 0, 0},
                                               {0x01, 4, 0}, {0xFF, 0, 0}, {0xFF, 4, 0}};
  const Digests listed = {{0x00, 0x960E09C5}, {0x87, 0x9DC041E5}, {0x88, 0x3A623FE5},
                          {0x89, 0x7A17E925}, {0x8A, 0x960E09C5}, {0x91, 0x91313C0D},
                          {0x92, 0xC9F91D45}, {0x93, 0x960E09C5}, {0x96, 0xADBA6066},
                          {0x97, 0xDF26214E}, {0x98, 0xB20B2545}, {0x99, 0x6BF43556},
                          {0x9A, 0xFBFAB845}, {0x9B, 0x42A31CBA}, {0x9C, 0x4C564FC5},
                          {0x9D, 0xC618A745}, {0x9E, 0xCC988445}, {0x9F, 0x960E09C5}};
  expect(listed, 90, combinations);
}

}  // namespace
}  // namespace tests
}  // namespace qvx
