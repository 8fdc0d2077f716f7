#include "model.h"

#include <algorithm>

#include "cameras.h"
#include "readings.h"

namespace qvxctl {

namespace {

struct Ids {
  int first, last;
};

template <std::size_t count>
bool isIn(const Ids (&table)[count], const std::optional<int>& productId) {
  return productId && std::ranges::any_of(table, [&productId](const Ids& ids) {
           return ids.first <= *productId && *productId <= ids.last;
         });
}

// Parts that the feature word does not mention.
constexpr Ids moreLenses[] = {{0x940, 0x949}, {0x9B1, 0x9BF}};
constexpr Ids lensesWithoutReadableZero[] = {{0x9B1, 0x9BF}};
constexpr Ids moreLights[] = {{0x96E, 0x96F}, {0x9B1, 0x9BF}};
constexpr Ids aims[] = {{0x960, 0x99F}, {0x9B0, 0x9C7}, {0x9E0, 0x9EF}};
constexpr Ids usb3[] = {{0x9B0, 0x9BF}};

constexpr Range anyByte = {0, 255}, wrapsAbove223 = {0, 223};
constexpr int some4xxx = 1;  // stands for any of 0x870 to 0x89F and 0x910 to 0x91F

constexpr ExposureFamily families[] = {
    {some4xxx, some4xxx, ExposureTime::perhapsFixed, anyByte, Flicker::chosen},
    {0x870, 0x88F, ExposureTime::settable, anyByte, Flicker::chosen},
    {0x890, 0x899, ExposureTime::settable, anyByte, Flicker::none},
    {0x89A, 0x89F, ExposureTime::fixed, anyByte, Flicker::none},
    {0x900, 0x909, ExposureTime::none, {}, Flicker::detected},
    {0x910, 0x919, ExposureTime::settable, anyByte, Flicker::chosen},
    {0x91A, 0x91F, ExposureTime::fixed, anyByte, Flicker::chosen},
    {0x920, 0x92F, ExposureTime::settable, wrapsAbove223, Flicker::detected},
    {0x930, 0x94F, ExposureTime::none, {}, Flicker::detected},
    {0x960, 0x99F, ExposureTime::settable, wrapsAbove223, Flicker::detected},
    {0x9A0, 0x9AF, ExposureTime::fixed, anyByte, Flicker::chosen},
    {0x9B0, 0x9BF, ExposureTime::writeOnly, {0, 208}, Flicker::detected},
    {0x9C0, 0x9CF, ExposureTime::settable, anyByte, Flicker::chosen},
    {0x9D0, 0x9DF, ExposureTime::fixed, anyByte, Flicker::chosen},
    {0x9E0, 0x9EF, ExposureTime::settable, {21, 239}, Flicker::chosen},
};
constexpr ExposureFamily noFamily = {0, 0, ExposureTime::none, {}, Flicker::none};

// A product id of the same family, from the number of picture sizes. Of the cameras with three
// sizes, only those with lights of variant 3 have their sensor at the address that the library
// uses; the sensor of a camera without sizes is not reached.
int productIdLikeWifiCamera(qvx_long features) {
  switch (sizesOffered().size()) {
    case 1:
      return 0x9A0;
    case 2:
      return (features & QVX_FEATURE_7XXX) != 0 ? 0x9C0 : some4xxx;
    case 3:
      return (features & QVX_FEATURE_LIGHTS_3) != 0 ? 0x920 : 0;
    case 5:
      return 0x960;
    default:
      return 0;
  }
}

const ExposureFamily& exposureFamilyOf(int productId) {
  const auto* const found = std::ranges::find_if(families, [productId](const auto& family) {
    return family.first <= productId && productId <= family.last;
  });
  return found == std::end(families) ? noFamily : *found;
}

}  // namespace

bool Model::hasLens() const {
  return has(QVX_FEATURE_LENS) || isIn(moreLenses, productId);
}

bool Model::returnsLens() const {
  return hasLens() && !isIn(lensesWithoutReadableZero, productId);
}

bool Model::hasLights() const {
  return has(QVX_FEATURE_7XXX) || isIn(moreLights, productId);
}

bool Model::hasAim() const {
  return hasLights() && (!productId || isIn(aims, productId));
}

Model modelOf(int device) {
  const qvx_long features = GetConfig(device);
  const auto productId =
      device == QVX_WIFI_CAMERA ? std::nullopt : describeCamera(device).productId;
  const int like =
      device == QVX_WIFI_CAMERA ? productIdLikeWifiCamera(features) : productId.value_or(0);
  return {device, productId, features, exposureFamilyOf(like)};
}

bool isUsb3(const std::optional<int>& productId) {
  return isIn(usb3, productId);
}

}  // namespace qvxctl
