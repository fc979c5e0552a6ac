#!/usr/bin/env bash
# Line coverage of each room after a test run, and the floor that it must keep.
# Usage: tools/coverage.sh BUILD_DIR
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."

build=$1
failed=0
floor() {
  case $1 in
    component | data | linked | clifor) echo 95 ;;
    *) echo 90 ;;
  esac
}

gcovr --root . --object-directory "$build" --filter 'src/' --exclude-throw-branches \
  --gcov-ignore-parse-errors --csv "$build/coverage.csv" "$build" >/dev/null
printf '%-12s %8s %8s %9s\n' room lines covered percent
for folder in src/*/; do
  room=$(basename "$folder")
  read -r total covered < <(awk -F, -v room="src/$room/" \
    'index($1, room) == 1 { total += $2; covered += $3 } END { print total + 0, covered + 0 }' \
    "$build/coverage.csv")
  [ "$total" -eq 0 ] && continue
  percent=$(awk -v t="$total" -v c="$covered" 'BEGIN { printf "%.1f", 100 * c / t }')
  printf '%-12s %8d %8d %8s%%\n' "$room" "$total" "$covered" "$percent"
  if awk -v p="$percent" -v f="$(floor "$room")" 'BEGIN { exit !(p < f) }'; then
    printf '%s: line coverage below %s%%\n' "$room" "$(floor "$room")" >&2
    failed=1
  fi
done
exit "$failed"
