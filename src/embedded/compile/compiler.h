#pragma once

#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "embedded/bind/binder.h"
#include "embedded/catalogue/catalogue.h"
#include "embedded/plan/plan.h"
#include "embedded/sqlite/handle.h"

namespace azcoll::embedded {

/// Turns batches and procedures into plans: every statement bound and prepared.
class Compiler {
 public:
  struct Settings {
    bool rewriteIn = true;
  };

  /// `tempTables` counts the table variables made so far, for their names.
  Compiler(const SqliteDatabase& database, const Catalogue& catalogue, const Settings& settings,
           std::size_t& tempTables)
      : database_(database), catalogue_(catalogue), settings_(settings), tempTables_(tempTables) {}

  /// Throws `tsql::SyntaxError`, `SqlError`, `SqliteFailure`.
  [[nodiscard]] std::shared_ptr<Plan> compileBatch(std::string text, bool constantsInside) const;
  [[nodiscard]] std::shared_ptr<Plan> compileProcedure(const Routine& routine) const;

  /// Compiles a routine for its errors alone.
  void checkRoutine(const Routine& routine) const;

  /// A deferred statement, compiled when reached.
  [[nodiscard]] Node compileDeferred(Plan& plan, const tsql::Statement& statement) const;

 private:
  struct Work;

  void compileAll(Work& work, const std::vector<tsql::StatementPtr>& statements,
                  BlockNode& block) const;
  [[nodiscard]] Node compile(Work& work, const tsql::Statement& statement) const;
  [[nodiscard]] Node compileNode(Work& work, const tsql::Statement& statement) const;
  [[nodiscard]] Node compileSelect(Work& work, const tsql::SelectStatement& statement) const;
  void declare(Work& work, const tsql::DeclareStatement& statement, BlockNode& block) const;
  void declareTable(Work& work, const tsql::VariableDeclaration& declaration) const;
  [[nodiscard]] Node assign(Work& work, const std::string& name,
                            const tsql::Expression& value) const;
  [[nodiscard]] Node compileExecute(Work& work, const tsql::ExecuteStatement& statement) const;
  [[nodiscard]] Node compileOption(Work& work, const tsql::Statement& statement) const;
  template <typename Bind>
  [[nodiscard]] Node compileChange(Work& work, ChangeKind kind, Bind bind) const;
  template <typename Bind>
  [[nodiscard]] PreparedStatement prepare(Work& work, Bind bind) const;

  const SqliteDatabase& database_;
  const Catalogue& catalogue_;
  const Settings& settings_;
  std::size_t& tempTables_;
};

}  // namespace azcoll::embedded
