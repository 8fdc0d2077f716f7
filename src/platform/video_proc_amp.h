// The picture properties of capture devices (DirectShow on Windows), in the steps in which drivers
// are asked for them. Every handle is one reference to an object of the system; what is not
// released stays until the process ends. All functions need COM on the calling thread.
#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <string>

namespace qvx::platform {

struct InputList;
struct CaptureFilter;
struct FilterGraph;
struct CaptureBuilder;
struct StreamConfig;
struct VideoProcAmp;

// A picture property by its number in api.h, where all are listed. Any other number is allowed, and
// handed to the driver as it is.
enum class PictureProperty : std::int32_t { brightness = 0, gain = 9, powerLineFrequency = 13 };

struct PropertyRange {
  std::int32_t min, max, step, defaultValue;
};

// The system's list of video inputs. Null when it is empty or cannot be had.
InputList* openInputList();
void release(InputList* list);  // null is ignored, as below

// The filter of the first input, in the system's order, whose display name is wanted. Inputs
// without a display name are passed over. Null when there is none or it cannot be opened.
CaptureFilter* openFilter(InputList& list,
                          const std::function<bool(const std::wstring& displayName)>& isWanted);

// Each null when the system cannot create it.
FilterGraph* createFilterGraph();
void release(FilterGraph* graph);
CaptureBuilder* createCaptureBuilder();

// The stream format settings of the filter's capture pin, whatever the media type. Null without.
StreamConfig* findStreamConfig(CaptureBuilder& builder, CaptureFilter& filter);

// Has the driver count its stream formats.
void countCapabilities(StreamConfig& config);

// Null when the filter has no picture properties.
VideoProcAmp* queryVideoProcAmp(CaptureFilter& filter);

// Sets a property and switches its automatic mode off. Whether the driver accepted it is not
// reported.
void setProperty(VideoProcAmp& amplifier, PictureProperty property, std::int32_t value);

// Nothing when the driver refuses: mostly for a property that the camera does not have.
std::optional<std::int32_t> getProperty(VideoProcAmp& amplifier, PictureProperty property);
std::optional<PropertyRange> getPropertyRange(VideoProcAmp& amplifier, PictureProperty property);

}  // namespace qvx::platform
