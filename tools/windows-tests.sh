#!/usr/bin/env bash
# Runs the Windows tests under Wine: tools/windows-tests.sh BUILD_DIR PACKAGE.zip [WORD_SIZE]
# The library and the tests' own ADO are registered in a prefix that is only used here. The package is
# unpacked and used as its users do. WORD_SIZE is 64 or 32 (64); $AZCOLL_WINE names another loader.
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."
build=$(cd "$1" && pwd)
package=$(realpath "$2")
bits=${3:-64}
export AZCOLL_WINEPREFIX="${AZCOLL_WINEPREFIX:-$PWD/build/wine$bits}"
export WINEPREFIX=$AZCOLL_WINEPREFIX WINEDEBUG=-all
unset DISPLAY
if [ "$bits" = 64 ]; then
  server=/usr/lib/wine/wineserver64 libraries=x64
else
  server=/usr/lib/wine/wineserver libraries=x86
  export WINEARCH=win32 AZCOLL_WINE="${AZCOLL_WINE:-/usr/lib/wine/wine}"
fi
wine=$PWD/tools/wine.sh
scratch=$(mktemp -d)
trap '"$server" -k || true; rm -rf "$scratch"' EXIT

say() { printf '» %s\n' "$*" >&2; }
fail() { printf '%s\n' "$*" >&2; exit 1; }

# The server stays up between the programs, away from our pipes: who waits for them would wait for it.
start_wine() {
  mkdir -p "$WINEPREFIX"
  # Windows exist without a display, so that a message box waits for its answer. A desktop that runs
  # has made up its mind about that, so this one ends.
  "$wine" reg add 'HKCU\Software\Wine\Drivers' /v Graphics /t REG_SZ /d null /f \
    </dev/null >/dev/null 2>&1
  "$server" -k || true
  "$server" -w
  "$server" -p </dev/null >/dev/null 2>&1
}

registered() { "$wine" reg query 'HKCR\AZCOLLSRV.CLSCO_AZIENDECOLL\CLSID' >/dev/null 2>&1; }

register() {
  cp packaging/windows/AZCOLLSRV.manifest "$build/"
  (cd "$build" && "$wine" regsvr32 /s AZCOLLSRV.dll)
  registered || fail "regsvr32 succeeded, but the ProgID is not there"
  if (cd "$build" && "$wine" regsvr32 /s manca.dll); then
    fail "regsvr32 says that it registered a library that is not there"
  fi
  (cd "$build/tests/windows" && "$wine" regsvr32 /s ado_standin.dll)
}

# program NAME [ARGS...]: a test program; its end is shown, its failure ends everything.
program() {
  local name=$1
  shift
  say "$name"
  (cd "$build/tests/windows" && AZCOLL_TEST_DATABASE="Z:$scratch/esempio.db" \
    timeout 600 "$wine" "./$name.exe" --gtest_brief=1 "$@" </dev/null | tr -d '\r' | tail -n 60)
}

# script FILE EXPECTED [ARGS...]: cscript reports no error by its exit code, so the output decides.
script() {
  local file=$1 name expected=$2 output
  name=$(basename "$file")
  shift 2
  say "$name"
  output=$(cd "$(dirname "$file")" && timeout 120 "$wine" cscript //nologo "$name" "$@" </dev/null | tr -d '\r')
  [ "$output" = "$expected" ] || fail "$name said:
$output
expected:
$expected"
}

# command FILE [ARGS...]: one of the package's command files.
command_file() {
  say "$*"
  "$wine" cmd /c "Z:${unpacked//\//\\}\\$1" "${@:2}" </dev/null | tr -d '\r' >&2
}

run_scripts() {
  local file source="Provider=embedded;Data Source=Z:$scratch/script.db"
  cp "$scratch/esempio.db" "$scratch/script.db"
  # Script engines read their files in the code page of the system; the package's already are in it.
  for file in tests/windows/scripts/*; do
    iconv -f UTF-8 -t CP1252 "$file" >"$scratch/$(basename "$file")"
  done
  script "$unpacked/esempi/duplica.vbs" "Stato 0: il codice e' diventato 122" "$source" 5 2025 120
  # Four companies hold the customer under its new code, two of them inactive; nobody the old code.
  script "$scratch/copie.vbs" "4 2 0" "$source"
  script "$unpacked/esempi/errore.vbs" "Stato 99: Invalid column name 'X1'. in DuplicaClifor" \
    "$source" 5 2025 X1
  script "$unpacked/esempi/collegate.js" "Ditta principale: 10
Attivita': 4711
Stato 0" "$source" 5 2025
  script "$scratch/accenti.vbs" "4711 True True True True"
  script "$scratch/attivita.vbs" "4001 Agriturismo
0 True
True 0
4001" "$source" 40 2025
  script "$scratch/attivita.js" "4001 Agriturismo
Null
Tipo non corrispondente (0x80020005): Pint_TipoCF" "$source" 40 2025
}

start_wine
say "registering"
register
"$wine" "$build/tests/windows/make_database.exe" "Z:$scratch/esempio.db"
for name in data cursor service_frame service_statement ado automation scenario; do
  program "${name}_tests"
done

say "removing the registration"
(cd "$build" && "$wine" regsvr32 /s /u AZCOLLSRV.dll)
if registered; then fail "the ProgID is still registered"; fi
say "by the manifest alone"
program automation_tests --gtest_filter='ManifestOfTheDll.*'

unzip -q "$package" -d "$scratch"
unpacked=$scratch/$(basename "$package" .zip)
cmp "$build/AZCOLLSRV.dll" "$unpacked/$libraries/AZCOLLSRV.dll"
command_file registra.cmd
registered || fail "registra.cmd registered nothing"
run_scripts
command_file rimuovi.cmd
if registered; then fail "rimuovi.cmd left the ProgID behind"; fi
command_file registra.cmd /utente
command_file rimuovi.cmd /utente
echo "the Windows tests pass ($bits bit)"
