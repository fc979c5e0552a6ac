#!/usr/bin/env bash
# A PostgreSQL server of its own for tests: on loopback only, on a free port, in a scratch folder, as
# an unprivileged user. Prints the ODBC connection string on one line, then serves until its standard
# input ends, whatever ended it, and takes the server and the folder away.
set -euo pipefail

die() { printf '%s\n' "$*" >&2; exit 1; }

bin=''
for folder in /usr/lib/postgresql/*/bin; do
  [ -x "$folder/initdb" ] && bin=$folder
done
[ -n "$bin" ] || die "PostgreSQL is not installed"

as_server=()
if [ "$(id -u)" -eq 0 ]; then
  # The server refuses to run as root.
  id postgres >/dev/null 2>&1 || die "there is no user postgres to run the server as"
  as_server=(runuser -u postgres --)
fi

scratch=$(mktemp -d "${TMPDIR:-/tmp}/azcoll-postgres.XXXXXX")
started=''
finish() {
  [ -z "$started" ] ||
    "${as_server[@]}" "$bin/pg_ctl" -D "$scratch/data" -m immediate -w stop >/dev/null 2>&1 || true
  rm -rf "$scratch"
}
trap finish EXIT
trap 'exit 1' INT TERM HUP

password=$(od -An -N16 -tx1 /dev/urandom | tr -d ' \n')
printf '%s\n' "$password" >"$scratch/password"
[ ${#as_server[@]} -eq 0 ] || chown -R postgres "$scratch"
cd "$scratch"
"${as_server[@]}" "$bin/initdb" -D "$scratch/data" -U prova --pwfile="$scratch/password" \
  --auth=scram-sha-256 --encoding=UTF8 --locale=C --no-sync >"$scratch/initdb.log" 2>&1 ||
  die "initdb failed: $(tail -n 3 "$scratch/initdb.log")"

for _ in 1 2 3 4 5; do
  port=$((20000 + RANDOM))
  if "${as_server[@]}" "$bin/pg_ctl" -D "$scratch/data" -l "$scratch/data/log" -w -t 30 -o \
    "-p $port -k $scratch/data -c listen_addresses=127.0.0.1 -c fsync=off" start >/dev/null 2>&1; then
    started=$port
    break
  fi
done
[ -n "$started" ] || die "no port found for the server"

printf '%s' "Driver={PostgreSQL Unicode};Server=127.0.0.1;Port=$started;Database=postgres;"
printf '%s\n' "UID=prova;PWD=$password;BoolsAsChar=0;"
# The reading end of a pipe that nobody writes to: it ends with the program that started us.
cat >/dev/null || true
