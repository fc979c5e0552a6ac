#!/usr/bin/env bash
# The main job on the example database, step by step. Usage: tools/demo.sh COMMAND_AZCOLL
set -euo pipefail

azcoll=$1
folder=$(mktemp -d)
trap 'rm -rf "$folder"' EXIT
db=$folder/azienda.db
trace=$folder/traccia.jsonl

title() { printf '\n=== %s\n\n' "$*"; }
query() { "$azcoll" sql --db "$db" "$1"; }

# What a person wants to see of a customer in each company of the group.
customer() {
  query "SELECT C.CG44_DITTA_CG18 AS Ditta, C.CG44_CLIFOR AS Codice, A.CG16_RAGSOANAG AS Cliente,
       CASE WHEN C.CG44_FLGATTIVO = 1 THEN 'sì' ELSE 'no' END AS Attivo, C.CG44_CONTO_CG24 AS Conto,
       C.CG44_CODPAG_CG62 AS Pagam, C.CG44_INTERMEDIO_CG40 AS Interm, C.CG44_CODSEDE_CG31 AS Sede,
       C.CG44_IDAGENTE_MG17 AS Agente,
       (SELECT COUNT(*) FROM MG19_CLIFORVA WHERE MG19_DITTA_CG18 = C.CG44_DITTA_CG18
           AND MG19_TIPOCF_CG44 = C.CG44_TIPOCF AND MG19_CLIFOR_CG44 = C.CG44_CLIFOR) AS Vendite
       FROM CG44_CLIFOR AS C INNER JOIN CG16_ANAGGEN AS A ON A.CG16_CODICE = C.CG44_CODICE_CG16
       WHERE C.CG44_TIPOCF = 0 AND C.CG44_CODICE_CG16 = $1
       ORDER BY C.CG44_DITTA_CG18"
}

# Rows per sub-table of one customer of company 5, whatever its code.
sub_tables() {
  local sql="" table prefix
  for table in MG1C_CLIFORAGEMUL MG22_CLIFORDEST MG24_CLIFORRAG MG27_CLIFORACC MG28_CLIFORINT \
    MG26_CLIFORNOTE MG41_CLIFORVETT MG23_CLIFORNCOP MG35_CLIFORCC MG29_CLIFORRID \
    MG20_CLIFORSCPAG MG21_CLIFORSALPAG MG19_CLIFORVA; do
    prefix=${table%%_*}
    sql+="${sql:+, }(SELECT COUNT(*) FROM $table WHERE ${prefix}_DITTA_CG18 = C.CG44_DITTA_CG18
        AND ${prefix}_TIPOCF_CG44 = C.CG44_TIPOCF AND ${prefix}_CLIFOR_CG44 = C.CG44_CLIFOR) AS $prefix"
  done
  query "SELECT C.CG44_CLIFOR AS Codice, $sql FROM CG44_CLIFOR AS C
         WHERE C.CG44_DITTA_CG18 = 5 AND C.CG44_TIPOCF = 0 AND C.CG44_CODICE_CG16 = $1"
}

# Everything that the call may touch, as one text to compare.
snapshot() {
  local table
  for table in CG44_CLIFOR MG19_CLIFORVA CG40_ANADITTAINTER CG31_ANADITTASEDI CG70_NUMERDOC \
    MG1C_CLIFORAGEMUL MG22_CLIFORDEST MG21_CLIFORSALPAG; do
    "$azcoll" sql --db "$db" --csv "SELECT * FROM $table"
  done
}

# call CODE: the duplication of a customer of company 5, with what it did.
call() {
  echo "\$ azcoll esegui DuplicaCliFor --db azienda.db --imposta Pvar_Ditta=5" \
    "--imposta Pvar_CliFor=$1 --imposta AnnoSolare=2025"
  "$azcoll" esegui DuplicaCliFor --db "$db" --imposta Pvar_Ditta=5 --imposta Pvar_CliFor="$1" \
    --imposta AnnoSolare=2025 --traccia "$trace" || true
  awk '{ operations++; if (match($0, /"ms":[0-9.e-]+/)) ms += substr($0, RSTART + 5, RLENGTH - 5) }
    /"op":"Execute"/ { statements++ }
    END { printf "\n%d operazioni sul database, di cui %d istruzioni T-SQL, in %.1f ms\n",
          operations, statements, ms }' "$trace"
}

title "Il database di esempio"
"$azcoll" crea --db "$db" --esempio

title "Il gruppo di aziende collegate nel 2025"
query "SELECT DISTINCT L.CG86_DITTA_CG18 AS Principale, L.CG86_DITTACOLL_CG18 AS Collegata,
         A.CG16_RAGSOANAG AS Nome
       FROM CG86_AZIENDECOLL AS L
       INNER JOIN CG18_ANADITTABASE AS D ON D.CG18_DITTA = L.CG86_DITTACOLL_CG18
       INNER JOIN CG16_ANAGGEN AS A ON A.CG16_CODICE = D.CG18_CODICE_CG16
       WHERE L.CG86_INDTIPO = 0 AND L.CG86_ANNOIVA = 2025 AND L.CG86_DITTA_CG18 = 10
         AND L.CG86_DITTA_CG18 <> L.CG86_DITTACOLL_CG18
       ORDER BY L.CG86_DITTACOLL_CG18"

title "Prima: il cliente 120 appena salvato nell'azienda 5"
customer 3005
echo
echo "Righe nelle sue sotto-tabelle:"
sub_tables 3005
echo
echo "Chi ha già i codici 120, 121 e 122:"
query "SELECT C.CG44_DITTA_CG18 AS Ditta, C.CG44_CLIFOR AS Codice, A.CG16_RAGSOANAG AS Cliente
       FROM CG44_CLIFOR AS C INNER JOIN CG16_ANAGGEN AS A ON A.CG16_CODICE = C.CG44_CODICE_CG16
       WHERE C.CG44_TIPOCF = 0 AND C.CG44_CLIFOR IN (120, 121, 122)
       ORDER BY C.CG44_CLIFOR, C.CG44_DITTA_CG18"

title "La chiamata"
call 120

title "Dopo: lo stesso cliente in ogni azienda del gruppo"
customer 3005
echo
echo "Righe nelle sotto-tabelle dell'azienda 5, ora sotto il nuovo codice:"
sub_tables 3005

title "La stessa chiamata rifiutata: il cliente 140 ha un apostrofo nella zona (L'Aquila)"
snapshot >"$folder/prima.csv"
call 140
snapshot >"$folder/dopo.csv"
echo
if cmp -s "$folder/prima.csv" "$folder/dopo.csv"; then
  echo "Il database è uguale a prima: niente è stato scritto."
else
  echo "Il database è cambiato." >&2
  exit 1
fi

# delete CODE: the customer of company 5 is deleted in the rest of its group.
delete() {
  echo "\$ azcoll esegui EliminaCliFor --db azienda.db --imposta Pvar_Ditta=5" \
    "--imposta Pvar_CliFor=$1 --imposta AnnoSolare=2025"
  "$azcoll" esegui EliminaCliFor --db "$db" --imposta Pvar_Ditta=5 --imposta Pvar_CliFor="$1" \
    --imposta AnnoSolare=2025 || true
  echo
  query "SELECT CG44_DITTA_CG18 AS Ditta, CG44_CLIFOR AS Codice FROM CG44_CLIFOR
         WHERE CG44_TIPOCF = 0 AND CG44_CLIFOR = $1 ORDER BY CG44_DITTA_CG18"
}

title "Un'eliminazione rifiutata: l'azienda 12 ha un documento del cliente 122"
"$azcoll" sql --db "$db" <tests/support/documenti.sql >/dev/null
query "INSERT INTO MG60_DOCUMENTI (MG60_DITTA_CG18, MG60_ANNO, MG60_NUMERO, MG60_DATA,
         MG60_TIPOCF_CG44, MG60_CLIFOR_CG44, MG60_IMPTOTALE)
       VALUES (12, 2025, 1, '20250115', 0, 122, 250.0000)" >/dev/null
delete 122

title "Senza quel documento l'eliminazione arriva in tutto il gruppo; nell'azienda 5 la fa chi chiama"
query "DELETE FROM MG60_DOCUMENTI WHERE MG60_DITTA_CG18 = 12 AND MG60_ANNO = 2025" >/dev/null
delete 122
