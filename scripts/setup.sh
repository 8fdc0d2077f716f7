#!/usr/bin/env bash
# Installs the Debian packages that are missing: setup.sh [build | demo | test]
# Each purpose includes the one before it; the default is test. Says nothing when all is there.
set -uo pipefail

# GoogleTest is source that the Windows preset configures; llvm-14 brings llvm-dlltool.
build=(cmake ninja-build g++ g++-mingw-w64-x86-64-posix llvm-14 libcpp-httplib-dev pkgconf
  googletest)
demo=(wine64)
test=(clang-format-14 clang-tidy-14 git python3 shellcheck)

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

command -v dpkg-query >/dev/null || fail "this is not Debian; the build needs: ${wanted[*]}"
installed=$(dpkg-query -W -f '${db:Status-Status} ${Package}\n' "${wanted[@]}" 2>/dev/null)
missing=()
for package in "${wanted[@]}"; do
  grep -qx "installed $package" <<<"$installed" || missing+=("$package")
done
[ ${#missing[@]} -eq 0 ] && exit 0

as_root=()
if [ "$(id -u)" -ne 0 ]; then
  sudo -n true 2>/dev/null || fail "run as root: apt-get install ${missing[*]}"
  as_root=(sudo -n)
fi
echo "setup: installing ${missing[*]}"
apt=("${as_root[@]}" env DEBIAN_FRONTEND=noninteractive apt-get -qq)
log=$(mktemp)
trap 'rm -f "$log"' EXIT
{ "${apt[@]}" update && "${apt[@]}" install --no-install-recommends "${missing[@]}"; } \
  </dev/null >"$log" 2>&1 ||
  fail "cannot install ${missing[*]}: $(grep '^E:' "$log" | tail -n 1)"
