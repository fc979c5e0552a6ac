#include "odbc/base_columns.h"

#include <algorithm>
#include <cstddef>
#include <functional>
#include <string>
#include <utility>
#include <vector>

#include "odbc/select_shape.h"
#include "text/letter_case.h"

namespace azcoll::odbc {
namespace {

using TableFinder = std::function<const TableInfo*(std::string_view)>;

void forgetBases(std::vector<ColumnInfo>& columns) {
  for (ColumnInfo& column : columns) {
    column.baseTable.clear();
    column.baseColumn.clear();
    column.isKey = false;
  }
}

bool hasOpaqueSource(const SelectShape& shape) {
  return std::any_of(shape.sources.begin(), shape.sources.end(),
                     [](const SelectSource& source) { return source.name.empty(); });
}

auto timesNamed(const SelectShape& shape, std::string_view table) {
  return std::count_if(shape.sources.begin(), shape.sources.end(), [&](const SelectSource& source) {
    return equalsIgnoringCase(source.name, table);
  });
}

/// Drops what the driver reported of tables that are not named exactly once.
void keepCertain(std::vector<ColumnInfo>& columns, const SelectShape& shape) {
  if (hasOpaqueSource(shape)) {
    forgetBases(columns);
    return;
  }
  for (ColumnInfo& column : columns) {
    if (column.baseColumn.empty() || timesNamed(shape, column.baseTable) != 1) {
      column.baseTable.clear();
      column.baseColumn.clear();
    }
  }
}

/// Finds the base columns from the select list, position by position.
class ListFollower {
 public:
  ListFollower(std::vector<ColumnInfo>& columns, const SelectShape& shape, const TableFinder& find)
      : columns_{columns}, shape_{shape}, find_{find} {}

  /// False when the list and the result do not agree, or the list leaves something open.
  bool follow() {
    for (const SelectItem& item : shape_.items) {
      const bool agreed = item.kind == SelectItem::Kind::AllColumns ? expand(item) : single(item);
      if (!agreed) {
        return false;
      }
    }
    return at_ == columns_.size();
  }

 private:
  bool expand(const SelectItem& item) {
    bool any = false;
    for (const SelectSource& source : shape_.sources) {
      if (!item.qualifier.empty() && !equalsIgnoringCase(source.alias, item.qualifier)) {
        continue;
      }
      const TableInfo* const table = source.name.empty() ? nullptr : find_(source.name);
      if (table == nullptr) {
        return false;
      }
      any = true;
      for (const std::string& column : table->columns) {
        if (at_ == columns_.size() || !equalsIgnoringCase(columns_[at_].name, column)) {
          return false;
        }
        describe(source.name, column);
      }
    }
    return any;
  }

  bool single(const SelectItem& item) {
    if (at_ == columns_.size()) {
      return false;
    }
    const SelectSource* const source =
        item.kind == SelectItem::Kind::Column ? ownerOf(item) : nullptr;
    if (source != nullptr) {
      describe(source->name, item.column);
    } else {
      ++at_;
    }
    return true;
  }

  /// The one source that a named column can come from, or null.
  [[nodiscard]] const SelectSource* ownerOf(const SelectItem& item) const {
    const SelectSource* owner = nullptr;
    for (const SelectSource& source : shape_.sources) {
      if (!item.qualifier.empty() && !equalsIgnoringCase(source.alias, item.qualifier)) {
        continue;
      }
      const TableInfo* const table = source.name.empty() ? nullptr : find_(source.name);
      if (table == nullptr) {
        return nullptr;
      }
      const bool has = std::any_of(
          table->columns.begin(), table->columns.end(),
          [&](const std::string& column) { return equalsIgnoringCase(column, item.column); });
      if (has && owner != nullptr) {
        return nullptr;
      }
      owner = has ? &source : owner;
    }
    return owner;
  }

  void describe(const std::string& table, const std::string& column) {
    if (timesNamed(shape_, table) == 1) {
      columns_[at_].baseTable = table;
      columns_[at_].baseColumn = column;
    }
    ++at_;
  }

  std::vector<ColumnInfo>& columns_;
  const SelectShape& shape_;
  const TableFinder& find_;
  std::size_t at_ = 0;
};

/// Marks the key columns of every table whose whole key is in the result, and numbered columns.
void markKeys(std::vector<ColumnInfo>& columns, const TableFinder& find) {
  for (ColumnInfo& column : columns) {
    const TableInfo* const table = column.baseTable.empty() ? nullptr : find(column.baseTable);
    if (table == nullptr) {
      continue;
    }
    const auto isHere = [&](const std::string& key) {
      return std::any_of(columns.begin(), columns.end(), [&](const ColumnInfo& other) {
        return equalsIgnoringCase(other.baseTable, column.baseTable) &&
               equalsIgnoringCase(other.baseColumn, key);
      });
    };
    const bool whole = std::all_of(table->keys.begin(), table->keys.end(), isHere);
    column.isKey =
        whole && std::any_of(table->keys.begin(), table->keys.end(), [&](const std::string& key) {
          return equalsIgnoringCase(key, column.baseColumn);
        });
    for (std::size_t index = 0; index < table->columns.size(); ++index) {
      if (table->identity[index] && equalsIgnoringCase(table->columns[index], column.baseColumn)) {
        column.isIdentity = true;
      }
    }
  }
}

}  // namespace

std::vector<ColumnInfo> completedColumns(std::vector<ColumnInfo> columns, std::string_view batch,
                                         std::size_t index, std::size_t count,
                                         const Session& session, Catalogue& catalogue,
                                         int timeoutSeconds) {
  const std::vector<SelectShape> shapes = selectShapes(batch);
  if (shapes.size() != count) {
    forgetBases(columns);
    return columns;
  }
  const TableFinder find = [&](std::string_view table) {
    return catalogue.find(session, table, timeoutSeconds);
  };
  const bool reported = std::any_of(columns.begin(), columns.end(), [](const ColumnInfo& column) {
    return !column.baseTable.empty();
  });
  if (reported) {
    keepCertain(columns, shapes[index]);
  } else if (!ListFollower{columns, shapes[index], find}.follow()) {
    forgetBases(columns);
  }
  markKeys(columns, find);
  return columns;
}

}  // namespace azcoll::odbc
