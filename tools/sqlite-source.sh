#!/usr/bin/env bash
# Puts SQLite's source into a folder: tools/sqlite-source.sh FOLDER. Debian has no SQLite for MinGW;
# this npm package carries the one-file source. Only the Windows tests need it.
set -euo pipefail
package=better-sqlite3@12.11.1
sum=ebf0ed75a7a59dbcb3b24bbd014ef49d9f15bc328e4adcbf516f2a8fadfa2835

folder=$1
[ -f "$folder/sqlite3.c" ] && exit 0
scratch=$(mktemp -d)
trap 'rm -rf "$scratch"' EXIT
(cd "$scratch" && npm pack --silent "$package" >/dev/null)
echo "$sum  $(ls "$scratch"/*.tgz)" | sha256sum --check --quiet
tar -xzf "$scratch"/*.tgz -C "$scratch" package/deps/sqlite3
mkdir -p "$folder"
cp "$scratch"/package/deps/sqlite3/sqlite3.[ch] "$folder/"
