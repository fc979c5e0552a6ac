#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "cursor/result_set.h"
#include "embedded/catalogue/catalogue.h"
#include "embedded/compile/compiler.h"
#include "embedded/connection_string.h"
#include "embedded/plan/plan.h"
#include "embedded/plan/plan_cache.h"
#include "embedded/run/session.h"
#include "embedded/sqlite/handle.h"
#include "embedded/values/sql_error.h"
#include "tsql/shape.h"

namespace azcoll::embedded {

/// What tests switch to compare the engine with itself; callers always run with everything on.
struct EngineOptions {
  bool planCache = true;  ///< off: constants are written into the SQLite texts, nothing is kept
  bool rewriteIn = true;
  bool optimizer = true;  ///< SQLite's own
};

/// An open database: runs T-SQL on it.
///
/// Failures are `SqlError`, `tsql::SyntaxError` (text that is not understood) and `Error` (a file
/// that cannot be used). A failed statement leaves no trace; an open transaction stays open.
class Engine final : private Plans, private Transactions {
 public:
  /// Opens the database; throws `SqlError` or `Error`.
  Engine(const ConnectionSettings& settings, const EngineOptions& options);

  [[nodiscard]] ExecutionResult run(std::string_view text);
  /// Runs a text whose `?` markers take `parameters`.
  [[nodiscard]] ExecutionResult run(std::string_view text, const std::vector<Variant>& parameters);
  /// Calls a procedure; `values` holds one value for each parameter (Empty: its default) and
  /// takes those of the output parameters.
  [[nodiscard]] ExecutionResult call(const Routine& routine, std::vector<Variant>& values);
  /// The procedure of this name; throws `SqlError` 2812.
  [[nodiscard]] std::shared_ptr<const Routine> findProcedure(std::string_view name);

  /// The CREATE statements of what the database holds, in the order of creation.
  [[nodiscard]] std::vector<std::string> definitions();

  /// Begins a transaction; throws `SqlError` when there is one already.
  void begin() override;
  /// Makes the changes of the transaction last; throws `SqlError` 3902 when there is none, or when
  /// it is lost.
  void commit() override;
  /// Undoes the transaction, definitions included; throws `SqlError` 3903 when there is none. Ends
  /// one that is lost, too.
  void rollback() override;
  [[nodiscard]] bool inTransaction() const { return session_.database.inTransaction(); }
  /// Whether SQLite has undone the transaction by itself (a change broken off, a full disk).
  /// Nothing runs then until its owner has ended it: each statement would be committed by itself.
  [[nodiscard]] bool isTransactionLost() const { return begun_ && !inTransaction(); }

  /// Seconds after which a text is broken off; 0 for never.
  void setTimeout(int seconds) { session_.timeLimit.setTimeout(seconds); }

  /// The plans kept; for tests.
  [[nodiscard]] const PlanCache& cache() const { return cache_; }

 private:
  void configure(const ConnectionSettings& settings);
  void openFile(const ConnectionSettings& settings);
  [[nodiscard]] std::shared_ptr<Plan> planFor(std::string_view text);
  [[nodiscard]] Compiler compiler() {
    return Compiler(session_.database, session_.catalogue, compilerSettings_, tempTables_);
  }
  [[nodiscard]] Surroundings surroundings() { return {session_, *this, *this}; }
  [[nodiscard]] std::shared_ptr<Plan> planOf(const Routine& routine) override;
  [[nodiscard]] Node compileDeferred(Plan& plan, const tsql::Statement& statement) override;
  void checkRoutine(const Routine& routine) override;
  void forgetPlans() override;
  void definitionsChanged() override;
  /// Reads the catalogue again when another connection has changed it.
  void refreshCatalogue();
  void reloadCatalogue();
  [[nodiscard]] bool isStale();
  [[nodiscard]] ExecutionResult runText(std::string_view text,
                                        const std::vector<Variant>* parameters);
  [[nodiscard]] ExecutionResult runPlan(Plan& plan, const std::vector<Variant>* parameters);
  template <typename Action>
  auto translated(Action action);
  /// SQLite's failure as one that callers understand.
  [[nodiscard]] SqlError translate(const SqliteFailure& failure) const;
  void requireTransaction() const;

  EngineOptions options_;
  Compiler::Settings compilerSettings_;
  std::string path_;
  Session session_;
  std::size_t tempTables_ = 0;
  PlanCache cache_;
  std::unordered_map<std::string, std::shared_ptr<Plan>> procedures_;
  SqliteStatement catalogueVersion_;
  std::int64_t knownVersion_ = 0;
  bool begun_ = false;                 ///< a transaction, which its owner has not ended
  bool definedInTransaction_ = false;  ///< a rollback takes definitions or table variables back
  tsql::Shape shape_;
};

}  // namespace azcoll::embedded
