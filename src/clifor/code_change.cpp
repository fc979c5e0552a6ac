// A customer/supplier takes another code inside its company, with every row that hangs off it.

#include <algorithm>
#include <vector>

#include "component/service.h"
#include "data/tables.h"
#include "data/text.h"

namespace azcoll {

/// Moves the customer/supplier of the input object to `nuovoCodice`. The order keeps the references
/// whole at every step: the rows of the sub-tables leave, the master row changes its code, then the
/// rows come back under the new code, the last table first.
void CLSCO_AZIENDECOLL::AggiornaCodiceCliFor(const Variant& nuovoCodice) {
  std::vector<std::shared_ptr<Recordset>> staged;
  staged.reserve(tables::kSubTables.size());
  for (const std::string_view table : tables::kSubTables) {
    staged.push_back(aggiornaCodice(table, nuovoCodice));
  }
  const CLSCO_INPUTAZCOLL& in = input();
  esegui(join("UPDATE CG44_CLIFOR ",                                    //
              " SET CG44_CLIFOR = ", nuovoCodice,                       //
              " WHERE CG44_DITTA_CG18 = ", in.Pvar_Ditta,               //
              " AND CG44_TIPOCF = ", static_cast<int>(in.Pint_TipoCF),  //
              " AND CG44_CLIFOR = ", in.Pvar_CliFor));
  std::ranges::reverse(staged);
  for (const std::shared_ptr<Recordset>& rows : staged) {
    if (rows && rows->recordCount() != 0) {
      rows->updateBatch(Affect::All);
    }
  }
}

/// Stages the rows of one sub-table under the new code in a batch recordset and deletes them under
/// the old one. Returns the staged recordset, or null when the customer/supplier has no rows there.
std::shared_ptr<Recordset> CLSCO_AZIENDECOLL::aggiornaCodice(std::string_view tabella,
                                                             const Variant& nuovoCodice) {
  const CLSCO_INPUTAZCOLL& in = input();
  const std::string_view prefix = tables::prefix(tabella);
  const std::string codeColumn = join(prefix, "_CLIFOR_CG44");
  const std::string rowsOfOldCode =
      join(" FROM ", tabella,                                                     //
           " WHERE ", prefix, "_DITTA_CG18 = ", in.Pvar_Ditta,                    //
           " AND ", prefix, "_TIPOCF_CG44 = ", static_cast<int>(in.Pint_TipoCF),  //
           " AND ", codeColumn, " = ", in.Pvar_CliFor);
  const std::shared_ptr<Recordset> source = leggi(join("SELECT *", rowsOfOldCode));
  if (source->recordCount() == 0) {
    return nullptr;
  }
  std::shared_ptr<Recordset> staged = connessione().newRecordset();
  staged->open(join("SELECT * FROM ", tabella, " WHERE 1=2"), in.Connessione, CursorType::Keyset,
               LockType::BatchOptimistic, CommandOption::Text);
  Fields& from = source->fields();
  Fields& to = staged->fields();
  for (source->moveFirst(); !source->atEnd(); source->moveNext()) {
    staged->addNew();
    for (std::size_t index = 0; index < from.count(); ++index) {
      const Field& column = from.item(index);
      to.item(index).setValue(column.name() == codeColumn ? nuovoCodice : column.value());
    }
    staged->update();
  }
  esegui(join("DELETE", rowsOfOldCode));
  return staged;
}

}  // namespace azcoll
