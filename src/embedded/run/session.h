#pragma once

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>

#include "embedded/catalogue/catalogue.h"
#include "embedded/functions/functions.h"
#include "embedded/plan/plan.h"
#include "embedded/sqlite/handle.h"
#include "tsql/ast.h"

namespace azcoll::embedded {

/// Breaks off a text that runs too long.
class TimeLimit {
 public:
  /// 0 seconds: never.
  void setTimeout(int seconds) { timeout_ = std::chrono::seconds(seconds); }
  /// A new text begins. Its time counts from the first question on.
  void restart() { started_.reset(); }
  [[nodiscard]] bool isOver();

 private:
  std::chrono::seconds timeout_{0};
  std::optional<std::chrono::steady_clock::time_point> started_;
};

/// The open database and what the statements that run on it share. SQLite keeps the addresses of
/// `runtime` and `timeLimit`, so a session stays where it is.
struct Session {
  Session() = default;
  Session(const Session&) = delete;
  Session(Session&&) = delete;
  Session& operator=(const Session&) = delete;
  Session& operator=(Session&&) = delete;
  ~Session() = default;

  RuntimeState runtime;
  TimeLimit timeLimit;
  SqliteDatabase database;
  std::string databaseName;
  Catalogue catalogue;
  bool schemaUncertain = false;              ///< the schema may have changed under the plans
  std::int64_t rowCount = 0;                 ///< of the last statement
  std::optional<std::int64_t> lastIdentity;  ///< the last value that an identity column was given
  std::size_t depth = 0;                     ///< of procedure calls
};

/// Where plans come from and go. What compiling throws comes through.
class Plans {
 public:
  Plans() = default;
  Plans(const Plans&) = delete;
  Plans(Plans&&) = delete;
  Plans& operator=(const Plans&) = delete;
  Plans& operator=(Plans&&) = delete;
  virtual ~Plans() = default;

  /// The plan of a procedure.
  [[nodiscard]] virtual std::shared_ptr<Plan> planOf(const Routine& routine) = 0;
  /// A deferred statement of `plan`, compiled when reached.
  [[nodiscard]] virtual Node compileDeferred(Plan& plan, const tsql::Statement& statement) = 0;
  /// Compiles a routine for its errors alone.
  virtual void checkRoutine(const Routine& routine) = 0;
  /// Releases all plans: a prepared statement keeps its tables in use.
  virtual void forgetPlans() = 0;
  /// After a definition: nothing compiled before is valid any longer.
  virtual void definitionsChanged() = 0;
};

/// The transaction of the connection. Each throws `SqlError` when there is none to end, or one
/// already.
class Transactions {
 public:
  Transactions() = default;
  Transactions(const Transactions&) = delete;
  Transactions(Transactions&&) = delete;
  Transactions& operator=(const Transactions&) = delete;
  Transactions& operator=(Transactions&&) = delete;
  virtual ~Transactions() = default;

  virtual void begin() = 0;
  virtual void commit() = 0;
  virtual void rollback() = 0;
};

/// What a plan needs around it to run.
struct Surroundings {
  Session& session;
  Plans& plans;
  Transactions& transactions;
};

}  // namespace azcoll::embedded
