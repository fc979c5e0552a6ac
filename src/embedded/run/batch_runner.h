#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "cursor/result_set.h"
#include "embedded/plan/plan.h"
#include "embedded/plan/slots.h"
#include "embedded/run/session.h"
#include "embedded/values/types.h"
#include "embedded/values/value.h"
#include "tsql/shape.h"

namespace azcoll::embedded {

/// Runs one plan once.
class BatchRunner {
 public:
  BatchRunner(const Surroundings& surroundings, Plan& plan, ExecutionResult& result)
      : surroundings_(surroundings), session_(surroundings.session), plan_(plan), result_(result) {}

  /// The constants of the text being run; the shape must stay as it is.
  void setConstants(const tsql::Shape* shape) { shape_ = shape; }
  /// The values of the text's `?` markers, in their order and as many; null for a text without any.
  /// They must stay as they are.
  void setParameters(const std::vector<Variant>* parameters) { parameters_ = parameters; }

  /// Runs the plan's statements; result sets and counts of rows are added to the result. Throws
  /// what the first failing statement throws: `SqlError`, `SqliteFailure`, and
  /// `tsql::SyntaxError` for a statement that is compiled only when it is reached.
  void run();
  /// Runs a procedure's body; throws `SqlError` 201 for a missing argument.
  void runProcedure(const Routine& routine, const std::vector<std::optional<Value>>& arguments);

  [[nodiscard]] const std::vector<Value>& variables() const { return variables_; }

 private:
  enum class Flow : std::uint8_t { Next, Break, Continue, Return };

  Flow runBlock(BlockNode& block);
  Flow runNode(Node& node);
  Flow runWhile(WhileNode& loop);
  Flow runDeferred(const DeferredNode& deferred);
  void select(SelectNode& node);
  void assign(AssignNode& node);
  void change(ChangeNode& node);
  void countChange(const ChangeNode& node, std::int64_t rows);
  void execute(ExecuteNode& node);
  void passBack(const ExecuteNode& node, const BatchRunner& callee);
  [[nodiscard]] Value argumentValue(const tsql::Expression& expression, const Type& type) const;
  void transact(tsql::TransactionVerb verb);
  [[nodiscard]] bool test(PreparedStatement& prepared);

  void bind(const PreparedStatement& prepared);
  void bindSlot(sqlite3_stmt* statement, int position, const Slot& slot);
  void bindLiteral(sqlite3_stmt* statement, int position, const Slot& slot);
  [[nodiscard]] Value slotValue(const Slot& slot) const;
  void noticeReprepare(const PreparedStatement& prepared);

  Surroundings surroundings_;
  Session& session_;
  Plan& plan_;
  ExecutionResult& result_;
  const tsql::Shape* shape_ = nullptr;
  const std::vector<Variant>* parameters_ = nullptr;
  std::vector<Value> variables_;
  bool noCount_ = false;
};

}  // namespace azcoll::embedded
