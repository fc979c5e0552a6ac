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

# The table of rooms: what a room may include besides itself and the standard library.
declare -A allowed
while IFS=: read -r room rooms; do
  allowed[$room]=${rooms# }
done < <(grep -E '^[a-z/]+:' cmake/rooms.txt)

# The room of a path below src/: a room inside another one where the table names it.
room_of() {
  local folder=${1%/*}
  while [ -z "${allowed[$folder]+known}" ] && [ "$folder" != "${folder%/*}" ]; do
    folder=${folder%/*}
  done
  printf '%s' "$folder"
}

for folder in src/*/; do
  folder=${folder#src/}
  [ -n "${allowed[${folder%/}]+known}" ] || complain "src/${folder%/}: not a room of cmake/rooms.txt"
done
while IFS=: read -r file line include; do
  room=$(room_of "${file#src/}")
  include=${include#*\"}
  target=$(room_of "${include%%\"*}")
  # What a house may include its inner rooms may, too; they stand open to the house itself.
  [ "$room" = "${target%/*}" ] && continue
  case " $room ${allowed[$room]-} ${allowed[${room%%/*}]-} " in
    *" $target "*) ;;
    *) complain "$file:$line: room $room may not include room $target" ;;
  esac
done < <(grep -rnE '^#include "' src --include='*.h' --include='*.cpp' || true)

# CONTRIBUTING shows the same table to people.
for room in "${!allowed[@]}"; do
  [ "$room" = "${room%/*}" ] || continue
  row=$(grep -F "| \`src/$room\` |" CONTRIBUTING.md || true)
  # shellcheck disable=SC2016 # the marks of Markdown
  named=$(cut -d'|' -f3 <<<"$row" | { grep -oE '`[a-z]+`' || true; } | tr -d '\`' | sort | tr '\n' ' ')
  wanted=$(tr ' ' '\n' <<<"${allowed[$room]}" | sed '/^$/d' | sort | tr '\n' ' ')
  [ -n "$row" ] || complain "CONTRIBUTING.md: no row for src/$room"
  [ "$named" = "$wanted" ] || complain "CONTRIBUTING.md: src/$room may include $wanted, not $named"
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
