#!/usr/bin/env bash
# Makes build/QVX64-VERSION-windows-x64.zip, which is what users on Windows get: package.sh [--untried]
# What is in it has been tried (scripts/package/try.sh) before the zip gets its name. A commit gives
# the same zip, byte for byte, in every folder.
source "$(dirname "$0")/common.sh"

version=$(sed -n 's/^project(QVX64 VERSION \([0-9.]*\).*/\1/p' CMakeLists.txt)
zip=build/QVX64-$version-windows-x64.zip
content=build/package/QVX64-$version
simulated=(qvx-simulator.exe qvx-capture-filter.dll qvx-hid-bridge.sys)

# As they are shipped: the DLL looks for its camera at the address that was configured.
check_files() {
  local file address
  address=$(sed -n 's/^QVX_CAMERA_ADDRESS:STRING=//p' build/release/CMakeCache.txt)
  for file in bin/QVX64.dll bin/qvxctl.exe simulator/qvx-simulator.exe; do
    python3 scripts/package/check_file.py "$content/$file" --version "$version" \
      --camera-address "$address" || return
  done
}

# Nobody has to find a DLL for the other programs either.
check_programs() {
  local foreign windows='advapi32|hid|hidclass|kernel32|msvcrt|ntoskrnl|ole32|oleaut32|setupapi|shlwapi|user32'
  foreign=$(find "$content"/{bin,simulator} -type f -print0 | xargs -0 x86_64-w64-mingw32-objdump -p |
    sed -n 's/.*DLL Name: //p' | grep -viE "^($windows|wininet|ws2_32|qvx64)\.")
  [ -z "$foreign" ] || fail "a program needs what Windows does not have: $foreign"
}

copy_files() {
  cmake --install build/release --prefix "$content" >/dev/null &&
    mkdir -p "$content"/{simulator/usb3,doc} &&
    cp "${simulated[@]/#/build/release/}" "$content/simulator" &&
    cp build/release/usb3/libusbK.dll "$content/simulator/usb3" &&
    git ls-files -z examples | xargs -0 cp --parents -t "$content" &&
    cp CHANGES "$content" &&
    python3 scripts/package/texts.py "$content" "$version"
}

sum_up() {
  local sums
  sums=$(cd "$content" && find . -type f -printf '%P\0' | LC_ALL=C sort -z | xargs -0 sha256sum) &&
    echo "$sums" >"$content/SHA256SUMS"
}

scripts/setup.sh demo || exit 1
for tool in git python3; do
  command -v $tool >/dev/null || fail "$tool is missing"
done
time=$(git log -1 --format=%ct) || fail "this is no clone of the repository"
[ -z "$(git status --porcelain --untracked-files=no)" ] || echo "package: with uncommitted changes"
{ [ -w build ] && rm -rf "$content" "$zip" "$zip.untried" && mkdir -p "$content"; } ||
  fail "cannot write to $PWD/build"
build_preset release >"$logs/package-build.log" 2>&1 || {
  cat "$logs/package-build.log"
  fail "the build failed"
}
{ copy_files && sum_up; } || fail "cannot put together $content"
check_files || fail "not fit to be shipped"
check_programs
python3 scripts/package/make_zip.py "$content" "$zip.untried" "$time" || exit 1
if [ "${1:-}" != --untried ]; then
  scripts/package/try.sh "$zip.untried" || {
    rm -f "$zip.untried"
    fail "what the zip holds does not work"
  }
fi
mv "$zip.untried" "$zip" || fail "cannot write $zip"
echo "$zip"
