#!/usr/bin/env bash
# Measures the library against the bare system calls, side by side in one run under Wine. Exit code
# 1 when a ratio is over its limit. Meant for a machine that does nothing else.
source "$(dirname "$0")/common.sh"

scripts/setup.sh test || exit 1
{ build_preset windows qvx_bench qvx_bench_bare QVX64 qvx_capture_filter &&
  build_preset simulator qvx-wifi-camera; } >"$logs/bench-build.log" 2>&1 ||
  fail "the build failed ($logs/bench-build.log)"

tests/windows/with_wifi_camera.sh build/simulator/qvx-wifi-camera --pid 0x970 -- \
  scripts/run-wine.sh build/windows/qvx_bench.exe | sed -u 's/\r$//'
exit "${PIPESTATUS[0]}"
