#!/usr/bin/env bash
# Measures the library against the bare system calls, side by side in one run under Wine: one table.
# Exit code 1 when a row is over its limit, 2 when it could not be measured. The machine may be busy:
# the two sides take turns, and the median of the rounds' ratios counts.
source "$(dirname "$0")/common.sh"

scripts/setup.sh test || exit 2
{ build_preset windows qvx_bench qvx_bench_bare && build_preset simulator qvx-simulator; } \
  >"$logs/bench-build.log" 2>&1 || fail "the build failed ($logs/bench-build.log)"

status=0
# One process: measure COMMAND...
measure() {
  "$@" | sed -u 's/\r$//'
  local result=${PIPESTATUS[0]}
  [ "$result" -le "$status" ] || status=$result
}

measure build/simulator/qvx-simulator --no-page wifi:0890 -- \
  scripts/run-wine.sh build/windows/qvx_bench.exe head wifi
measure scripts/run-wine.sh build/windows/qvx_bench.exe bridge hid usb3
measure scripts/run-wine.sh build/windows/qvx_bench.exe config computations dll
exit "$status"
