#include "component/numerazione_cg70.h"

#include "data/error.h"
#include "data/text.h"
#include "text/quoting.h"

namespace azcoll {
namespace {

bool isWhole(const Variant& value) {
  try {
    return !value.isEmpty() && value.toDecimal().toInteger().has_value();
  } catch (const Error&) {
    return false;
  }
}

}  // namespace

void NumerazioneCG70::ElaboraNumerazione() {
  if (Modo != kRecordUsedNumber) {
    esito_ = Esito::ModoNonPrevisto;
    return;
  }
  if (!Connessione || !isWhole(Ditta) || !isWhole(Codice)) {
    esito_ = Esito::DatiMancanti;
    return;
  }
  try {
    registra();
    esito_ = Esito::Riuscita;
  } catch (const Error&) {
    esito_ = Esito::ErroreDatabase;
  }
}

void NumerazioneCG70::registra() {
  const std::int64_t company = Ditta.toInt64();
  const std::int64_t number = Codice.toInt64();
  const std::string section = inQuotes(Sezione, '\'');
  const std::string key =
      join(" WHERE CG70_DITTA_CG18 = ", company, " AND CG70_SEZ_CG68 = ", section,
           " AND CG70_ANNO = ", Anno, " AND CG70_TIPODOCINT = ", TipoDocumento);
  std::int64_t affected = 0;
  const std::shared_ptr<Recordset> row = Connessione->execute(
      join("SELECT CG70_ULTNUMDOC FROM CG70_NUMERDOC", key), affected, CommandOption::Text);
  if (!row || row->atEnd()) {
    Connessione->execute(
        join("INSERT INTO CG70_NUMERDOC (CG70_DITTA_CG18, CG70_SEZ_CG68, CG70_ANNO,"
             " CG70_TIPODOCINT, CG70_ULTNUMDOC) VALUES (",
             company, ", ", section, ", ", Anno, ", ", TipoDocumento, ", ", number, ")"),
        affected, CommandOption::Text);
    return;
  }
  // The condition stands in the statement: another caller may have raised the number meanwhile.
  const Variant last = row->fields().item("CG70_ULTNUMDOC").value();
  if (last.isNull() || last.toInt64() < number) {
    Connessione->execute(join("UPDATE CG70_NUMERDOC SET CG70_ULTNUMDOC = ", number, key,
                              " AND (CG70_ULTNUMDOC IS NULL OR CG70_ULTNUMDOC < ", number, ")"),
                         affected, CommandOption::Text);
  }
}

}  // namespace azcoll
