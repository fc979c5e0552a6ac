#!/bin/sh
# Runs a Windows program in the tests' own Wine prefix, without a display: tools/wine64.sh PROGRAM [ARGS]
# The prefix is $AZCOLL_WINEPREFIX (else build/wine64); it is made by ./dev windows.
root=$(cd "$(dirname "$0")/.." && pwd)
export WINEPREFIX="${AZCOLL_WINEPREFIX:-$root/build/wine64}" WINEDEBUG="${WINEDEBUG:--all}"
unset DISPLAY
exec /usr/lib/wine/wine64 "$@"
