#!/usr/bin/env bash
# Runs every command line shown in the `sh` blocks of the README and of docs/, in a scratch folder and
# in the order in which they stand there. The commands that CI runs by themselves are left out.
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."
root=$PWD
scratch=$(mktemp -d)
trap 'rm -rf "$scratch"' EXIT

for page in README.md docs/*.md; do
  folder=$scratch/$(basename "$page" .md)
  mkdir -p "$folder"
  printf '#!/bin/sh\nexec "%s/dev" "$@"\n' "$root" >"$folder/dev"
  chmod +x "$folder/dev"
  while IFS= read -r line; do
    case $line in
      './dev demo' | './dev test' | './dev server' | './dev check' | './dev bench' | '#'* | '') continue ;;
      'git clone '* | 'cd '*) continue ;; # how a person gets here
    esac
    echo "» $page: $line"
    (cd "$folder" && bash -euo pipefail -c "$line" </dev/null >output.txt 2>&1) || {
      cat "$folder/output.txt" >&2
      echo "$page: this command failed: $line" >&2
      exit 1
    }
  done < <(awk '/^```sh$/ { inside = 1; next } /^```/ { inside = 0 } inside' "$page")
done
echo "the documented commands run"
