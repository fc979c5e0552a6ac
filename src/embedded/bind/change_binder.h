#pragma once

#include <cstddef>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "embedded/bind/constants.h"
#include "embedded/bind/expression_binder.h"
#include "embedded/bind/names.h"
#include "embedded/bind/query_binder.h"
#include "embedded/bind/scope.h"
#include "embedded/bind/translation.h"
#include "embedded/catalogue/catalogue.h"
#include "tsql/ast.h"

namespace azcoll::embedded {

/// A change: its text, and what reporting its failure needs to know of it.
struct BoundChange {
  std::string sql;
  Catalogue::TablePtr table;
  std::vector<std::size_t> computed;  ///< columns that an UPDATE computes from the row
};

/// Refuses the hints that a table which is to be changed cannot have (1065).
void refuseReadingHints(const tsql::NamedTable& target);

/// INSERT, UPDATE and DELETE.
class ChangeBinder {
 public:
  ChangeBinder(const BindContext& context, Translation& translation)
      : context_(context),
        translation_(translation),
        queries_(context, translation),
        constants_(queries_.constants()),
        names_(queries_.names()),
        expressions_(queries_.expressions()) {}

  [[nodiscard]] BoundChange bindInsert(const tsql::InsertStatement& statement);
  [[nodiscard]] BoundChange bindUpdate(const tsql::UpdateStatement& statement);
  [[nodiscard]] BoundChange bindDelete(const tsql::DeleteStatement& statement);

 private:
  // ---- bind_insert.cpp
  [[nodiscard]] std::string insertRows(const tsql::InsertStatement& statement, const Table& table,
                                       const std::vector<std::size_t>& columns,
                                       std::vector<std::size_t>& defaults);
  [[nodiscard]] std::string insertQuery(const tsql::InsertStatement& statement, const Table& table,
                                        const std::vector<std::size_t>& columns,
                                        const std::vector<std::size_t>& defaults);
  [[nodiscard]] static std::vector<std::size_t> insertColumns(
      const tsql::InsertStatement& statement, const Table& table);
  [[nodiscard]] std::string defaultOf(const Table& table, std::size_t column);

  // ---- bind_change.cpp
  struct Target {
    std::shared_ptr<const Table> table;
    std::string from;    ///< the sources, when there are others than the target
    std::string source;  ///< SQLite's name of the target among the sources
  };
  [[nodiscard]] Target bindTarget(const tsql::NamedTable& target,
                                  const std::vector<tsql::TableSourcePtr>& from, Scope& scope);
  [[nodiscard]] std::size_t findTarget(const tsql::NamedTable& target, Scope& scope,
                                       std::string& from);
  [[nodiscard]] std::vector<std::pair<std::size_t, std::string>> bindAssigned(
      const tsql::UpdateStatement& statement, const Table& table, const Scope& scope);

  const BindContext& context_;
  Translation& translation_;
  QueryBinder queries_;
  Constants& constants_;
  Names& names_;
  ExpressionBinder& expressions_;
};

}  // namespace azcoll::embedded
