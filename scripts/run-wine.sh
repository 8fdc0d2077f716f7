#!/bin/sh
# Runs a Windows program under Wine, without a display: run-wine.sh program.exe arguments...
# CMake puts it before every cross-built test (CMAKE_CROSSCOMPILING_EMULATOR).
# WINEPREFIX and WINEDEBUG may be set; without WINEPREFIX, all builds of this tree share one prefix.

# The programs themselves: the wrappers in the PATH complain about the missing 32-bit half at every
# start, and are in a package of their own.
wine=/usr/lib/wine/wine64
export WINESERVER=/usr/lib/wine/wineserver64
linger_s=20 # how long the server waits for the next program

root=$(cd "$(dirname "$0")/.." && pwd) || exit 1
export WINEPREFIX="${WINEPREFIX:-$root/build/wine}"
export WINEARCH=win64 WINEDEBUG="${WINEDEBUG:--all}"
# No .NET, no HTML, no entries in the developer's menus.
export WINEDLLOVERRIDES="mscoree,mshtml=;winemenubuilder.exe=d"
unset DISPLAY WAYLAND_DISPLAY

# Windows get a driver that needs no display; a server reads that only when it starts. No debugger
# comes up by itself: it waits in a dialog that nobody sees, or a crash ends with exit code 0.
create_prefix() {
  "$wine" wineboot -i &&
    "$wine" reg add 'HKCU\Software\Wine\Drivers' /v Graphics /d null /f &&
    "$wine" reg add 'HKLM\Software\Microsoft\Windows NT\CurrentVersion\AeDebug' \
      /v Debugger /d none /f &&
    touch "$WINEPREFIX/.prepared"
  "$WINESERVER" -k
  "$WINESERVER" -w
  [ -f "$WINEPREFIX/.prepared" ]
}

# Starts Wine's services apart from the program: they would inherit its output, and whoever reads
# that to its end would wait for them. Where a server is running, another one just fails, and the
# services run, too.
start_services() {
  [ -f "$WINEPREFIX/.prepared" ] || create_prefix || return
  if "$WINESERVER" -p"$linger_s"; then "$wine" cmd.exe /c exit; fi
}

fail() {
  echo "run-wine: $1" >&2
  exit 1
}

[ -x "$wine" ] || fail "Wine is not installed ($wine)"
mkdir -p "$WINEPREFIX" || fail "cannot create $WINEPREFIX"
# One at a time. Nothing that Wine starts may inherit the lock: the server would keep it.
{ flock 9 && start_services 9>&-; } 9>"$WINEPREFIX.lock" </dev/null >/dev/null 2>&1 ||
  fail "Wine does not start in $WINEPREFIX"
exec "$wine" "$@"
