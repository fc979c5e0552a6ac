#pragma once

#include <cstddef>
#include <memory>
#include <string>
#include <unordered_map>
#include <unordered_set>

#include "embedded/bind/scope.h"
#include "embedded/bind/translation.h"
#include "embedded/catalogue/catalogue.h"
#include "tsql/ast.h"

namespace azcoll::embedded {

/// What names stand for: columns by the scopes around them, variables, parameters of a function,
/// tables.
class Names {
 public:
  Names(const BindContext& context, Translation& translation)
      : context_(context), translation_(translation) {}

  /// The column of the innermost scope that has it. Throws `SqlError` 207, 209, 4104, and the
  /// message of the clause for a column that is neither grouped nor aggregated.
  [[nodiscard]] BoundExpression resolve(const tsql::ColumnReference& reference,
                                        const Clause& clause) const;
  /// A column of a source of the clause's scope, with the same check of its group.
  [[nodiscard]] BoundExpression columnOf(const Source& source, std::size_t column,
                                         const Clause& clause) const;
  /// A parameter of the function, a variable or a system value. Throws `SqlError` 137.
  [[nodiscard]] BoundExpression bindVariable(const tsql::Variable& variable) const;
  /// Throws `SqlError` 137.
  [[nodiscard]] std::size_t variableIndex(const std::string& name) const;
  /// A table or table variable. Throws `SqlError` 208 or 1087.
  [[nodiscard]] std::shared_ptr<const Table> findTable(const tsql::ObjectName& name) const;
  /// A name that nothing else in the SQLite text has.
  [[nodiscard]] std::string newAlias();

  /// From here on the body of a function is bound, which sees none of the variables outside.
  void enterFunction() { inFunction_ = true; }
  /// A parameter of that function, with its value already of the parameter's type.
  void addArgument(const std::string& name, BoundExpression value);
  /// The statement changes the variable from row to row: it is read when a row is evaluated.
  void readForEachRow(std::size_t variable) { liveVariables_.insert(variable); }

 private:
  [[nodiscard]] BoundExpression resolveBare(const std::string& name, const Clause& clause) const;
  [[nodiscard]] BoundExpression resolveQualified(const tsql::ObjectName& name,
                                                 const Clause& clause) const;

  const BindContext& context_;
  Translation& translation_;
  std::unordered_map<std::string, BoundExpression> arguments_;
  bool inFunction_ = false;
  std::unordered_set<std::size_t> liveVariables_;
};

}  // namespace azcoll::embedded
