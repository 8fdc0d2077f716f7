// The video of a simulated USB camera as applications receive it: through a filter graph with a
// sample grabber.
#include <gtest/gtest.h>

// After the header that it depends on.
#include <windows.h>
#include <dshow.h>
#include <qedit.h>

#include <chrono>
#include <cmath>
#include <condition_variable>

#include "simulator/fronts/capture_filter/com_object.h"
#include "tests/windows/fixtures/simulated_cameras.h"

namespace qvx::tests {
namespace {

using simulator::Camera;
using simulator::CameraDevice;
using simulator::ComPtr;

constexpr CLSID sampleGrabberClass = {
    0xC1F400A0, 0x3F08, 0x11D3, {0x9F, 0x0B, 0x00, 0x60, 0x08, 0x03, 0x9E, 0x37}};
constexpr CLSID nullRendererClass = {
    0xC1F400A4, 0x3F08, 0x11D3, {0x9F, 0x0B, 0x00, 0x60, 0x08, 0x03, 0x9E, 0x37}};

using Frame = std::vector<std::uint8_t>;

template <class Interface>
ComPtr<Interface> create(REFCLSID id) {
  ComPtr<Interface> object;
  CoCreateInstance(id, nullptr, CLSCTX_INPROC_SERVER, __uuidof(Interface), &object);
  return object;
}

// Keeps the last frame received.
class Catcher final : public simulator::ComObject<ISampleGrabberCB> {
 public:
  STDMETHODIMP SampleCB(double, IMediaSample*) override { return E_NOTIMPL; }
  STDMETHODIMP BufferCB(double, BYTE* bytes, LONG size) override {
    const std::lock_guard lock(guard_);
    frame_.assign(bytes, bytes + size);
    ++count_;
    came_.notify_all();
    return S_OK;
  }

  // Waits for the frame after the next one, which may have been rendered before the call. Empty if
  // none comes.
  Frame await() {
    std::unique_lock lock(guard_);
    const int wanted = count_ + 2;
    const bool came =
        came_.wait_for(lock, std::chrono::seconds(30), [&] { return count_ >= wanted; });
    return came ? frame_ : Frame{};
  }

 private:
  std::mutex guard_;
  std::condition_variable came_;
  int count_ = 0;
  Frame frame_;
};

ComPtr<IBaseFilter> firstVideoInput() {
  const auto devices = create<ICreateDevEnum>(CLSID_SystemDeviceEnum);
  ComPtr<IEnumMoniker> monikers;
  devices->CreateClassEnumerator(CLSID_VideoInputDeviceCategory, &monikers, 0);
  ComPtr<IMoniker> moniker;
  ComPtr<IBaseFilter> filter;
  if (monikers != nullptr && monikers->Next(1, &moniker, nullptr) == S_OK) {
    moniker->BindToObject(nullptr, nullptr, __uuidof(IBaseFilter), &filter);
  }
  return filter;
}

// Camera, sample grabber, null renderer.
struct Graph {
  Graph() {
    builder->SetFiltergraph(graph.Get());
    for (IBaseFilter* const filter : {camera.Get(), grabber.Get(), renderer.Get()}) {
      EXPECT_EQ(graph->AddFilter(filter, nullptr), S_OK);
    }
    AM_MEDIA_TYPE type{};
    type.majortype = MEDIATYPE_Video;
    type.subtype = MEDIASUBTYPE_YUY2;
    ComPtr<ISampleGrabber> settings;
    grabber.As(&settings);
    settings->SetMediaType(&type);
    settings->SetCallback(&catcher, 1);
    builder->FindInterface(&PIN_CATEGORY_CAPTURE, nullptr, camera.Get(), __uuidof(IAMStreamConfig),
                           &config);
    graph.As(&control);
  }

  HRESULT connect() {
    return builder->RenderStream(&PIN_CATEGORY_CAPTURE, &MEDIATYPE_Video, camera.Get(),
                                 grabber.Get(), renderer.Get());
  }

  Catcher catcher;  // outlives the graph, which only borrows it
  const ComPtr<IGraphBuilder> graph = create<IGraphBuilder>(CLSID_FilterGraph);
  const ComPtr<ICaptureGraphBuilder2> builder =
      create<ICaptureGraphBuilder2>(CLSID_CaptureGraphBuilder2);
  const ComPtr<IBaseFilter> grabber = create<IBaseFilter>(sampleGrabberClass),
                            renderer = create<IBaseFilter>(nullRendererClass),
                            camera = firstVideoInput();
  ComPtr<IAMStreamConfig> config;
  ComPtr<IMediaControl> control;
};

double meanLuma(const Frame& frame) {
  double sum = 0;
  for (std::size_t i = 0; i < frame.size(); i += 2) sum += frame[i];
  return sum * 2 / static_cast<double>(frame.size());
}

class Video : public testing::Test {
 protected:
  Video() { CoInitializeEx(nullptr, COINIT_MULTITHREADED); }
  ~Video() override { CoUninitialize(); }

  SimulatedCameras cameras_{{"usb:0998,zoom=50"}};
};

TEST_F(Video, FollowsTheLightRunsAgainAndSurvivesItsCamera) {
  Graph graph;
  ASSERT_EQ(graph.connect(), S_OK);
  const auto lumaAfter = [&](void (*change)(Camera&)) {
    EXPECT_TRUE(SUCCEEDED(graph.control->Run()));
    cameras_[0].with([change](CameraDevice& device) { change(device.camera); });
    const Frame frame = graph.catcher.await();
    EXPECT_EQ(frame.size(), 2U * 640 * 480);
    EXPECT_TRUE(SUCCEEDED(graph.control->Stop()));
    return meanLuma(frame);
  };
  const double dark = lumaAfter([](Camera& camera) { camera.sensor.set(0x3503, 7); });
  const double lit = lumaAfter([](Camera& camera) { camera.gpio.setLights(1); });
  EXPECT_GT(lit, dark + 20);
  ASSERT_TRUE(SUCCEEDED(graph.control->Run()));
  cameras_.unplug();
  Sleep(300);
  EXPECT_TRUE(SUCCEEDED(graph.control->Stop()));
}

TEST_F(Video, ComesInTheSizesOfTheModel) {
  int count = 0, bytes = 0;
  ASSERT_EQ(Graph().config->GetNumberOfCapabilities(&count, &bytes), S_OK);
  ASSERT_EQ(static_cast<std::size_t>(count), simulator::videoModesFor(0x998).size());
  LONG last = 0;
  for (int i = 0; i < count; ++i) {
    Graph graph;
    VIDEO_STREAM_CONFIG_CAPS capabilities{};
    AM_MEDIA_TYPE* type = nullptr;
    ASSERT_EQ(graph.config->GetStreamCaps(i, &type, reinterpret_cast<BYTE*>(&capabilities)), S_OK);
    const SIZE size = capabilities.MaxOutputSize;
    EXPECT_GT(size.cx, last);
    last = size.cx;
    if (i != 0 && i != count - 1) continue;
    EXPECT_EQ(graph.config->SetFormat(type), S_OK);
    ASSERT_EQ(graph.connect(), S_OK) << size.cx;
    EXPECT_EQ(graph.config->SetFormat(type), VFW_E_ALREADY_CONNECTED);
    ASSERT_TRUE(SUCCEEDED(graph.control->Run()));
    EXPECT_EQ(graph.catcher.await().size(), 2U * static_cast<ULONG>(size.cx * size.cy)) << size.cx;
    // Not stopped: the graph is released while it streams.
  }
}

}  // namespace
}  // namespace qvx::tests
