// Which product ids make up a model family. Product ids are handed out in blocks of 16 per family;
// the variants that end in _2 and _3 pick single models out of a block and leave gaps on purpose.
// Every predicate answers 1 or 0.
#pragma once

namespace qvx {

// A function of the product id alone.
int isVR3xxxSeries(int pid);
int isVK73xxxSeries(int pid);
int isVK3xxxR4Series(int pid);
int isVK4xxxSeries(int pid);
int isVk4xx7Series(int pid);  // the same range as isVK4xx7Series, without its register read
int isVK7xxxR4Series(int pid);
int isVK7xxxSeries(int pid);
int isEdof40(int pid);
int isEdof50(int pid);
int isVK3xxxR4_2Series(int pid);
int isVK3xxxR4_3Series(int pid);
int isVK3xxxR4BasicSeries(int pid);
int isVK4xxx_2Series(int pid);
int isVK4xxx_3Series(int pid);
int isVK7xxxR4_2Series(int pid);
int isVK7xxxR4_3Series(int pid);
int isVK7xxx_2Series(int pid);
int isVK7xxx_3Series(int pid);
int isVK3xxx_SEG_Series(int pid);
int VK7x15_AXI_Series(int pid);

// These refresh `ul80` from the camera on every call, whatever the product id; their callers rely
// on it.
int isVR4xxxSeries(int pid);
int isVK4xx7Series(int pid);

// These refresh `ul80` and then `ul84` on every call, and tell hardware variants of one product id
// apart by `ul80`.
int isVR4xxx_2Series(int pid);
int isVR4xxx_3Series(int pid);
int isVR3xxx_2Series(int pid);
int isVR3xxx_3Series(int pid);
int isVk4xx7_2Series(int pid);
int isVk4xx7_3Series(int pid);

}  // namespace qvx
