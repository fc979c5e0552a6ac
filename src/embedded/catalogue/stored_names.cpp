#include "embedded/catalogue/stored_names.h"

#include "embedded/sqlite/sql_text.h"
#include "embedded/values/collation.h"
#include "embedded/values/sql_error.h"
#include "embedded/values/types.h"

namespace azcoll::embedded {

std::string storedColumn(const Column& column) {
  const Type& type = column.type;
  const std::string name = quoteName(column.name);
  if (type.isText()) {
    // The column's collation decides every comparison with it, and the order of its index.
    return name + " TEXT COLLATE " + kCollationName;
  }
  if (type.isDate()) {
    return name + " TEXT";
  }
  if (type.isFloat()) {
    return name + " REAL";
  }
  return name + (type.isWide() ? " BLOB" : " INTEGER");
}

std::string indexStoreName(const Table& table, std::string_view index) {
  return table.storeName + "." + std::string(index);
}

std::vector<std::size_t> referencedColumns(const Constraint& foreignKey, const Table& referenced) {
  // REFERENCES without columns means the primary key.
  if (foreignKey.referencedColumns.empty()) {
    return referenced.key;
  }
  std::vector<std::size_t> columns;
  for (const std::string& name : foreignKey.referencedColumns) {
    const auto column = referenced.find(name);
    if (!column) {
      throw SqlError(1770, "Foreign key '" + foreignKey.name + "' references invalid column '" +
                               name + "' in referenced table '" + referenced.name + "'.");
    }
    columns.push_back(*column);
  }
  return columns;
}

}  // namespace azcoll::embedded
