#include "embedded/run/batch_runner.h"

#include <utility>

#include "embedded/plan/result_column.h"
#include "embedded/run/constraint_errors.h"
#include "embedded/run/definer.h"
#include "embedded/sqlite/column_values.h"
#include "embedded/sqlite/handle.h"
#include "embedded/values/conversions.h"
#include "embedded/values/literals.h"
#include "embedded/values/sql_error.h"
#include "embedded/values/types.h"
#include "text/letter_case.h"

namespace azcoll::embedded {

namespace {

// SQL Server's own limit, which message 217 names.
constexpr std::size_t kDeepestCall = 32;

/// Ends a statement's execution on every way out, so that it holds no lock.
class Execution {
 public:
  explicit Execution(const PreparedStatement& prepared) : prepared_(prepared) {}
  Execution(const Execution&) = delete;
  Execution(Execution&&) = delete;
  Execution& operator=(const Execution&) = delete;
  Execution& operator=(Execution&&) = delete;
  ~Execution() { prepared_.statement.reset(); }

 private:
  const PreparedStatement& prepared_;
};

/// Lets the functions of statements see the variables of the batch that is running.
class VisibleVariables {
 public:
  VisibleVariables(RuntimeState& state, const std::vector<Value>& variables)
      : state_(state), before_(state.variables) {
    state.variables = &variables;
  }
  VisibleVariables(const VisibleVariables&) = delete;
  VisibleVariables(VisibleVariables&&) = delete;
  VisibleVariables& operator=(const VisibleVariables&) = delete;
  VisibleVariables& operator=(VisibleVariables&&) = delete;
  // A procedure runs inside the batch that calls it, which goes on with its own variables.
  ~VisibleVariables() { state_.variables = before_; }

 private:
  RuntimeState& state_;
  const std::vector<Value>* before_;
};

class ActiveCall {
 public:
  ActiveCall(std::size_t& depth, Plan& plan) : depth_(depth), plan_(plan) {
    if (depth >= kDeepestCall) {
      throw SqlError(217,
                     "Maximum stored procedure, function, trigger, or view nesting level "
                     "exceeded (limit 32).");
    }
    // Both calls would use the same temporary tables: those of the plan.
    if (plan.activeCalls > 0 && !plan.clearings.empty()) {
      throw SqlError(0,
                     "Outside the supported T-SQL: a procedure with table variables that calls "
                     "itself.");
    }
    ++depth_;
    ++plan_.activeCalls;
  }
  ActiveCall(const ActiveCall&) = delete;
  ActiveCall(ActiveCall&&) = delete;
  ActiveCall& operator=(const ActiveCall&) = delete;
  ActiveCall& operator=(ActiveCall&&) = delete;
  ~ActiveCall() {
    --depth_;
    --plan_.activeCalls;
  }

 private:
  std::size_t& depth_;
  Plan& plan_;
};

}  // namespace

void BatchRunner::run() {
  // A procedure's arguments are in their places already.
  if (variables_.size() < plan_.variables.scalars.size()) {
    variables_.resize(plan_.variables.scalars.size());
  }
  const VisibleVariables visible(session_.runtime, variables_);
  // The tables of table variables outlive a run, their rows must not.
  for (const PreparedStatement& clearing : plan_.clearings) {
    clearing.statement.run();
  }
  runBlock(plan_.body);
}

void BatchRunner::runProcedure(const Routine& routine,
                               const std::vector<std::optional<Value>>& arguments) {
  const ActiveCall active(session_.depth, plan_);
  variables_.resize(plan_.variables.scalars.size());
  // The compiler declares the parameters first: their numbers are those of the variables.
  for (std::size_t i = 0; i < routine.parameters.size(); ++i) {
    const RoutineParameter& parameter = routine.parameters[i];
    if (arguments[i]) {
      variables_[i] = *arguments[i];
      continue;
    }
    if (parameter.defaultValue == nullptr) {
      throw SqlError(201, "Procedure or function '" + routine.name + "' expects parameter '" +
                              parameter.name + "', which was not supplied.");
    }
    variables_[i] = constantValue(*parameter.defaultValue, parameter.type).value_or(Value{});
  }
  run();
}

// ---------------------------------------------------------------- statements

BatchRunner::Flow BatchRunner::runBlock(BlockNode& block) {
  for (Node& node : block.statements) {
    const Flow flow = runNode(node);
    if (flow != Flow::Next) {
      return flow;
    }
  }
  return Flow::Next;
}

BatchRunner::Flow BatchRunner::runNode(Node& node) {
  if (auto* const query = std::get_if<SelectNode>(&node.node)) {
    select(*query);
  } else if (auto* const modification = std::get_if<ChangeNode>(&node.node)) {
    change(*modification);
  } else if (auto* const assignment = std::get_if<AssignNode>(&node.node)) {
    assign(*assignment);
  } else if (auto* const branch = std::get_if<IfNode>(&node.node)) {
    if (test(branch->condition)) {
      return runNode(*branch->then);
    }
    return branch->otherwise ? runNode(*branch->otherwise) : Flow::Next;
  } else if (auto* const block = std::get_if<BlockNode>(&node.node)) {
    return runBlock(*block);
  } else if (auto* const loop = std::get_if<WhileNode>(&node.node)) {
    return runWhile(*loop);
  } else if (const auto* const deferred = std::get_if<DeferredNode>(&node.node)) {
    return runDeferred(*deferred);
  } else if (auto* const call = std::get_if<ExecuteNode>(&node.node)) {
    execute(*call);
  } else if (const auto* const transaction = std::get_if<TransactionNode>(&node.node)) {
    transact(transaction->verb);
  } else if (const auto* const option = std::get_if<NoCountNode>(&node.node)) {
    noCount_ = option->on;
  } else if (std::holds_alternative<ReturnNode>(node.node)) {
    return Flow::Return;
  } else if (std::holds_alternative<BreakNode>(node.node)) {
    return Flow::Break;
  } else if (std::holds_alternative<ContinueNode>(node.node)) {
    return Flow::Continue;
  }
  return Flow::Next;
}

BatchRunner::Flow BatchRunner::runWhile(WhileNode& loop) {
  while (test(loop.condition)) {
    // A loop of trivial statements never reaches SQLite's own reading of the clock.
    if (session_.timeLimit.isOver()) {
      // As SQLite reports that its own clock reading ended a statement.
      throw SqliteFailure{SQLITE_INTERRUPT, ""};
    }
    const Flow flow = runNode(*loop.body);
    if (flow == Flow::Break) {
      break;
    }
    if (flow == Flow::Return) {
      return flow;
    }
  }
  return Flow::Next;
}

BatchRunner::Flow BatchRunner::runDeferred(const DeferredNode& deferred) {
  Definer definer(surroundings_);
  if (definer.define(*deferred.statement, plan_.text)) {
    return Flow::Next;
  }
  // Compiled for this once: when a loop comes here again, the names may stand for other objects.
  Node node = surroundings_.plans.compileDeferred(plan_, *deferred.statement);
  variables_.resize(plan_.variables.scalars.size());
  return runNode(node);
}

void BatchRunner::select(SelectNode& node) {
  bind(node.prepared);
  const Execution execution(node.prepared);
  sqlite3_stmt* const statement = node.prepared.statement.get();
  result_.results.emplace_back();
  ResultSet& set = result_.results.back();
  // Made once for the plan: all its results share the list.
  if (node.shown.size() != node.columns.size()) {
    std::vector<ColumnInfo> infos;
    infos.reserve(node.columns.size());
    for (const ResultColumn& column : node.columns) {
      infos.push_back(column.info);
    }
    node.shown = std::move(infos);
  }
  set.columns = node.shown;
  // All rows at once: an unfinished statement would hold its lock on the file and keep its tables
  // from being dropped, and the result outlives the plan.
  const auto rows = std::make_shared<cursor::PackedRows>();
  set.packed = rows;
  while (node.prepared.statement.step()) {
    int index = 0;
    for (const ResultColumn& column : node.columns) {
      appendColumn(*rows, statement, index++, column.type);
    }
    rows->endRow();
  }
  session_.rowCount = static_cast<std::int64_t>(rows->rowCount());
  noticeReprepare(node.prepared);
}

void BatchRunner::assign(AssignNode& node) {
  bind(node.prepared);
  const Execution execution(node.prepared);
  sqlite3_stmt* const statement = node.prepared.statement.get();
  // The last row's values stay. Without a row the variables keep theirs, as T-SQL has it; a SET
  // never comes without one, because its text is a SELECT without FROM.
  std::int64_t rows = 0;
  while (node.prepared.statement.step()) {
    int index = 0;
    for (const AssignTarget& target : node.targets) {
      variables_[target.variable] = readValue(statement, index++);
    }
    ++rows;
  }
  session_.rowCount = rows;
}

void BatchRunner::change(ChangeNode& node) {
  bind(node.prepared);
  try {
    node.prepared.statement.run();
  } catch (const SqliteFailure& failure) {
    // An extended code holds the primary one in its lowest byte. A function that refused a value
    // has left its own error: no constraint was broken then.
    constexpr int kPrimaryCode = 0xFF;
    if (session_.runtime.failure || (failure.code & kPrimaryCode) != SQLITE_CONSTRAINT) {
      throw;
    }
    throw ConstraintReporter(session_, node).explain(failure);
  }
  noticeReprepare(node.prepared);
  countChange(node, sqlite3_changes64(session_.database.get()));
}

void BatchRunner::countChange(const ChangeNode& node, std::int64_t rows) {
  session_.rowCount = rows;
  // An identity column is the table's rowid, so SQLite knows the last one.
  if (node.kind == ChangeKind::Insert && node.table->identity && session_.rowCount > 0) {
    session_.lastIdentity = sqlite3_last_insert_rowid(session_.database.get());
  }
  // NOCOUNT hides counts from the caller only: @@ROWCOUNT has them all the same. -1 so far means
  // that no statement has counted.
  if (!noCount_) {
    result_.recordsAffected =
        std::max<std::int64_t>(result_.recordsAffected, 0) + session_.rowCount;
  }
}

bool BatchRunner::test(PreparedStatement& prepared) {
  bind(prepared);
  const Execution execution(prepared);
  // Unknown is NULL, which SQLite gives as 0: false.
  return prepared.statement.step() && prepared.statement.integer(0) != 0;
}

void BatchRunner::transact(tsql::TransactionVerb verb) {
  switch (verb) {
    case tsql::TransactionVerb::Begin:
      surroundings_.transactions.begin();
      break;
    case tsql::TransactionVerb::Commit:
      surroundings_.transactions.commit();
      break;
    case tsql::TransactionVerb::Rollback:
      surroundings_.transactions.rollback();
      break;
  }
}

// ---------------------------------------------------------------- calls

Value BatchRunner::argumentValue(const tsql::Expression& expression, const Type& type) const {
  if (const auto* const variable = std::get_if<tsql::Variable>(&expression.node)) {
    const std::size_t index = plan_.variables.scalarByName.at(foldCase(variable->name));
    return convert(variables_[index], plan_.variables.scalars[index].type, type, Conversion::Cut);
  }
  std::optional<Value> value;
  try {
    value = constantValue(expression, type);
  } catch (const SqlError&) {
    // The arguments of a call have one message for everything that does not convert.
    throw SqlError(8114,
                   "Error converting data type varchar to " + std::string(typeName(type)) + ".");
  }
  if (!value) {
    refuse(plan_.text, expression.position, "an argument that is neither constant nor variable");
  }
  return *value;
}

void BatchRunner::execute(ExecuteNode& node) {
  const Routine& routine = *node.routine;
  std::vector<std::optional<Value>> arguments(routine.parameters.size());
  for (const ExecuteNode::Argument& argument : node.arguments) {
    if (argument.value != nullptr) {
      arguments[argument.parameter] =
          argumentValue(*argument.value, routine.parameters[argument.parameter].type);
    }
  }
  // Held while it runs: a definition inside the procedure makes the engine let go of all plans.
  const std::shared_ptr<Plan> plan = surroundings_.plans.planOf(routine);
  BatchRunner callee(surroundings_, *plan, result_);
  // NOCOUNT holds for what is called; set in there, it ends with the call.
  callee.noCount_ = noCount_;
  callee.runProcedure(routine, arguments);
  passBack(node, callee);
}

void BatchRunner::passBack(const ExecuteNode& node, const BatchRunner& callee) {
  for (const ExecuteNode::Argument& argument : node.arguments) {
    const auto* const variable =
        argument.output ? std::get_if<tsql::Variable>(&argument.value->node) : nullptr;
    if (variable != nullptr) {
      const std::size_t index = plan_.variables.scalarByName.at(foldCase(variable->name));
      variables_[index] = convert(callee.variables_[argument.parameter],
                                  node.routine->parameters[argument.parameter].type,
                                  plan_.variables.scalars[index].type, Conversion::Cut);
    }
  }
}

/// SQLite prepared a statement anew by itself: the schema changed under the plan.
void BatchRunner::noticeReprepare(const PreparedStatement& prepared) {
  if (sqlite3_stmt_status(prepared.statement.get(), SQLITE_STMTSTATUS_REPREPARE, 1) > 0) {
    session_.schemaUncertain = true;
  }
}

}  // namespace azcoll::embedded
