// Which product ids make up a model family. Product ids are handed out in blocks of 16 per family;
// the variants that end in _2 and _3 pick single models out of a block and leave gaps on purpose.
// No camera is accessed here: the families that a register distinguishes are in
// transport/controller.h.
#pragma once

namespace qvx {

// Answers 1 for a product id of the family, else 0.
using Family = int (*)(int pid);

struct PidRange {
  consteval PidRange(int id) : first(id), last(id) {}
  consteval PidRange(int from, int to) : first(from), last(to) {}

  int first, last;
};

consteval PidRange range(int first, int last) {
  return {first, last};
}

// The family of these product ids: within<0x9B0, range(0x9C0, 0x9EF)>.
template <PidRange... ranges>
int within(int pid) {
  return ((pid >= ranges.first && pid <= ranges.last) || ...) ? 1 : 0;
}

// The one USB 3 model whose controller is read over USB 3, and that Init goes on with when nothing
// else is found. The block it leads is isVK73xxxSeries.
inline constexpr int usb3ReadablePid = 0x9B0;

inline constexpr Family isVR3xxxSeries = within<range(0x9D0, 0x9DF)>;
inline constexpr Family isVK73xxxSeries = within<range(0x9B0, 0x9BF)>;
inline constexpr Family isVK3xxxR4Series = within<range(0x9A0, 0x9AF)>;
inline constexpr Family isVK4xxxSeries = within<range(0x870, 0x89F), range(0x910, 0x91F)>;
// Not isVK4xx7Series, with a capital K, which is the same range and reads a register first.
inline constexpr Family isVk4xx7Series = within<range(0x9E0, 0x9EF)>;
inline constexpr Family isVK7xxxR4Series = within<range(0x920, 0x92F)>;
inline constexpr Family isVK7xxxSeries = within<range(0x960, 0x99F)>;
inline constexpr Family isEdof40 = within<range(0x910, 0x91F), range(0x980, 0x98F)>;
inline constexpr Family isEdof50 =
    within<range(0x990, 0x99F), range(0x9B0, 0x9BF), range(0x9C0, 0x9CF), range(0x9E0, 0x9EF)>;
inline constexpr Family isVK3xxxR4_2Series = within<range(0x9A0, 0x9AD)>;
inline constexpr Family isVK3xxxR4_3Series = within<0x9AE>;
inline constexpr Family isVK3xxxR4BasicSeries = within<range(0x9A9, 0x9AC)>;

// 0x877 and 0x887 are in neither variant of the 4xxx family.
inline constexpr Family isVK4xxx_2Series =
    within<0x870, 0x871, 0x873, 0x875, 0x876, 0x878, 0x87A, 0x87B, 0x87C,  //
           0x880, 0x881, 0x883, 0x885, 0x886, 0x888, 0x88B, 0x88D, 0x88F,  //
           0x890, 0x891, 0x893, 0x895, 0x896, 0x898, 0x89B, 0x89D, 0x89F,  //
           0x910, 0x911, 0x913, 0x915, 0x916, 0x917, 0x918, 0x91B, 0x91D, 0x91F>;
inline constexpr Family isVK4xxx_3Series =
    within<0x872, 0x874, 0x879, 0x87D, 0x87E, 0x87F,         //
           0x882, 0x884, 0x889, 0x88A, 0x88C, 0x88E,         //
           0x892, 0x894, 0x897, 0x899, 0x89A, 0x89C, 0x89E,  //
           0x912, 0x914, 0x919, 0x91A, 0x91C, 0x91E>;
inline constexpr Family isVK7xxxR4_2Series = within<0x920, 0x921, 0x923, 0x924, 0x925>;
inline constexpr Family isVK7xxxR4_3Series = within<0x922, 0x926, 0x927, 0x928>;

// 0x96E, 0x96F, 0x981 to 0x98F and 0x999 to 0x99F are in neither variant of the 7xxx family.
inline constexpr Family isVK7xxx_2Series =
    within<range(0x960, 0x967), range(0x970, 0x977), 0x980, range(0x990, 0x994)>;
inline constexpr Family isVK7xxx_3Series =
    within<range(0x968, 0x96D), range(0x978, 0x97F), range(0x995, 0x998)>;
inline constexpr Family isVK3xxx_SEG_Series = within<range(0x9D0, 0x9D6)>;
inline constexpr Family VK7x15_AXI_Series = within<0x978>;

}  // namespace qvx
