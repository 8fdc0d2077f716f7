// Cameras and measurements in the two forms that the client prints.
#pragma once

#include <json/value.h>

#include <string>

#include "cameras.h"

namespace qvxctl {

// What is not known is null.
Json::Value jsonOf(const Camera& camera);
void addTo(Json::Value& object, const Measurement& measurement);

std::string hexadecimal(qvx_long word);
std::string nameText(const Camera& camera);
std::string productIdText(const Camera& camera);                // "0x970"
std::string magnificationText(const Measurement& measurement);  // "x 63.40"
std::string fieldOfViewText(const Measurement& measurement);    // "5.55 mm" or "842 µm"

}  // namespace qvxctl
