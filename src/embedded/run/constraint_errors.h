#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "embedded/plan/plan.h"
#include "embedded/run/session.h"
#include "embedded/sqlite/handle.h"
#include "embedded/values/sql_error.h"
#include "embedded/values/value.h"

namespace azcoll::embedded {

/// The values of a key as messages show them: `(, <NULL>)` is an empty text and a Null. `values`
/// are those of `columns`, or none.
[[nodiscard]] std::string shownKey(const Table& table, const std::vector<std::size_t>& columns,
                                   const std::vector<Value>& values);

/// Finds out which constraint a failed change broke and words it as SQL Server does. SQLite reports
/// little about it; what is missing is found by running the change once more inside a savepoint
/// that is rolled back; only failures pay for it.
class ConstraintReporter {
 public:
  ConstraintReporter(Session& session, const ChangeNode& node) : session_(session), node_(node) {}

  [[nodiscard]] SqlError explain(const SqliteFailure& failure) const;

 private:
  struct BrokenKey {
    std::string name;
    std::string_view kind;  ///< "PRIMARY KEY", "UNIQUE KEY", or empty for an index
    std::vector<std::size_t> columns;
  };

  [[nodiscard]] SqlError explainNull(std::string_view detail) const;
  [[nodiscard]] SqlError explainDuplicate(std::string_view detail) const;
  [[nodiscard]] SqlError explainCheck(std::string_view detail) const;
  [[nodiscard]] SqlError explainForeignKey() const;
  [[nodiscard]] std::optional<SqlError> brokenForeignKey() const;
  [[nodiscard]] std::optional<BrokenKey> brokenKey(std::string_view detail) const;
  [[nodiscard]] bool computesKey(const BrokenKey& key) const;
  [[nodiscard]] std::vector<Value> failedRow(const std::vector<std::size_t>& columns) const;
  [[nodiscard]] bool isTaken(const std::vector<std::size_t>& columns) const;
  [[nodiscard]] SqlError violated(const Table& child, const Constraint& constraint) const;
  [[nodiscard]] const Constraint* findViolated(const Table& child) const;
  [[nodiscard]] std::string conflict(std::string_view kind, const Constraint& constraint,
                                     const Table& table,
                                     const std::vector<std::size_t>& columns) const;
  [[nodiscard]] std::string_view verb() const;
  void rerun() const;

  Session& session_;
  const ChangeNode& node_;
};

}  // namespace azcoll::embedded
