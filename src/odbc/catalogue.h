#pragma once

#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "odbc/session.h"

namespace azcoll::odbc {

/// A table as the database's catalogue describes it.
struct TableInfo {
  std::vector<std::string> columns;  ///< in the table's order
  std::vector<bool> identity;        ///< which of them the database numbers
  std::vector<std::string> keys;     ///< of the primary key; none when it has no primary key
};

/// Tables, asked of the database once each.
class Catalogue {
 public:
  /// The table of that name, letter case ignored; null when there is none, or several of that name
  /// in different schemas, or the database does not say. Never throws for what the driver answers.
  [[nodiscard]] const TableInfo* find(const Session& session, std::string_view table,
                                      int timeoutSeconds);

  [[nodiscard]] bool isEmpty() const { return tables_.empty(); }

  /// Forgets what was asked: tables may have changed.
  void forget() { tables_.clear(); }

 private:
  std::map<std::string, std::optional<TableInfo>, std::less<>> tables_;
};

}  // namespace azcoll::odbc
