#pragma once

#include <memory>
#include <sqlite3.h>
#include <stdexcept>
#include <string>
#include <vector>

#include "data/connection.h"

/// What the embedded engine makes of a statement: for tests and benchmarks that look below it.
namespace azcoll::test {

/// The SQLite statements that connections of the engine run which were opened while it exists.
/// There is one at a time, and its connections are closed before it goes.
class SqliteTexts {
 public:
  struct Ran {
    sqlite3* database = nullptr;
    std::string text;      ///< with its parameters
    std::string expanded;  ///< constants in their places
  };

  SqliteTexts() {
    ran().clear();
    sqlite3_auto_extension(reinterpret_cast<void (*)()>(&listen));
  }
  SqliteTexts(const SqliteTexts&) = delete;
  SqliteTexts(SqliteTexts&&) = delete;
  SqliteTexts& operator=(const SqliteTexts&) = delete;
  SqliteTexts& operator=(SqliteTexts&&) = delete;
  ~SqliteTexts() {
    sqlite3_cancel_auto_extension(reinterpret_cast<void (*)()>(&listen));
    ran().clear();
  }

  static std::vector<Ran>& ran() {
    static std::vector<Ran> all;
    return all;
  }

 private:
  static int listen(sqlite3* database, char** /*error*/, const void* /*api*/) {
    return sqlite3_trace_v2(
        database, SQLITE_TRACE_STMT,
        [](unsigned, void*, void* running, void*) {
          auto* const statement = static_cast<sqlite3_stmt*>(running);
          char* const expanded = sqlite3_expanded_sql(statement);
          ran().push_back({sqlite3_db_handle(statement), sqlite3_sql(statement),
                           expanded == nullptr ? "" : expanded});
          sqlite3_free(expanded);
          return 0;
        },
        nullptr);
  }
};

/// The longest SQLite statement that the engine runs for `statement`: the statement itself. The
/// connection was opened while a `SqliteTexts` exists.
inline SqliteTexts::Ran sqliteStatementOf(Connection& connection, const std::string& statement) {
  SqliteTexts::ran().clear();
  std::int64_t affected = 0;
  connection.execute(statement, affected, CommandOption::Text);
  SqliteTexts::Ran longest;
  for (const SqliteTexts::Ran& each : SqliteTexts::ran()) {
    longest = each.text.size() > longest.text.size() ? each : longest;
  }
  return longest;
}

/// How SQLite goes about a statement, a step a line (EXPLAIN QUERY PLAN), while its connection is
/// open. Throws `std::runtime_error` when SQLite refuses it.
inline std::vector<std::string> queryPlan(const SqliteTexts::Ran& statement) {
  constexpr int kDetail = 3;
  sqlite3_stmt* plan = nullptr;
  const std::string text = "EXPLAIN QUERY PLAN " + statement.text;
  if (sqlite3_prepare_v2(statement.database, text.c_str(), -1, &plan, nullptr) != SQLITE_OK) {
    throw std::runtime_error(sqlite3_errmsg(statement.database));
  }
  std::vector<std::string> steps;
  while (sqlite3_step(plan) == SQLITE_ROW) {
    steps.emplace_back(reinterpret_cast<const char*>(sqlite3_column_text(plan, kDetail)));
  }
  sqlite3_finalize(plan);
  return steps;
}

}  // namespace azcoll::test
