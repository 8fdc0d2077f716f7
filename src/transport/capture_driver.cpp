#include "transport/capture_driver.h"

#include <cstdio>
#include <string>

#include "platform/com.h"
#include "state/device_state.h"
#include "transport/enumeration.h"

namespace qvx {

namespace {

bool isCurrentDevice(const std::wstring& displayName) {
  std::string path;
  Wchar_tToString(path, displayName.c_str());
  return path == entryOf(strOrvaDevice, VideoDeviceIndex);
}

// Returns the graph for release. The builder, the stream settings and the amplifier stay open, as
// the filter does: all four are left to the process.
platform::FilterGraph* useAmplifier(platform::CaptureFilter& filter, const AmplifierUse& use) {
  platform::FilterGraph* const graph = platform::createFilterGraph();
  platform::CaptureBuilder* const builder = platform::createCaptureBuilder();
  // Never taken back: COM must outlast what stays open.
  platform::initializeCom();
  platform::StreamConfig* const config =
      builder == nullptr ? nullptr : platform::findStreamConfig(*builder, filter);
  if (config != nullptr) platform::countCapabilities(*config);
  platform::VideoProcAmp* const amplifier = platform::queryVideoProcAmp(filter);
  if (amplifier == nullptr) {
    std::printf("\nDevice does not support IAMVideoProcAmp!\n");
  } else {
    use(*amplifier);
  }
  return graph;
}

}  // namespace

bool withAmplifier(const AmplifierUse& use) {
  const platform::ComUse com;
  platform::InputList* const inputs = platform::openInputList();
  platform::CaptureFilter* filter = nullptr;
  if (inputs == nullptr) {
    std::printf("No Device Found!\n");
  } else {
    filter = platform::openFilter(*inputs, isCurrentDevice);
  }
  platform::FilterGraph* const graph = filter == nullptr ? nullptr : useAmplifier(*filter, use);
  platform::release(graph);
  platform::release(inputs);
  return inputs != nullptr;
}

}  // namespace qvx
