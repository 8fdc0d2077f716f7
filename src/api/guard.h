// Keeps exceptions from crossing an export.
#pragma once

#include <utility>

namespace qvx {

template <class Result, class Body>
Result guarded(Result fallback, Body body) noexcept {
  try {
    return body();
  } catch (...) {
    return fallback;
  }
}

template <class Body>
void guarded(Body body) noexcept {
  try {
    body();
  } catch (...) {
    // Out of memory: nothing can be reported. What was sent to the camera before stays sent; the
    // library's own state is such that the next call works.
  }
}

}  // namespace qvx
