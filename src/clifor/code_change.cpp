// A customer/supplier takes another code inside its company, with every row that hangs off it.

#include "clifor/code_change.h"

#include <algorithm>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "data/tables.h"
#include "data/text.h"

namespace azcoll::clifor {
namespace {

/// Stages the rows of one sub-table under the new code in a batch recordset and deletes them under
/// the old one. Returns the staged recordset, or null when the customer/supplier has no rows there.
std::shared_ptr<Recordset> stageUnderNewCode(Call& call, std::string_view table,
                                             const Variant& newCode) {
  const CLSCO_INPUTAZCOLL& in = call.input();
  const std::string_view prefix = tables::prefix(table);
  const std::string codeColumn = join(prefix, "_CLIFOR_CG44");
  const std::string rowsOfOldCode =
      join(" FROM ", table,                                                       //
           " WHERE ", prefix, "_DITTA_CG18 = ", in.Pvar_Ditta,                    //
           " AND ", prefix, "_TIPOCF_CG44 = ", static_cast<int>(in.Pint_TipoCF),  //
           " AND ", codeColumn, " = ", in.Pvar_CliFor);
  const std::shared_ptr<Recordset> source = call.read(join("SELECT *", rowsOfOldCode));
  if (source->recordCount() == 0) {
    return nullptr;
  }
  std::shared_ptr<Recordset> staged = call.connection().newRecordset();
  staged->open(join("SELECT * FROM ", table, " WHERE 1=2"), in.Connessione, CursorType::Keyset,
               LockType::BatchOptimistic, CommandOption::Text);
  Fields& from = source->fields();
  Fields& to = staged->fields();
  for (source->moveFirst(); !source->atEnd(); source->moveNext()) {
    staged->addNew();
    for (std::size_t index = 0; index < from.count(); ++index) {
      const Field& column = from.item(index);
      to.item(index).setValue(column.name() == codeColumn ? newCode : column.value());
    }
    staged->update();
  }
  call.run(join("DELETE", rowsOfOldCode));
  return staged;
}

}  // namespace

void AggiornaCodiceCliFor(Call& call, const Variant& newCode) {
  std::vector<std::shared_ptr<Recordset>> staged;
  staged.reserve(tables::kSubTables.size());
  for (const std::string_view table : tables::kSubTables) {
    staged.push_back(stageUnderNewCode(call, table, newCode));
  }
  const CLSCO_INPUTAZCOLL& in = call.input();
  call.run(join("UPDATE CG44_CLIFOR ",                                    //
                " SET CG44_CLIFOR = ", newCode,                           //
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

}  // namespace azcoll::clifor
