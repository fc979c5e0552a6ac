#!/usr/bin/env bash
# The rules of the house that a compiler does not hold: which room may include which, where the
# platform's own headers may be named, how long a file may be.
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."

max_lines=500
failed=0
complain() {
  printf '%s\n' "$*" >&2
  failed=1
}

# Rooms that a room may include (besides itself and the standard library).
allowed() {
  case $1 in
    data | tsql) ;;
    component | linked | clifor | activities) echo component linked clifor activities data ;;
    cursor) echo data ;;
    embedded) echo data cursor tsql ;;
    odbc) echo data cursor ;;
    ado) echo data ;;
    automation) echo component ado data ;;
    platform) echo component data embedded odbc ;;
    cli) echo component data platform tsql ;;
    *) return 1 ;;
  esac
}

for folder in src/*/; do
  room=$(basename "$folder")
  if ! rooms=$(allowed "$room"); then
    complain "src/$room: not a room of the house"
    continue
  fi
  while IFS=: read -r file line include; do
    target=${include#*\"}
    target=${target%%/*}
    case " $room $rooms " in
      *" $target "*) ;;
      *) complain "$file:$line: room $room may not include room $target" ;;
    esac
  done < <(grep -rnE '^#include "' "$folder" || true)
done

# A foreign interface is named in its own room only.
foreign() {
  local room=$1 pattern=$2 hit
  while read -r hit; do
    complain "$hit: belongs into src/$room"
  done < <(grep -rnE "^#include <($pattern)>" src --include='*.h' --include='*.cpp' |
    grep -v "^src/$room/" || true)
}
foreign embedded 'sqlite3\.h'
foreign odbc 'sql(ext|types|ucode)?\.h'
foreign ado '(windows|unknwn|oleauto|oaidl|objbase)\.h'

# A provider is named in its room and in the factory that chooses it.
while read -r hit; do
  complain "$hit: names a provider"
done < <(grep -rnE '\b(embedded|odbc)::|"(embedded|odbc)/' src --include='*.h' --include='*.cpp' |
  grep -vE '^src/(embedded|odbc|platform)/' || true)

while read -r lines file; do
  [ "$lines" -le "$max_lines" ] || complain "$file: $lines lines, at most $max_lines"
done < <(git ls-files '*.cpp' '*.h' | xargs wc -l | grep -v ' total$')

[ "$failed" -eq 0 ] && echo "house rules hold"
exit "$failed"
