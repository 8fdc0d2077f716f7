// The picture controls as the Wi-Fi camera's web server tells of them and takes them.
#pragma once

#include <string>

#include "simulator/model/picture_controls.h"

namespace qvx::simulator {

// The document "input_0_control.json". Every number in it is a text.
std::string controlDocument(const PictureControls& controls);

// By the number that commands carry. Null for one that the server does not know.
struct WifiControl {
  std::int32_t id;
  const char* name;
  const PictureControl* control;
};
const WifiControl* wifiControl(std::int32_t id);

}  // namespace qvx::simulator
