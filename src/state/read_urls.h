// Complete Wi-Fi read commands, one per controller register whose hexadecimal number is the suffix.
// Init builds them; they are kept for parity with the camera's command set. sReg4C, sReg4D, sReg4E
// and sReg82 are never filled.
#pragma once

#include <string>

namespace qvx {

inline std::string sReg00, sReg01, sReg02, sReg40, sReg41, sReg42, sReg43, sReg44, sReg45, sReg46,
    sReg47, sReg48, sReg49, sReg4A, sReg4B, sReg4C, sReg4D, sReg4E, sReg50, sReg60, sReg61, sReg62,
    sReg63, sReg64, sReg65, sReg66, sReg67, sReg68, sReg69, sReg6A, sReg6B, sReg6C, sReg6D, sReg6E,
    sReg6F, sReg80, sReg81, sReg82, sReg83, sReg84, sRegC0, sRegC1, sRegC2, sRegC3, sRegC4, sRegC5;

}  // namespace qvx
