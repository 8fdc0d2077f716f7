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

struct Apartment {
  Apartment() { CoInitializeEx(nullptr, COINIT_MULTITHREADED); }
  ~Apartment() { CoUninitialize(); }
};

// Camera, sample grabber, null renderer.
class Graph {
 public:
  Graph()
      : graph_(create<IGraphBuilder>(CLSID_FilterGraph)),
        builder_(create<ICaptureGraphBuilder2>(CLSID_CaptureGraphBuilder2)),
        grabber_(create<IBaseFilter>(sampleGrabberClass)),
        renderer_(create<IBaseFilter>(nullRendererClass)),
        camera_(firstVideoInput()) {
    builder_->SetFiltergraph(graph_.Get());
    for (IBaseFilter* const filter : {camera_.Get(), grabber_.Get(), renderer_.Get()}) {
      EXPECT_EQ(graph_->AddFilter(filter, nullptr), S_OK);
    }
    AM_MEDIA_TYPE type{};
    type.majortype = MEDIATYPE_Video;
    type.subtype = MEDIASUBTYPE_YUY2;
    ComPtr<ISampleGrabber> grabber;
    grabber_.As(&grabber);
    grabber->SetMediaType(&type);
    grabber->SetCallback(&catcher_, 1);
    builder_->FindInterface(&PIN_CATEGORY_CAPTURE, nullptr, camera_.Get(),
                            __uuidof(IAMStreamConfig), &config_);
    graph_.As(&control_);
  }

  IAMStreamConfig& config() { return *config_.Get(); }
  HRESULT connect() {
    return builder_->RenderStream(&PIN_CATEGORY_CAPTURE, &MEDIATYPE_Video, camera_.Get(),
                                  grabber_.Get(), renderer_.Get());
  }
  HRESULT run() { return control_->Run(); }
  HRESULT stop() { return control_->Stop(); }
  Frame await() { return catcher_.await(); }

 private:
  Catcher catcher_;  // outlives the graph, which only borrows it
  ComPtr<IGraphBuilder> graph_;
  ComPtr<ICaptureGraphBuilder2> builder_;
  ComPtr<IBaseFilter> grabber_, renderer_, camera_;
  ComPtr<IAMStreamConfig> config_;
  ComPtr<IMediaControl> control_;
};

double meanLuma(const Frame& frame) {
  double sum = 0;
  for (std::size_t i = 0; i < frame.size(); i += 2) sum += frame[i];
  return sum * 2 / static_cast<double>(frame.size());
}

void write(Camera& camera, std::uint8_t reg, std::uint8_t value) {
  camera.controller.write({&reg, 1}, {&value, 1});
}

class Video : public testing::Test {
 protected:
  template <class Change>
  Frame after(Change change) {
    cameras_[0].with([&](CameraDevice& device) { change(device.camera); });
    return graph_.await();
  }

  Apartment apartment_;
  SimulatedCameras cameras_{{"usb:0998,zoom=50"}};
  Graph graph_;
};

TEST_F(Video, FollowsTheLight) {
  ASSERT_EQ(graph_.connect(), S_OK);
  ASSERT_TRUE(SUCCEEDED(graph_.run()));
  const Frame dark = after([](Camera& camera) { camera.sensor.set(0x3503, 7); });
  ASSERT_EQ(dark.size(), 2U * 640 * 480);
  const Frame lit = after([](Camera& camera) {
    write(camera, 3, 31);
    write(camera, 4, 15);
  });
  EXPECT_GT(meanLuma(lit), meanLuma(dark) + 20);
  EXPECT_TRUE(SUCCEEDED(graph_.stop()));
}

TEST_F(Video, ComesInTheSizesOfTheModel) {
  int count = 0, bytes = 0;
  ASSERT_EQ(graph_.config().GetNumberOfCapabilities(&count, &bytes), S_OK);
  ASSERT_EQ(static_cast<std::size_t>(count), simulator::videoModesFor(0x998).size());
  LONG last = 0;
  for (int i = 0; i < count; ++i) {
    VIDEO_STREAM_CONFIG_CAPS capabilities{};
    AM_MEDIA_TYPE* type = nullptr;
    Graph graph;
    ASSERT_EQ(graph.config().GetStreamCaps(i, &type, reinterpret_cast<BYTE*>(&capabilities)), S_OK);
    const SIZE size = capabilities.MaxOutputSize;
    EXPECT_GT(size.cx, last);
    last = size.cx;
    if (i != 0 && i != count - 1) continue;
    EXPECT_EQ(graph.config().SetFormat(type), S_OK);
    ASSERT_EQ(graph.connect(), S_OK) << size.cx;
    EXPECT_EQ(graph.config().SetFormat(type), VFW_E_ALREADY_CONNECTED);
    CoTaskMemFree(type->pbFormat);
    CoTaskMemFree(type);
    ASSERT_TRUE(SUCCEEDED(graph.run()));
    EXPECT_EQ(graph.await().size(), 2U * static_cast<ULONG>(size.cx * size.cy)) << size.cx;
    // Not stopped: the graph is released while it streams.
  }
}

TEST_F(Video, StopsRunsAgainAndSurvivesItsCamera) {
  ASSERT_EQ(graph_.connect(), S_OK);
  for (int i = 0; i < 3; ++i) {
    ASSERT_TRUE(SUCCEEDED(graph_.run()));
    EXPECT_FALSE(graph_.await().empty());
    EXPECT_TRUE(SUCCEEDED(graph_.stop()));
  }
  ASSERT_TRUE(SUCCEEDED(graph_.run()));
  cameras_.unplug();
  Sleep(300);
  EXPECT_TRUE(SUCCEEDED(graph_.stop()));
}

}  // namespace
}  // namespace qvx::tests
