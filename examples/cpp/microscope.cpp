// A camera on a thread of its own: microscope [seconds [still.jpg]]
#include <windows.h>

#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <functional>
#include <future>
#include <memory>
#include <string>
#include <thread>
#include <utility>

#include <qvx64/api.h>

// The one thread that calls the library. The library's timers measure and poll the button from this
// thread's message loop, and the handlers are called on it.
class CameraThread {
 public:
  std::function<void(double)> onMagnification;
  std::function<void()> onButton;

  // False when there is no camera.
  bool open(int device) {
    std::promise<bool> opened;
    thread_ = std::thread([&] { run(device, opened); });
    return opened.get_future().get();
  }

  // Calls the function on the camera's thread and waits for what it returns.
  template <class Function>
  auto ask(Function function) {
    std::packaged_task<decltype(function())()> task(std::move(function));
    auto result = task.get_future();
    auto* const request = new std::function<void()>([&task] { task(); });
    PostThreadMessageW(id_, requestMessage, 0, reinterpret_cast<LPARAM>(request));
    return result.get();
  }

  ~CameraThread() {
    if (!thread_.joinable()) return;
    PostThreadMessageW(id_, WM_QUIT, 0, 0);
    thread_.join();
  }

 private:
  static constexpr UINT requestMessage = WM_APP;

  void run(int device, std::promise<bool>& opened) {
    MSG message;
    PeekMessageW(&message, nullptr, 0, 0, PM_NOREMOVE);  // from here on others can post to it
    id_ = GetCurrentThreadId();
    SetVideoDeviceIndex(device);
    const bool found = Init() != 0;
    if (found) listen();
    opened.set_value(found);
    if (found) dispatchMessages(device);
  }

  void listen() {
    current_ = this;
    SetEventCallback([] { current_->onButton(); });
    EnablePressKey(1);  // after Init, which may switch it off
  }

  void dispatchMessages(int device) {
    double shown = 0;
    for (MSG message; GetMessageW(&message, nullptr, 0, 0) > 0;) {
      if (message.message == requestMessage && message.hwnd == nullptr) {
        const std::unique_ptr<std::function<void()>> request(
            reinterpret_cast<std::function<void()>*>(message.lParam));
        (*request)();
        continue;
      }
      DispatchMessageW(&message);  // the library's timers run here
      const double magnification = GetMAG(device);
      if (magnification != shown) onMagnification(shown = magnification);
    }
    // The library keeps the callback: take it back before what it calls is gone.
    EnablePressKey(0);
    SetEventCallback(nullptr);
  }

  static inline CameraThread* current_ = nullptr;
  std::thread thread_;
  DWORD id_ = 0;
};

int main(int count, char** arguments) {
  const double seconds = count > 1 ? std::atof(arguments[1]) : 5;
  const std::string still = count > 2 ? arguments[2] : "still.jpg";

  CameraThread camera;
  camera.onMagnification = [](double magnification) {
    std::printf("magnification %.2f, field of view %.3f mm\n", magnification,
                FOVx(90, magnification) / 1000);
  };
  camera.onButton = [] { std::puts("button"); };
  if (!camera.open(QVX_WIFI_CAMERA)) {
    std::fputs("no camera\n", stderr);
    return 1;
  }
  camera.ask([] { SetLEDState(QVX_WIFI_CAMERA, QVX_LED_ON); });
  const bool saved = camera.ask([&] { return GetWiFiImage(still.c_str()); });
  std::printf(saved ? "still in %s\n" : "cannot write %s\n", still.c_str());
  std::this_thread::sleep_for(std::chrono::duration<double>(seconds));
  return saved ? 0 : 1;
}
