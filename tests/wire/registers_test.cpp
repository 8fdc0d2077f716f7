// Registers of controller and sensors over USB 3 and Wi-Fi: where the transports differ, and reads
// from writes; how a USB 3 camera is found and opened; and what
// the feature register tells.
#include "models/families.h"
#include "platform/process.h"
#include "qvx64/api.h"
#include "state/kept_state.h"
#include "tests/support/cameras.h"
#include "tests/support/product_ids.h"
#include "tests/support/wifi_registers.h"
#include "transport/controller.h"
#include "transport/sensor.h"

namespace qvx::tests {
namespace {

using simulator::UsbDevice;

class Usb3 : public CameraTest {
 protected:
  UsbDevice device(int pid, const std::string& instance) {
    return {cameraVendorId, pid, instance, "Camera " + instance, "Maker", {}, true, plain.port()};
  }

  // What it prints.
  std::string open(int result) {
    return printedBy([=] { EXPECT_EQ(U3Open(), result); });
  }

  simulator::VirtualBridge plain{0x9B0};
};

TEST_F(Usb3, OpensListsPipesOnceAndAsksForTheDescriptor) {
  nPid = 0x9B0;
  m_EnableMT = 1;
  machine().usbDevices = {device(0x9B0, "A")};
  machine().usbDevices[0].pipes = {{0x81, 2, 4, 1024}, {0x02, 3, 0, 64}};
  EXPECT_EQ(open(1),
            "Looking for device vid/pid 3C7E/09B0..\n"
            "Using 3C7E:09B0 (A): Camera A - Maker\n"
            "Device opened successfully!\n"
            "Pipe Information:\n"
            "  PipeId=0x81 PipeType=0x02 Interval=4 MaximumPacketSize=1024\n"
            "  PipeId=0x02 PipeType=0x03 Interval=0 MaximumPacketSize=64\n");
  EXPECT_EQ(journal(), (Journal{"usb open 0", "usb 80 06 0100 0000 18"}));
  EXPECT_EQ(nUSBVer, 3);
  EXPECT_EQ(m_EnableMT, 0);
  EXPECT_EQ(GetVideoDeviceCount(), 1);
  EXPECT_TRUE(open(1).ends_with("Pipe Information:\n"));
  EXPECT_EQ(machine().open.usbHandles, 2);
  EXPECT_EQ(machine().open.deviceLists, 2);
}

TEST_F(Usb3, SaysWhatIsMissing) {
  machine().libusbkInstalled = false;
  EXPECT_EQ(open(0), "Error initializing device list.\n");
  EXPECT_EQ(GetVideoDeviceCount(), 0);
  machine().libusbkInstalled = true;
  EXPECT_EQ(open(0), "Device list empty.\n");
  EXPECT_EQ(platform::lastError(), 1167u);
  nPid = 0x9B1;
  VideoDeviceIndex = 0;
  machine().usbDevices = {device(0x9B0, "A")};
  EXPECT_EQ(open(0),
            "Looking for device vid/pid 3C7E/09B1..\n"
            "Device vid/pid 3C7E/09B1 not found.\n\n"
            "USAGE: QVX64.dll vid=3C7E pid=09B1\n\n");
  EXPECT_EQ(machine().open.deviceLists, 0);
  EXPECT_EQ(GetVideoDeviceCount(), 0);
}

// The genuine cursor stands before the first record: index n is the n-th step, and a walk over the
// whole list ends on its last record.
TEST_F(Usb3, DeviceIndexMovesTheChoiceAlongTheList) {
  nPid = 0x9B1;
  machine().usbDevices = {device(0x9B0, "A"), device(0x9B1, "B"), device(0x9BF, "C")};
  for (const auto& [index, chosen] :
       {std::pair(0, "(B)"), {1, "(A)"}, {2, "(B)"}, {3, "(C)"}, {90, "(C)"}, {-1, "(C)"}}) {
    VideoDeviceIndex = index;
    EXPECT_NE(open(1).find(chosen), std::string::npos) << index;
  }
}

TEST_F(Usb3, LeavesOtherCamerasAlone) {
  for (const int pid : {0x870, 0x9AF, 0x9C0}) {
    nPid = pid;
    machine().usbDevices = {device(pid, "A")};
    EXPECT_NE(open(0).find("Using"), std::string::npos) << pid;
    EXPECT_EQ(journal(), Journal{});
    EXPECT_EQ(GetVideoDeviceCount(), 1) << "the list is kept";
  }
}

TEST_F(Usb3, GoesOnAfterAFailedOpen) {
  nPid = 0x9B0;
  machine().usbDevices = {device(0x9B0, "A")};
  machine().usbDevices[0].opens = false;
  EXPECT_TRUE(
      open(0).ends_with("Usb.Init failed. ErrorCode: 0000001Fh\n"
                        "Device opened successfully!\nPipe Information:\n"));
  EXPECT_EQ(ec, 31u);
  machine().usbDevices[0].opens = true;
  open(1);
  EXPECT_EQ(ec, 31u) << "the last failure stays";
}

class Usb3Controller : public Usb3 {
 protected:
  Usb3Controller() {
    plugUsb3(0x9B0);
    name(1, 0x9B5);
  }
};

TEST_F(Usb3Controller, ReadsWithASetAndAGet) {
  set(0x80, 0x52);
  EXPECT_EQ(ReadFromPIC(0, 0x180), 0x52u) << "the low byte names the register";
  EXPECT_EQ(journal(), (Journal{"usb 21 01 0303 0300 2: 62 80", "usb A1 81 0303 0300 1"}));
  handle = nullptr;
  EXPECT_EQ(ReadFromPIC(0, 0x80), 255u) << "without an answer";
}

TEST_F(Usb3Controller, WritesForTheWholeBlockButReadsForOneProduct) {
  EXPECT_EQ(WriteToSEG(1, 0x03, 0x107), 0);
  EXPECT_EQ(nPid, 0x9B5);
  EXPECT_EQ(nTmpIdx, 1);
  EXPECT_EQ(journal(), Journal{"usb 21 01 0300 0300 3: 62 03 07"});
  EXPECT_EQ(camera().controller.at(0x03), 7);
  EXPECT_EQ(ReadFromPIC(1, 0x80), 0u) << "read through the bridge, which is not there";
  EXPECT_EQ(journal(), Journal{});
  ec = 31;
  EXPECT_EQ(WriteToSEG(0, 0x03, 0), 31) << "the error of the failed open, not of the transfer";
  EXPECT_TRUE(WriteTo90x(0, 0x3500, 1)) << "likewise";
  ec = 0;
  machine().set({simulator::Fault::fails});
  EXPECT_FALSE(WriteTo90x(0, 0x3500, 1));
}

// Two of the families that are asked first refresh the feature register.
TEST_F(Usb3Controller, WriteRefreshesTheFeatureRegisterTwice) {
  WriteToSEG(0, 0x04, 0x10);
  EXPECT_EQ(traffic(), "r62.80 r62.80 w62.04=10");
}

// Hardware variants of one product id are told apart by the feature register.
TEST_F(CameraTest, FamiliesHaveExactlyTheirMembers) {
  WifiRegisters camera;
  machine().wifi = camera.server();
  nTmpIdx = wifiDeviceIndex;
  const Rows<const char*, Family, Ids, std::uint32_t, std::uint32_t> variants = {
      {"isVR4xxx_2Series", isVR4xxx_2Series, "9C0-9C6", 0x04, 0x04},
      {"isVR4xxx_3Series", isVR4xxx_3Series, "9C0-9C6", 0x06, 0x02},
      {"isVR3xxx_2Series", isVR3xxx_2Series, "9D0-9D2 9D7-9D8", 0x06, 0x06},
      {"isVR3xxx_3Series", isVR3xxx_3Series, "9D4", 0x06, 0x02},
      {"isVk4xx7_2Series", isVk4xx7_2Series, "9E0-9E6", 0x06, 0x06},
      {"isVk4xx7_3Series", isVk4xx7_3Series, "9E0-9E6", 0x06, 0x02},
      // Whatever it reads. Of these, no other table shows every edge.
      {"isVK3xxx_SEG_Series", isVK3xxx_SEG_Series, "9D0-9D6", 0x00, 0x00},
      {"isVK7xxxR4_2Series", isVK7xxxR4_2Series, vk7xxxR4_2, 0x00, 0x00}};
  for (const auto& [name, isMember, members, mask, value] : variants) {
    for (int pid = 0x910; pid <= 0x9FF; ++pid) {
      for (const std::uint32_t features : {0x00U, 0x02U, 0x04U, 0x06U, 0xFAU, 0xFFU}) {
        camera.values[0x80] = camera.values[0x84] = static_cast<int>(features);
        const bool fits = (features & mask) == value;
        EXPECT_EQ(isMember(pid), members.contains(pid) && fits ? 1 : 0)
            << name << " " << std::hex << pid << " with " << features;
        EXPECT_TRUE(mask == 0 || ul84 == features) << name;
      }
    }
  }
}

class WifiSensor : public CameraTest {
 protected:
  WifiSensor() { answerWifi({"res:77"}); }
};

TEST_F(WifiSensor, IsReadByFamilyAndWrittenByOperation) {
  const Rows<int, const char*, const char*, const char*> rows = {
      {0x970, "r78.3500 p5", "", "w78.3500=12"},
      {0x922, "r78.3500 p5", "", "w78.3500=12"},
      {0x921, "r48.3500 p5", "", "w48.3500=12"},
      {0x9B0, "r48.3500 p5", "", "w48.3500=12"},
      {0x870, "r48.3500 p5", "p10 w48.3500=12", "w48.3500=12"},
      {0x9A0, "r42.3500 p5", "p10 w42.3500=12", "w42.3500=12"}};
  for (const auto& [pid, read90, write88, writeEmpia] : rows) {
    SCOPED_TRACE(pid);
    nPid = pid;
    EXPECT_EQ(ReadFrom90x(90, 0x3500), 77u);
    EXPECT_EQ(traffic(), read90);
    EXPECT_FALSE(WriteTo90x(90, 0x3500, 0x12));
    EXPECT_EQ(traffic(), "p10 w78.3500=12");
    nTmpIdx = 0;  // whose feature register asks nothing of Wi-Fi
    WriteEmpia_Sensor(0x3500, 0x12);
    EXPECT_EQ(traffic(), writeEmpia);
    EXPECT_EQ(WriteTo88x(90, 0x3500, 0x12), 0);
    EXPECT_TRUE(traffic().ends_with(write88));
    EXPECT_EQ(nTmpIdx, 90);
  }
}

TEST_F(WifiSensor, OfAnotherFamilyReadsAsTheDeviceWithoutAPath) {
  nPid = 0x970;
  nCurrPid = 0x971;
  EXPECT_EQ(ReadFrom88x(90, 0x15), 0u);
  EXPECT_EQ(nPid, 0x971);
  nPid = 0;
  nCurrPid = 0x9A0;
  WriteTo88x(90, 0x25, 1);
  EXPECT_EQ(nPid, 0x9A0);
}

// A read that is answered leaves its session and its request, a write the request alone.
TEST_F(WifiSensor, LeavesHandlesAsTheChannelDoes) {
  using namespace std::string_literals;
  const Rows<bool, std::vector<std::string>, std::uint32_t, std::pair<int, int>> rows = {
      {true, {"res:77"}, 77, {1, 2}},
      {true, {"res:12\0003"s}, 12, {1, 2}},
      {true, {}, 0, {0, 1}},
      {false, {}, 0, {0, 0}}};
  nPid = 0x970;
  for (const auto& [isThere, chunks, value, leftOpen] : rows) {
    answerWifi(chunks, false, isThere);
    machine().open = {};
    EXPECT_EQ(ReadEmpia_Sensor(0x3500), value);
    WriteEmpia_Sensor(0x3500, 1);
    EXPECT_EQ(openHttp(), leftOpen);
  }
}

}  // namespace
}  // namespace qvx::tests
