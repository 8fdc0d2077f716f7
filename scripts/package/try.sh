#!/usr/bin/env bash
# Unpacks the package into an empty folder and uses it as its users do, under Wine: try.sh ZIP
# In a network namespace of its own, where the camera's built-in address is this machine, and in a Wine
# prefix of its own. Where there may be no namespace, the built-in address is left alone. Ends all that
# it started.
source "$(dirname "$0")/../common.sh"

alone=${2:-}
namespace=(unshare --net)
[ "$(id -u)" -eq 0 ] || namespace+=(--map-root-user)
if [ -z "$alone" ]; then
  "${namespace[@]}" true 2>/dev/null && exec "${namespace[@]}" "$0" "$1" alone
  echo "try: no network namespace may be made: the camera's built-in address is not tried"
fi

zip=$PWD/$1
tried=$PWD/build/package/tried
toolchain=$PWD/cmake/mingw-w64.cmake
wine=$PWD/scripts/run-wine.sh
export WINEPREFIX=$PWD/build/package/wine WINESERVER=/usr/lib/wine/wineserver64
built_in=$(sed -n 's/^QVX_CAMERA_ADDRESS:STRING=//p' build/release/CMakeCache.txt)

end_wine() {
  "$WINESERVER" -k
  "$WINESERVER" -w
}

# Arguments: options of the simulator and cameras, --, program and arguments.
with_camera() {
  "$wine" simulator/qvx-simulator.exe --no-page "$@" </dev/null >try.log 2>&1 || {
    cat try.log
    fail "failed: qvx-simulator $*"
  }
}

build_example() {
  { cmake -S examples/cpp -B built -G Ninja -DCMAKE_TOOLCHAIN_FILE="$toolchain" \
    -DQVX64_DIR="$PWD/lib/cmake/QVX64" && cmake --build built; } >try.log 2>&1 || {
    cat try.log
    fail "examples/cpp cannot be built"
  }
}

{ rm -rf "$tried" && mkdir -p "$tried" && cd "$tried"; } || fail "cannot write $tried"
{ python3 -m zipfile -e "$zip" . && cd QVX64-* && sha256sum --check --quiet SHA256SUMS; } ||
  fail "the zip is damaged"
trap end_wine EXIT

# The DLL finds the camera at its own address, and where it is told.
if [ -n "$alone" ]; then
  { ip link set lo up && ip address add "$built_in/32" dev lo; } || fail "no network"
  with_camera --address "$built_in" wifi:0998,zoom=63 -- bin/qvxctl.exe --device 90 info
fi
with_camera wifi:0998,zoom=63,port=8091 -- bin/qvxctl.exe --camera 127.0.0.1:8091 selftest
with_camera usb:0970 -- bin/qvxctl.exe --device 0 info
build_example
export QVX64_WIFI_CAMERA=127.0.0.1:8091
with_camera wifi:0998,zoom=1:200/2s,button=1s,port=8091 -- built/microscope.exe 2 still.jpg
for line in magnification button "still in"; do
  grep -q "^$line" try.log || fail "the example did not tell \"$line\""
done
