#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "embedded/plan/plan.h"
#include "embedded/run/session.h"
#include "embedded/sqlite/handle.h"
#include "embedded/values/sql_error.h"

namespace azcoll::embedded {

/// Finds out which constraint a failed change broke and words it as SQL Server does. SQLite tells
/// little about it; what is missing is found by running the change once more inside a savepoint
/// that is taken back, which costs something on failures only.
class ConstraintReporter {
 public:
  ConstraintReporter(Session& session, const ChangeNode& node) : session_(session), node_(node) {}

  [[nodiscard]] SqlError explain(const SqliteFailure& failure) const;
  /// The foreign key of the changed table, or to it, that has rows without a partner right now.
  [[nodiscard]] std::optional<SqlError> brokenForeignKey() const;

 private:
  [[nodiscard]] SqlError explainNull(std::string_view detail) const;
  [[nodiscard]] SqlError explainDuplicate(std::string_view detail) const;
  [[nodiscard]] SqlError explainCheck(std::string_view detail) const;
  [[nodiscard]] SqlError explainForeignKey() const;
  [[nodiscard]] std::string duplicateValues(const std::vector<std::size_t>& columns) const;
  [[nodiscard]] SqlError violated(const Table& child, const Constraint& constraint) const;
  [[nodiscard]] const Constraint* findViolated(const Table& child) const;
  [[nodiscard]] std::string conflict(std::string_view kind, const Constraint& constraint,
                                     const Table& table,
                                     const std::vector<std::size_t>& columns) const;
  [[nodiscard]] std::string_view verb() const;
  /// Runs the change again; its failure, or nothing.
  [[nodiscard]] std::optional<SqliteFailure> rerun() const;
  [[nodiscard]] std::string firstBrokenKey(std::string_view detail) const;

  Session& session_;
  const ChangeNode& node_;
};

}  // namespace azcoll::embedded
