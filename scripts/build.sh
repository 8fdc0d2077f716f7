#!/usr/bin/env bash
# Builds presets: build.sh [preset...]
# By default the DLL and its tools for Windows, and the simulator for this machine if that is another.
source "$(dirname "$0")/common.sh"

scripts/setup.sh build || exit 1
if [ $# -eq 0 ]; then
  build_preset windows || exit
  [ -n "${MSYSTEM:-}" ] || build_preset simulator qvx-simulator
  exit
fi
for preset in "$@"; do
  build_preset "$preset" || exit 1
done
