# shellcheck shell=bash
# What the scripts share; each sources it and then works in the root of the tree.
set -uo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.." || exit 1

logs=build/logs
jobs=$(nproc)
mkdir -p "$logs"

fail() {
  echo "$(basename "$0" .sh): $1" >&2
  exit 1
}

# Configures and builds a preset: all of it, or the targets named.
build_preset() {
  local preset=$1 targets=()
  shift
  [ $# -eq 0 ] || targets=(--target "$@")
  cmake --preset "$preset" && cmake --build --preset "$preset" -j "$jobs" "${targets[@]}" -- --quiet
}
