#!/usr/bin/env bash
# Puts SQLite's source, as one file, into a folder: tools/sqlite-source.sh FOLDER. Debian has no SQLite for
# MinGW, but its source package, whose signature apt checks, makes that file. Only the Windows tests need it.
set -euo pipefail
folder=$(realpath -m "$1")
[ -f "$folder/sqlite3.c" ] && exit 0
scratch=$(mktemp -d)
trap 'rm -rf "$scratch"' EXIT

# The machine's own lists need not know source packages, and stay as they are.
own_apt() {
  apt-get -qq -o Dir::Etc::SourceList="$scratch/sources.list" -o Dir::Etc::SourceParts=/dev/null \
    -o Dir::State::Lists="$scratch/lists" -o Dir::Cache="$scratch/cache" -o APT::Sandbox::User="$(id -un)" "$@"
}
mkdir -p "$scratch/lists/partial" "$scratch/cache/archives/partial"
# shellcheck disable=SC1091 # of the machine, not of the project
release=$(. /etc/os-release && echo "$VERSION_CODENAME")
echo "deb-src [signed-by=/usr/share/keyrings/debian-archive-keyring.gpg]" \
  "http://deb.debian.org/debian $release main" >"$scratch/sources.list"
cd "$scratch"
if ! { own_apt update && own_apt source --download-only sqlite3; }; then
  echo "Debian's source package of SQLite, which the Windows tests are built on, could not be fetched" >&2
  exit 1
fi
mkdir source
tar -xJf sqlite3_*.orig.tar.xz -C source --strip-components=1
cd source
if ! { ./configure --disable-tcl --disable-readline && make sqlite3.c; } >"$scratch/make.log" 2>&1; then
  cat "$scratch/make.log" >&2
  exit 1
fi
mkdir -p "$folder"
cp sqlite3.h sqlite3.c "$folder/"
