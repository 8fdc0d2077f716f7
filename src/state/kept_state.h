// State that nothing in the library reads. Some of it is still filled, some never was, and all of
// it is kept only because it has always been part of the state.
#pragma once

#include <cstdint>

#include "state/device_state.h"

namespace qvx {

// The Wi-Fi camera's read commands, one for each controller register whose hexadecimal number is
// the suffix. Init fills them, but for sReg4C, sReg4D, sReg4E and sReg82, which stay empty.
inline std::string sReg00, sReg01, sReg02, sReg40, sReg41, sReg42, sReg43, sReg44, sReg45, sReg46,
    sReg47, sReg48, sReg49, sReg4A, sReg4B, sReg4C, sReg4D, sReg4E, sReg50, sReg60, sReg61, sReg62,
    sReg63, sReg64, sReg65, sReg66, sReg67, sReg68, sReg69, sReg6A, sReg6B, sReg6C, sReg6D, sReg6E,
    sReg6F, sReg80, sReg81, sReg82, sReg83, sReg84, sRegC0, sRegC1, sRegC2, sRegC3, sRegC4, sRegC5;

// Controller registers that Init reads from the Wi-Fi camera. What the library goes by is `ul80`
// and the others of device_state.h, which differ by that prefix.
inline std::uint32_t n80 = 0, n83 = 0, n84 = 0;
inline std::uint32_t nC0 = 0, nC1 = 0, nC2 = 0, nC3 = 0, nC4 = 0, nC5 = 0;

inline int bMAGSeries = -1;              // 1 = Init found a camera that reads its magnification
inline int nUSBVer = 0;                  // of the opened USB 3 camera: 3 for USB 3.x, 2 for USB 2.0
inline int m_count = 0;                  // never set
inline int m_LEDStatus = 0;              // the last LED state, on some of the Wi-Fi families
inline DeviceTable strOrvaDeviceWF;      // never filled
inline DeviceTable strOrvaDeviceWFName;  // never filled

// Of the magnification: the integer fit's transposed matrix (f890M11 and so on are the other
// fit's), the cubic fit's constant, and what was kept between samples.
inline int n890M11 = 0, n890M12 = 0, n890M13 = 0;
inline int n890M21 = 0, n890M22 = 0, n890M23 = 0;
inline int n890M31 = 0, n890M32 = 0, n890M33 = 0;
inline float f890d = 0;
inline float f890PreMag = 0;  // 0 at every sample
namespace count_890_rate {
inline float fRatePre = 0;      // the last encoder position
inline std::string strPreData;  // never filled
}  // namespace count_890_rate

}  // namespace qvx
