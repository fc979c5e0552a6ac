#!/bin/sh
# Runs a Windows program in the tests' own Wine prefix, without a display: tools/wine.sh PROGRAM [ARGS]
# The prefix is $AZCOLL_WINEPREFIX (else build/wine64), made by ./dev windows; the loader $AZCOLL_WINE.
root=$(cd "$(dirname "$0")/.." && pwd)
export WINEPREFIX="${AZCOLL_WINEPREFIX:-$root/build/wine64}" WINEDEBUG="${WINEDEBUG:--all}"
unset DISPLAY
exec "${AZCOLL_WINE:-/usr/lib/wine/wine64}" "$@"
