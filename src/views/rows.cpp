#include "views/rows.h"

#include <cstddef>

namespace azcoll::views {

Rows readRows(Recordset& recordset) {
  Rows result;
  Fields& fields = recordset.fields();
  const std::size_t columns = fields.count();
  for (std::size_t i = 0; i < columns; ++i) {
    result.columns.push_back(fields.item(i).name());
  }
  if (recordset.atStart() && recordset.atEnd()) {
    return result;
  }
  for (recordset.moveFirst(); !recordset.atEnd(); recordset.moveNext()) {
    std::vector<Variant>& row = result.rows.emplace_back();
    row.reserve(columns);
    for (std::size_t i = 0; i < columns; ++i) {
      row.push_back(fields.item(i).value());
    }
  }
  return result;
}

std::vector<Rows> readResults(std::shared_ptr<Recordset> recordset) {
  std::vector<Rows> results;
  while (recordset && recordset->isOpen()) {
    results.push_back(readRows(*recordset));
    recordset = recordset->nextRecordset();
  }
  return results;
}

}  // namespace azcoll::views
