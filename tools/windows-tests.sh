#!/usr/bin/env bash
# Runs the Windows tests of a 64-bit build under Wine: tools/windows-tests.sh BUILD_DIR
# The library and the tests' own ADO are registered in a prefix that is only used here.
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."
build=$(cd "$1" && pwd)
export AZCOLL_WINEPREFIX="${AZCOLL_WINEPREFIX:-$PWD/build/wine64}"
export WINEPREFIX=$AZCOLL_WINEPREFIX WINEDEBUG=-all
unset DISPLAY
wine=$PWD/tools/wine64.sh
server=/usr/lib/wine/wineserver64
scratch=$(mktemp -d)
trap '"$server" -k || true; rm -rf "$scratch"' EXIT

say() { printf '» %s\n' "$*" >&2; }
fail() { printf '%s\n' "$*" >&2; exit 1; }

# The server stays up between the programs, away from our pipes: who waits for them would wait for it.
start_wine() {
  mkdir -p "$WINEPREFIX"
  "$server" -p </dev/null >/dev/null 2>&1
  [ -f "$WINEPREFIX/system.reg" ] || wineboot -i </dev/null >/dev/null 2>&1
  # Windows exist without a display, so that a message box waits for its answer.
  "$wine" reg add 'HKCU\Software\Wine\Drivers' /v Graphics /t REG_SZ /d null /f \
    </dev/null >/dev/null 2>&1
}

register() {
  cp packaging/windows/AZCOLLSRV.manifest "$build/"
  (cd "$build" && "$wine" regsvr32 /s AZCOLLSRV.dll)
  (cd "$build/tests/windows" && "$wine" regsvr32 /s ado_standin.dll)
}

run_programs() {
  local program
  for program in data cursor service_frame service_statement ado automation scenario; do
    say "${program}_tests"
    (cd "$build/tests/windows" &&
      AZCOLL_TEST_DATABASE="Z:$scratch/esempio.db" \
        timeout 900 "$wine" "./${program}_tests.exe" --gtest_brief=1 | tr -d '\r' | tail -n 25)
  done
}

# script FILE EXPECTED [ARGS...]: cscript tells of no error by its exit code, so the output decides.
script() {
  local file=$1 name expected=$2 output
  name=$(basename "$file")
  shift 2
  say "$name"
  # Script engines read their files in the code page of the system.
  iconv -f UTF-8 -t CP1252 "$file" >"$scratch/$name"
  output=$(cd "$scratch" && timeout 120 "$wine" cscript //nologo "$name" "$@" | tr -d '\r')
  [ "$output" = "$expected" ] || fail "$name said:
$output
expected:
$expected"
}

run_scripts() {
  local source examples=packaging/windows/esempi
  source="Provider=embedded;Data Source=Z:$scratch/script.db"
  cp "$scratch/esempio.db" "$scratch/script.db"
  script tests/windows/scripts/accenti.vbs "4711 True True True True"
  script $examples/duplica.vbs "Stato 0: il codice e' diventato 122" "$source" 5 2025 120
  script $examples/errore.vbs "Stato 99: Invalid column name 'X1'. in DuplicaClifor" "$source" 5 2025 X1
  script $examples/collegate.js "Ditta principale: 10
Attivita': 4711
Stato 0" "$source" 5 2025
}

start_wine
say "registering"
register
"$wine" "$build/tests/windows/make_database.exe" "Z:$scratch/esempio.db"
run_programs
run_scripts
say "removing the registration"
(cd "$build" && "$wine" regsvr32 /s /u AZCOLLSRV.dll)
if "$wine" reg query 'HKCR\AZCOLLSRV.CLSCO_AZIENDECOLL' >/dev/null 2>&1; then
  fail "the ProgID is still registered"
fi
echo "the Windows tests pass"
