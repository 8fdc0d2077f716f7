// USB 3 cameras: what is found, what is printed, and the requests that the camera sees.
#include "transport/usb3.h"

#include "platform/process.h"
#include "qvx64/api.h"
#include "tests/support/cameras.h"
#include "transport/controller.h"

namespace qvx::tests {
namespace {

using simulator::UsbDevice;

class Usb3 : public CameraTest {
 protected:
  UsbDevice device(int pid, const std::string& instance) {
    return {cameraVendorId, pid, instance, "Camera " + instance,
            "Maker",        {},  true,     simulator::usb3Front(plain)};
  }

  // What it prints.
  std::string open(int result) {
    return printedBy([=] { EXPECT_EQ(U3Open(), result); });
  }

  simulator::Camera plain{0x9B0};
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
  EXPECT_EQ(camera().controller().at(0x03), 7);
  EXPECT_EQ(ReadFromPIC(1, 0x80), 0u) << "read through the bridge, which is not there";
  EXPECT_EQ(journal(), Journal{});
  ec = 31;
  EXPECT_EQ(WriteToSEG(0, 0x03, 0), 31) << "the error of the failed open, not of the transfer";
}

// Two of the families that are asked first refresh the feature register.
TEST_F(Usb3Controller, WriteRefreshesTheFeatureRegisterTwice) {
  WriteToSEG(0, 0x04, 0x10);
  EXPECT_EQ(traffic(), "r62.80 r62.80 w62.04=10");
}

}  // namespace
}  // namespace qvx::tests
