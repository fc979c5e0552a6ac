#pragma once

#include <string>
#include <vector>

#include "embedded/bind/change_binder.h"
#include "embedded/bind/translation.h"
#include "embedded/catalogue/catalogue.h"
#include "embedded/plan/result_column.h"
#include "embedded/plan/slots.h"
#include "embedded/values/types.h"
#include "tsql/ast.h"

namespace azcoll::embedded {

/// Turns one statement of T-SQL into a statement of SQLite of the same meaning. A statement that
/// would lose its meaning is refused (`tsql::SyntaxError` with number 0), a wrong one fails as on
/// SQL Server (`SqlError`). The slots and guards are left in the translation.
class Binder {
 public:
  Binder(const BindContext& context, Translation& translation)
      : context_(context), translation_(translation) {}

  /// A query; `columns` takes what its result looks like.
  [[nodiscard]] std::string bindSelect(const tsql::Query& query,
                                       std::vector<ResultColumn>& columns);
  /// SELECT @v = …; `targets` takes the variables.
  [[nodiscard]] std::string bindAssignments(const tsql::Query& query,
                                            std::vector<AssignTarget>& targets);
  /// A query of one row with the value, converted to `type` as a variable converts it.
  [[nodiscard]] std::string bindValue(const tsql::Expression& expression, const Type& type);
  /// A query of one row that says whether the condition holds.
  [[nodiscard]] std::string bindTest(const tsql::Expression& condition);

  [[nodiscard]] BoundChange bindInsert(const tsql::InsertStatement& statement);
  [[nodiscard]] BoundChange bindUpdate(const tsql::UpdateStatement& statement);
  [[nodiscard]] BoundChange bindDelete(const tsql::DeleteStatement& statement);

  /// Binds the body of a function for its errors alone (208, 207, 4514, 4506 …).
  void checkFunction(const Routine& routine);
  /// The condition of a CHECK over the columns of `table`, for its definition.
  [[nodiscard]] std::string bindCheck(const tsql::Expression& condition, const Table& table);

 private:
  const BindContext& context_;
  Translation& translation_;
};

}  // namespace azcoll::embedded
