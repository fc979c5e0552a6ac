#!/usr/bin/env bash
# Packs the Windows libraries for their users: tools/pack-windows.sh BUILD_64 BUILD_32
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."
folder=build/AZCOLLSRV-windows
rm -rf "$folder" "$folder.zip"
mkdir -p "$folder/x64" "$folder/x86" "$folder/esempi"
for pair in "x64 $1" "x86 $2"; do
  read -r name build <<<"$pair"
  cp "$build/AZCOLLSRV.dll" "$build/AZCOLLSRV.tlb" packaging/windows/AZCOLLSRV.manifest "$folder/$name/"
done
# Command files and scripts are read in the system's code page, and by Windows line ends.
for file in packaging/windows/*.cmd packaging/windows/LEGGIMI.txt packaging/windows/esempi/*; do
  target=$folder/${file#packaging/windows/}
  case $file in
    *.vbs | *.js | *.bas | *.cmd) iconv -f UTF-8 -t CP1252 "$file" ;;
    *) cat "$file" ;;
  esac | sed 's/$/\r/' >"$target"
done
(cd build && zip -qrX "$(basename "$folder").zip" "$(basename "$folder")")
echo "packed: $folder.zip"
