#include "models/families.h"

#include <cstdint>
#include <initializer_list>

#include "state/device_state.h"
#include "transport/controller.h"

namespace qvx {

namespace {

struct Range {
  int first, last;
};

using Ranges = std::initializer_list<Range>;
using Ids = std::initializer_list<int>;

int inAny(Ranges ranges, int pid) {
  for (const Range& range : ranges) {
    if (pid >= range.first && pid <= range.last) return 1;
  }
  return 0;
}

int oneOf(Ids ids, int pid) {
  for (const int id : ids) {
    if (pid == id) return 1;
  }
  return 0;
}

void refresh80() {
  ul80 = ReadFromPIC(nTmpIdx, 0x80);
}

// Member when the id is listed and the feature register, read afresh, shows the pattern.
int hasVariant(int pid, Ids ids, std::uint32_t mask, std::uint32_t pattern) {
  refresh80();
  ul84 = ReadFromPIC(nTmpIdx, 0x84);
  return oneOf(ids, pid) && (ul80 & mask) == pattern;
}

constexpr Ids vr4xxxVariants = {0x9C0, 0x9C1, 0x9C2, 0x9C3, 0x9C4, 0x9C5, 0x9C6};
constexpr Ids vk4xx7Variants = {0x9E0, 0x9E1, 0x9E2, 0x9E3, 0x9E4, 0x9E5, 0x9E6};

}  // namespace

int isVR3xxxSeries(int pid) {
  return inAny({{0x9D0, 0x9DF}}, pid);
}

int isVK73xxxSeries(int pid) {
  return inAny({{0x9B0, 0x9BF}}, pid);
}

int isVK3xxxR4Series(int pid) {
  return inAny({{0x9A0, 0x9AF}}, pid);
}

int isVK4xxxSeries(int pid) {
  return inAny({{0x870, 0x89F}, {0x910, 0x91F}}, pid);
}

int isVk4xx7Series(int pid) {
  return inAny({{0x9E0, 0x9EF}}, pid);
}

int isVK7xxxR4Series(int pid) {
  return inAny({{0x920, 0x92F}}, pid);
}

int isVK7xxxSeries(int pid) {
  return inAny({{0x960, 0x99F}}, pid);
}

int isEdof40(int pid) {
  return inAny({{0x910, 0x91F}, {0x980, 0x98F}}, pid);
}

int isEdof50(int pid) {
  return inAny({{0x990, 0x99F}, {0x9B0, 0x9BF}, {0x9C0, 0x9CF}, {0x9E0, 0x9EF}}, pid);
}

int isVK3xxxR4_2Series(int pid) {
  return inAny({{0x9A0, 0x9AD}}, pid);
}

int isVK3xxxR4_3Series(int pid) {
  return oneOf({0x9AE}, pid);
}

int isVK3xxxR4BasicSeries(int pid) {
  return inAny({{0x9A9, 0x9AC}}, pid);
}

// 0x877 and 0x887 are in neither variant of the 4xxx family.
int isVK4xxx_2Series(int pid) {
  return oneOf({0x870, 0x871, 0x873, 0x875, 0x876, 0x878, 0x87A, 0x87B, 0x87C,  //
                0x880, 0x881, 0x883, 0x885, 0x886, 0x888, 0x88B, 0x88D, 0x88F,  //
                0x890, 0x891, 0x893, 0x895, 0x896, 0x898, 0x89B, 0x89D, 0x89F,  //
                0x910, 0x911, 0x913, 0x915, 0x916, 0x917, 0x918, 0x91B, 0x91D, 0x91F},
               pid);
}

int isVK4xxx_3Series(int pid) {
  return oneOf({0x872, 0x874, 0x879, 0x87D, 0x87E, 0x87F,         //
                0x882, 0x884, 0x889, 0x88A, 0x88C, 0x88E,         //
                0x892, 0x894, 0x897, 0x899, 0x89A, 0x89C, 0x89E,  //
                0x912, 0x914, 0x919, 0x91A, 0x91C, 0x91E},
               pid);
}

int isVK7xxxR4_2Series(int pid) {
  return oneOf({0x920, 0x921, 0x923, 0x924, 0x925}, pid);
}

int isVK7xxxR4_3Series(int pid) {
  return oneOf({0x922, 0x926, 0x927, 0x928}, pid);
}

// 0x96E, 0x96F, 0x981 to 0x98F and 0x999 to 0x99F are in neither variant of the 7xxx family.
int isVK7xxx_2Series(int pid) {
  return inAny({{0x960, 0x967}, {0x970, 0x977}, {0x980, 0x980}, {0x990, 0x994}}, pid);
}

int isVK7xxx_3Series(int pid) {
  return inAny({{0x968, 0x96D}, {0x978, 0x97F}, {0x995, 0x998}}, pid);
}

int isVK3xxx_SEG_Series(int pid) {
  return inAny({{0x9D0, 0x9D6}}, pid);
}

int VK7x15_AXI_Series(int pid) {
  return oneOf({0x978}, pid);
}

int isVR4xxxSeries(int pid) {
  refresh80();
  return inAny({{0x9C0, 0x9CF}}, pid);
}

int isVK4xx7Series(int pid) {
  refresh80();
  return isVk4xx7Series(pid);
}

int isVR4xxx_2Series(int pid) {
  return hasVariant(pid, vr4xxxVariants, 0x04, 0x04);
}

int isVR4xxx_3Series(int pid) {
  return hasVariant(pid, vr4xxxVariants, 0x06, 0x02);
}

int isVR3xxx_2Series(int pid) {
  return hasVariant(pid, {0x9D0, 0x9D1, 0x9D2, 0x9D7, 0x9D8}, 0x06, 0x06);
}

int isVR3xxx_3Series(int pid) {
  return hasVariant(pid, {0x9D4}, 0x06, 0x02);
}

int isVk4xx7_2Series(int pid) {
  return hasVariant(pid, vk4xx7Variants, 0x06, 0x06);
}

int isVk4xx7_3Series(int pid) {
  return hasVariant(pid, vk4xx7Variants, 0x06, 0x02);
}

}  // namespace qvx
