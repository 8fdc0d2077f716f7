// The basic states of a camera's illumination.
#pragma once

#include <cstdint>

namespace qvx {

// The segments to light and the progress shown on Wi-Fi rings in state 2. Nothing sets them.
inline int m_LED1Status = 0, m_LED2Status = 0, m_LED3Status = 0, m_LED4Status = 0;
inline int nProgress = 0;

// 0 = off, 1 = on, 2 = the model's other lighting: second ring, segments or axial light. Other
// states do little or nothing, depending on the model.
void setLedState(int deviceIndex, int state);

}  // namespace qvx
