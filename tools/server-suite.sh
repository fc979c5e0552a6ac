#!/usr/bin/env bash
# server-suite.sh FOLDER PROGRAM FILTER: one test program on the server of AZCOLL_TEST_CONNESSIONE. Prints
# its closing lines, what it says of random draws, each reason for which cases were skipped once, and
# everything when it fails.
set -euo pipefail
folder=$1 program=$2 filter=$3
log=$(mktemp)
trap 'rm -f "$log"' EXIT
start=$SECONDS
status=0
"$folder/$program" --gtest_filter="$filter" >"$log" 2>&1 || status=$?
{
  printf '» %s on the server, %d s\n' "$program" $((SECONDS - start))
  if [ "$status" -ne 0 ]; then
    grep -vE '^\[ +(RUN|OK) +\]' "$log"
  else
    grep -E '^seed |[0-9]+ (calls|clients|statements|operations|of [0-9]+)' "$log" | sed 's/^/  /' || true
    # The reason stands on the line behind the place.
    grep -A1 ': Skipped$' "$log" | grep -vE ': Skipped$|^--$' | sort | uniq -c |
      sed -E 's/^ *([0-9]+) /  skipped \1: /' || true
    grep -E '^\[ +(PASSED|SKIPPED|FAILED) +\] [0-9]+ test' "$log" || true
  fi
} >&2
exit "$status"
