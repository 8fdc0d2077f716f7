// Where no JPEG encoder is built in, cameras have no stills.
#include "simulator/scene/still.h"

namespace qvx::simulator {

std::string stillOf(Camera& /*camera*/) {
  return {};
}

}  // namespace qvx::simulator
