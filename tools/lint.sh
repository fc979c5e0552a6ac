#!/usr/bin/env bash
# clang-tidy over every source of src/. Usage: tools/lint.sh BUILD_DIR [CHECKS]
# BUILD_DIR holds a compilation database, and what is generated; CHECKS is appended to those of
# .clang-tidy. Where the build takes many sources together, so does clang-tidy: it spends most of its time
# on the headers that they share.
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."

# The rooms of Windows need its headers: the cross compiler's warnings watch over them.
sources() {
  if grep -q '^CMAKE_UNITY_BUILD:.*=ON$' "$1/CMakeCache.txt"; then
    sed -nE 's|^ *"file": "(.*/CMakeFiles/azcoll_.*/Unity/.*)",?$|\1|p' "$1/compile_commands.json" | tr '\n' '\0'
  else
    find src -name '*.cpp' -not -path 'src/ado/*' -not -path 'src/automation/*' -print0
  fi
}

# The database speaks of g++'s options, and the sources of a unit include sources.
sources "$1" | xargs -0 -n 1 -P "$(nproc)" clang-tidy --quiet -p "$1" \
  --checks="${2:-},-bugprone-suspicious-include" \
  --extra-arg=-Wno-unknown-warning-option 2>/dev/null
echo "lint clean"
