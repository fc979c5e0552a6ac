#!/usr/bin/env bash
# Runs one fuzzing program of build/fuzz: tools/fuzz.sh TARGET SECONDS. What it learns stays in
# build/fuzz/corpus, what it finds in build/fuzz/findings.
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."
target=$1 seconds=$2
log=build/fuzz/$target.log
mkdir -p build/fuzz/findings "build/fuzz/corpus/$target" "tests/fuzz/crashes/$target"

say() { printf '» %s: %s\n' "$target" "$*" >&2; }

if "build/fuzz/tests/fuzz/fuzz_$target" -max_total_time="$seconds" -timeout=25 \
  -rss_limit_mb=2048 -max_len=4096 -print_final_stats=1 -dict="tests/fuzz/$target.dict" \
  -artifact_prefix="build/fuzz/findings/$target-" "build/fuzz/corpus/$target" \
  "tests/fuzz/corpus/$target" "tests/fuzz/crashes/$target" >"$log" 2>&1; then
  say "$(grep -aE '^Done' "$log")"
else
  grep -aE '^BROKEN|runtime error|^SUMMARY|Test unit written' "$log" >&2 || true
  say "found something (whole log: $log); once fixed, the file belongs into" \
    "tests/fuzz/crashes/$target under the next number"
  exit 1
fi
