#!/usr/bin/env bash
# Runs a program while a simulated Wi-Fi camera is switched on:
#   with_wifi_camera.sh CAMERA [OPTION]... -- PROGRAM [ARGUMENT]...
# Fails when the program does, and when it asked the camera what a real one does not understand.
set -u

camera=("$1")
shift
while [ "$1" != -- ]; do
  camera+=("$1")
  shift
done
shift

out=$(mktemp)
errors=$(mktemp)
"${camera[@]}" </dev/null >"$out" 2>"$errors" &
pid=$!
trap 'kill $pid 2>/dev/null; rm -f "$out" "$errors"' EXIT
until grep -q '^ready on' "$out"; do
  kill -0 $pid 2>/dev/null || { cat "$errors"; exit 1; }
  sleep 0.05
done

"$@"
status=$?
if [ -s "$errors" ]; then
  cat "$errors"
  status=1
fi
exit $status
