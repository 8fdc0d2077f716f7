#include "simulator/fronts/capture_filter/virtual_camera.h"

#include <map>
#include <mutex>

#include "simulator/fronts/video_inputs.h"

namespace qvx::simulator {

std::shared_ptr<VirtualCamera> VirtualCamera::at(const std::wstring& instance) {
  static std::mutex guard;
  static std::map<std::wstring, std::shared_ptr<VirtualCamera>> cameras;
  const auto input = registeredInput(instance);
  if (!input) return nullptr;
  const std::lock_guard lock(guard);
  std::shared_ptr<VirtualCamera>& camera = cameras[instance];
  if (camera == nullptr || camera->pipe() != input->pipe) {
    const auto description =
        PipeClient(input->pipe).askFor<CameraDescription>(RequestKind::describe);
    camera = description ? std::make_shared<VirtualCamera>(input->pipe, *description) : nullptr;
  }
  return camera;
}

}  // namespace qvx::simulator
