// The platform's functions that a trace records, as the system itself gives them. Above the seam
// only src/trace/platform.cpp calls these: it defines the functions of the same names that
// everybody else calls. Their contracts stand in the headers of their facilities.
#pragma once

#include "platform/hid.h"
#include "platform/internet.h"
#include "platform/libusbk.h"
#include "platform/process.h"
#include "platform/timers.h"
#include "platform/topology.h"
#include "platform/video_inputs.h"
#include "platform/video_proc_amp.h"
#include "platform/workers.h"

namespace qvx::platform::system {

std::optional<std::vector<std::string>> listHidInterfaces();
std::unique_ptr<HidDevice> openHid(const std::string& path);

InternetHandle openUrl(InternetHandle session, const std::wstring& url);
bool readUrl(InternetHandle request, void* buffer, std::uint32_t capacity, std::uint32_t& received);

bool LstK_Init(KLST_HANDLE* deviceList, int flags);
bool LstK_FindByVidPid(KLST_HANDLE deviceList, int vid, int pid, KLST_DEVINFO** deviceInfo);
bool LstK_MoveNext(KLST_HANDLE deviceList, KLST_DEVINFO** deviceInfo);
bool LibK_LoadDriverAPI(KUSB_DRIVER_API* driverApi, int driverId);
bool UsbK_ControlTransfer(KUSB_HANDLE interfaceHandle, WINUSB_SETUP_PACKET setup,
                          std::uint8_t* buffer, std::uint32_t length, std::uint32_t* transferred);

void tellDebugger(const std::string& line);

void pause(std::uint32_t milliseconds);
void startThreadTimer(std::uintptr_t identifier, std::uint32_t period_ms, TimerProcedure procedure);

std::vector<std::shared_ptr<TopologyFilter>> openTopologyFilters();
std::vector<VideoInput> listVideoInputs();

void setProperty(VideoProcAmp& amplifier, PictureProperty property, std::int32_t value);
std::optional<std::int32_t> getProperty(VideoProcAmp& amplifier, PictureProperty property);
std::optional<PropertyRange> getPropertyRange(VideoProcAmp& amplifier, PictureProperty property);

std::optional<std::uint32_t> runOnWorker(std::function<std::uint32_t()> task,
                                         std::uint32_t limit_ms);
std::shared_ptr<NamedMutex> openNamedMutex(const char* name);

}  // namespace qvx::platform::system
