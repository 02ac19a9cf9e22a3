#!/usr/bin/env bash
# wine.sh PROGRAM ARGUMENT...: runs a program of the windows build under Wine, without a display, in the Wine folder that
# WINEPREFIX names or in one of this build's own. It finds the cross-compiler's own libraries.
set -euo pipefail
export WINEPREFIX=${WINEPREFIX:-$(cd "$(dirname "$0")/.." && pwd)/build/windows/wine} WINEDEBUG=-all WINEDLLOVERRIDES='mscoree,mshtml='
export TZ=${KVT01_TIME_ZONE:-EST5} # in which the system's time zone and the runtime's are the same
unset DISPLAY
mkdir -p "$WINEPREFIX"
exec {lock}>"$WINEPREFIX/lock"
flock "$lock"
if [ ! -e "$WINEPREFIX/system.reg" ]; then
    wineboot --init </dev/null >"$WINEPREFIX/wineboot.log" 2>&1
    wineserver --wait
fi
exec {lock}>&-

compiler=x86_64-w64-mingw32-g++-posix
for library in libstdc++-6.dll libwinpthread-1.dll; do
    WINEPATH=${WINEPATH:+$WINEPATH;}$(dirname "$(realpath "$($compiler -print-file-name=$library)")")
done
export WINEPATH
exec wine "$@"
