#!/usr/bin/env bash
# Drives simulated cameras through QVX64.dll: builds both, runs a Wi-Fi camera on port 8080 and the
# command-line client under Wine, and shows what the one asks of the other; then the same client with
# bridge cameras, by extension unit and by HID. Meanwhile the cameras are seen on the simulator's page.
# Ends by itself.
source "$(dirname "$0")/common.sh"

product_id=0998 # with zoom ring, focus lens and lights
sweep=1:200/10s
standing=63
watch_s=6
bridge_camera=0970,zoom=5:120/4s,button=2s
bridge_watch_s=4
build_log=$logs/demo-build.log
camera_log=$logs/demo-camera.log # every request, in words
camera_errors=$logs/demo-camera-errors.log
client_errors=$logs/demo-client-errors.log
watch_log=$logs/demo-watch.log
still=$logs/demo-still.jpg
changed_still=$logs/demo-still-changed.jpg
page=$logs/demo-page.png
lens_position=12 # the simulated object is sharp there

title() {
  printf '\n%s\n' "$1"
}

last_line() {
  tail -n 1 "$1"
}

build() {
  title "Building QVX64.dll, its client and the camera"
  { build_preset windows qvxctl qvx-simulator && build_preset simulator qvx-simulator; } >"$build_log" 2>&1 ||
    fail "the build failed: $(grep -m 1 -E 'error: |CMake Error' "$build_log") (all of it: $build_log)"
  echo "  build/windows/QVX64.dll  build/windows/qvxctl.exe  build/windows/qvx-simulator.exe"
}

# A first time takes about 10 s; the camera's log would begin with a silence.
prepare_wine() {
  title "Starting Wine"
  scripts/run-wine.sh cmd.exe /c exit >/dev/null 2>"$client_errors" ||
    fail "$(last_line "$client_errors")"
  echo "  ${WINEPREFIX:-build/wine}"
}

# Arguments: what its zoom ring does, and the same in words.
start_camera() {
  title "Switching on a Wi-Fi camera $product_id; its zoom ring $2"
  : >"$camera_log"
  build/simulator/qvx-simulator --log wifi:$product_id,zoom="$1" \
    </dev/null >"$camera_log" 2>"$camera_errors" &
  camera=$!
  trap 'kill $camera 2>/dev/null' EXIT
  until grep -q '^ready' "$camera_log"; do
    kill -0 $camera 2>/dev/null || fail "the camera does not start: $(last_line "$camera_errors")"
    sleep 0.1
  done
  sed '/^ready/,$d; s/^/  /' "$camera_log"
}

stop_camera() {
  kill -0 $camera 2>/dev/null || fail "the camera ended by itself"
  kill $camera
  wait $camera
  [ ! -s "$camera_errors" ] ||
    fail "the camera was asked what a real one does not understand: $(last_line "$camera_errors")"
}

run_under_wine() {
  scripts/run-wine.sh "$@" </dev/null 2>"$client_errors" | sed -u 's/\r$//; s/^/  /'
}

client() {
  run_under_wine build/windows/qvxctl.exe --device 90 "$@"
}

open_camera() {
  title "Opening it (qvxctl --device 90 info, under Wine)"
  client info || fail "qvxctl info failed: $(last_line "$client_errors")"
}

# One finding of the camera's log, which must be in it: a label and the pattern that captures it.
asked() {
  local found
  found=$(sed -nE "s/.*$2.*/\1/p" "$camera_log" | head -n 1)
  [ -n "$found" ] || fail "Init did not ask for the $1 ($camera_log)"
  printf '  %-17s %s\n' "$1" "$found"
}

show_what_init_asked() {
  title "What Init asked the camera ($(grep -c ' s  wifi-' "$camera_log") requests, in $camera_log)"
  asked "product id" 'product id -> (0x[0-9A-Fa-f]+)'
  asked "feature register" 'controller 0x80 -> (0x[0-9A-Fa-f]+)'
  asked "calibration" 'controller 0xC5 -> 0x[0-9A-Fa-f]+ +calibration: (.*)'
}

watch_zoom() {
  title "Watching the zoom ring for $watch_s s (qvxctl --device 90 watch --seconds $watch_s)"
  client watch --seconds $watch_s | tee "$watch_log" ||
    fail "qvxctl watch failed: $(last_line "$client_errors")"
  [ "$(grep -c ' x ' "$watch_log")" -ge 2 ] || fail "the magnification did not change"
}

# Arguments: a command of the client and what it takes.
command_camera() {
  client "$@" || fail "qvxctl $1 failed: $(last_line "$client_errors")"
}

# Exposure by hand, or the camera would make up for the light.
take_still() {
  title "Switching the light on and taking a still (qvxctl snapshot $still)"
  rm -f "$still"
  command_camera ae off
  command_camera led on
  command_camera snapshot "$still"
  [ -s "$still" ] || fail "there is no still in $still"
}

take_changed_still() {
  title "Moving the lens, switching the light off and taking another (qvxctl snapshot $changed_still)"
  rm -f "$changed_still"
  command_camera lens pos $lens_position
  command_camera led off
  command_camera snapshot "$changed_still"
  [ -s "$changed_still" ] || fail "there is no still in $changed_still"
  ! cmp -s "$still" "$changed_still" || fail "lens and light changed nothing in the still"
  echo "  $(stat -c %s "$still") bytes with light, $(stat -c %s "$changed_still") bytes without: open the two to compare"
}

# Chromium is not a part of the demo, and used where it is.
show_page() {
  local url
  url=$(sed -n 's/^page  //p' "$camera_log")
  title "The camera is seen, and turned, at $url while this runs"
  command -v chromium >/dev/null || return 0
  command_camera led on
  rm -f "$page"
  timeout 60 chromium --headless --no-sandbox --disable-gpu --hide-scrollbars \
    --window-size=1360,1000 --screenshot="$page" "$url" >/dev/null 2>&1
  [ -s "$page" ] || fail "the browser shows no page at $url"
  echo "  $page"
}

# Arguments: the camera's transport, and how it is reached in words.
watch_bridge() {
  title "A bridge camera by its $2: zoom ring and touch button for $bridge_watch_s s"
  run_under_wine build/windows/qvx-simulator.exe "$1:$bridge_camera" -- build/windows/qvxctl.exe --device 0 watch --seconds $bridge_watch_s |
    tee "$watch_log" || fail "qvx-simulator $1: failed: $(last_line "$client_errors")"
  [ "$(grep -c ' x ' "$watch_log")" -ge 2 ] || fail "the magnification did not change"
  grep -q 'touch button' "$watch_log" || fail "the touch button was not heard"
}

scripts/setup.sh demo || exit 1
build
prepare_wine
start_camera $sweep "turns from x1 to x200 and back"
open_camera
show_what_init_asked
watch_zoom
stop_camera
start_camera $standing "stands at x$standing"
take_still
take_changed_still
show_page
stop_camera
watch_bridge usb "extension unit"
watch_bridge hid "HID interface"
title "All of it worked. To look at cameras for longer: build/simulator/qvx-simulator wifi:$product_id"
