#include "controls/feature_word.h"

#include <iterator>

#include "controls/device_selection.h"
#include "models/families.h"
#include "transport/controller.h"
#include "transport/enumeration.h"

namespace qvx {

namespace {

constexpr std::uint32_t noSuchRegister = 0xFF;
constexpr std::uint32_t variantBit = 0x04;  // of the feature register, on models with variants

enum class When : std::uint8_t {
  always,
  hasRegister,   // the camera has a feature register
  registerSays,  // and the rule's bits are set in it
  hasQuadrants,  // the camera has a feature register, and its lighting kind is dimmable quadrants
};

enum class Then : std::uint8_t {
  set,
  clear,
  setVariant,  // 0x04 or 0x08, as the register says; the other one stays as it is
  renew,       // clears the bits if the register does not have them, and sets them again
};

struct Rule {
  Family family;
  When when;
  Then then;
  std::uint32_t bits;
};

using enum When;
using enum Then;

// Applied from the first to the last. They overlap, and a later one may undo an earlier one: which
// cameras report what was settled model by model.
constexpr Rule rules[] = {
    // Magnification. 0x891 reads its magnification all the same, and 0x978 says so itself.
    {within<0x890, 0x892, 0x893, range(0x970, 0x977), range(0x979, 0x97F), range(0x990, 0x99F)>,
     always, set, 0x40},
    {within<0x968, 0x978, 0x998, 0x9B0, range(0x9C0, 0x9C6), range(0x9E0, 0x9E6)>, registerSays,
     set, 0x40},

    // Quadrants.
    {within<range(0x960, 0x99F), range(0x910, 0x91F), 0x9B0, range(0x9C0, 0x9EF)>, hasQuadrants,
     set, 0x20},

    {within<range(0x978, 0x97F), range(0x960, 0x99F), range(0x910, 0x91F), 0x9B0,
            range(0x9C0, 0x9EF)>,
     registerSays, set, 0x10},

    // Lighting variants.
    {within<0x840, 0x843, 0x845, 0x846, 0x848, 0x841>, always, set, 0x04},
    {within<0x842, 0x849>, always, set, 0x08},
    {within<0x847>, always, clear, 0x0C},
    {within<0x810, 0x811>, always, set, 0x04},
    {within<0x812>, always, set, 0x08},
    {within<0x813, 0x711, 0x714>, always, clear, 0x0C},
    {within<0x611, 0x613>, always, set, 0x04},
    {within<0x713>, always, clear, 0x0C},
    {within<0x710, 0x716, 0x717, 0x820, 0x821>, always, set, 0x04},
    {within<0x712, 0x825, 0x860, 0x863>, always, set, 0x08},
    {within<0x715, 0x614>, always, set, 0x04},
    {within<0x617>, always, set, 0x08},
    {within<0x615, 0x610, 0x870, 0x873, 0x875, 0x876, 0x878, 0x87A, 0x87B, 0x87C, 0x871>, always,
     set, 0x04},
    {within<0x872, 0x874, 0x879, 0x87D, 0x87E, 0x87F>, always, set, 0x08},
    {within<0x877>, always, clear, 0x0C},
    {within<0x880, 0x881, 0x883, 0x885, 0x886, 0x888, 0x88B, 0x88D, 0x88F>, always, set, 0x04},
    {within<0x882, 0x884, 0x889, 0x88A, 0x88C, 0x88E>, always, set, 0x08},
    {within<0x887>, always, clear, 0x0C},
    {within<0x890, 0x891, 0x893, 0x895, 0x896, 0x898, 0x89B, 0x89D, 0x89F>, always, set, 0x04},
    {within<0x892, 0x894, 0x897, 0x899, 0x89A, 0x89C, 0x89E>, always, set, 0x08},
    {within<0x910, 0x911, 0x913, 0x915, 0x916, 0x917, 0x918, 0x91B, 0x91D, 0x91F>, always, set,
     0x04},
    {within<0x912, 0x914, 0x919, 0x91A, 0x91C, 0x91E>, always, set, 0x08},
    {within<0x920, 0x921, 0x923, 0x924, 0x925>, always, set, 0x04},
    {within<0x922, 0x926, 0x927, 0x928>, always, set, 0x08},
    {within<0x929>, always, clear, 0x0C},
    {within<range(0x960, 0x967), range(0x970, 0x977), 0x980, range(0x990, 0x994)>, always, set,
     0x04},
    {within<range(0x969, 0x96D), range(0x978, 0x97F), range(0x988, 0x98F), range(0x998, 0x99F)>,
     always, set, 0x08},
    {within<range(0x969, 0x96D)>, hasRegister, setVariant, 0x0C},
    {within<0x96E, 0x96F>, always, clear, 0x0C},
    {within<range(0x979, 0x97F), range(0x981, 0x98F), range(0x995, 0x997), range(0x999, 0x99F),
            0x968, 0x978, 0x998>,
     hasRegister, setVariant, 0x0C},
    {within<range(0x9A0, 0x9A4), range(0x9A5, 0x9A8), 0x9AD>, always, set, 0x04},
    {within<range(0x9A9, 0x9AC)>, always, clear, 0x0C},
    {within<0x9AE>, always, set, 0x08},
    {within<0x9AF>, always, clear, 0x0C},
    {within<0x9B0, range(0x9C0, 0x9C6), range(0x9D0, 0x9D4), range(0x9D6, 0x9D8),
            range(0x9E0, 0x9E6)>,
     hasRegister, setVariant, 0x0C},
    {within<0x9B1>, always, clear, 0x0C},

    {within<range(0x960, 0x967), range(0x970, 0x977), range(0x980, 0x987), range(0x990, 0x997),
            range(0x969, 0x96D), range(0x978, 0x97F), range(0x988, 0x98F), range(0x998, 0x99F)>,
     always, set, 0x02},
    {within<0x968, 0x978, 0x998, 0x9B0, range(0x9C0, 0x9EF)>, hasRegister, renew, 0x02},
    {within<0x9B1>, always, clear, 0x02},

    {within<range(0x910, 0x91F), range(0x980, 0x98F), range(0x990, 0x99F)>, always, set, 0x80},
    {within<0x998>, registerSays, set, 0x80},  // and never 0x968 or 0x978
    {within<0x9B0, range(0x9C0, 0x9EF)>, registerSays, set, 0x80},

    {within<0x968, 0x978, 0x998, 0x9B0, range(0x9C0, 0x9EF)>, registerSays, set, 0x01},
};

bool holds(const Rule& rule, int deviceIndex, std::uint32_t reg) {
  switch (rule.when) {
    case always:
      return true;
    case hasRegister:
      return reg != noSuchRegister;
    case registerSays:
      return reg != noSuchRegister && (reg & rule.bits) == rule.bits;
    case hasQuadrants:
      return reg != noSuchRegister &&
             ReadFromPIC(deviceIndex, controller::lightingKind) == controller::dimmableQuadrants;
  }
  return false;
}

std::uint32_t apply(const Rule& rule, std::uint32_t word, std::uint32_t reg) {
  switch (rule.then) {
    case set:
      return word | rule.bits;
    case clear:
      return word & ~rule.bits;
    case setVariant:
      return word | ((reg & variantBit) != 0 ? 0x04 : 0x08);
    case renew:
      if ((reg & rule.bits) == 0) word &= ~rule.bits;
      return word | rule.bits;
  }
  return word;
}

}  // namespace

std::int32_t featureWord(int deviceIndex) {
  if (isWifiDevice(deviceIndex)) deviceIndex = wifiDeviceIndex;
  if (entryOf(strOrvaDevice, deviceIndex).empty()) refreshDevicePaths(deviceIndex);
  selectProductId(deviceIndex);
  const std::uint32_t reg = ReadFromPIC(deviceIndex, controller::features);
  std::uint32_t word = 0;
  for (const Rule& rule : rules) {
    if (rule.family(nPid) && holds(rule, deviceIndex, reg)) word = apply(rule, word, reg);
  }
  return static_cast<std::int32_t>(word);
}

}  // namespace qvx
