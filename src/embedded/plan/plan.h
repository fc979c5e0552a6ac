#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <variant>
#include <vector>

#include "cursor/result_set.h"
#include "embedded/catalogue/catalogue.h"
#include "embedded/plan/result_column.h"
#include "embedded/plan/slots.h"
#include "embedded/sqlite/handle.h"
#include "embedded/values/sql_error.h"
#include "tsql/ast.h"

namespace azcoll::embedded {

/// An SQLite statement with what its parameters are.
struct PreparedStatement {
  std::string sql;
  SqliteStatement statement;
  std::vector<Slot> slots;
  std::optional<SqlError> failure{};  ///< what to refuse with instead of running it
};

struct Node;
using NodePtr = std::unique_ptr<Node>;

/// Gives a result set.
struct SelectNode {
  PreparedStatement prepared;
  std::vector<ResultColumn> columns;
  ColumnList shown{};  ///< the same for the results; filled at the first run
};
/// Gives values to variables, row by row: SELECT @v = …, SET, DECLARE with a first value.
struct AssignNode {
  PreparedStatement prepared;
  std::vector<AssignTarget> targets;
  bool isSet = false;  ///< SET, DECLARE: no result means NULL
};
enum class ChangeKind : std::uint8_t { Insert, Update, Delete };
struct ChangeNode {
  PreparedStatement prepared;
  ChangeKind kind = ChangeKind::Insert;
  Catalogue::TablePtr table;
  std::vector<std::size_t> computed;  ///< columns that an UPDATE computes from the row
};
/// Compiled when it is reached: a definition, or a statement over what does not exist yet.
struct DeferredNode {
  const tsql::Statement* statement = nullptr;
};
struct IfNode {
  PreparedStatement condition;
  NodePtr then;
  NodePtr otherwise;
};
struct WhileNode {
  PreparedStatement condition;
  NodePtr body;
};
struct BlockNode {
  std::vector<Node> statements;
};
struct ReturnNode {};
struct BreakNode {};
struct ContinueNode {};
/// A call. Arguments are constants, already of the parameter's type, or variables.
struct ExecuteNode {
  struct Argument {
    std::size_t parameter = 0;
    const tsql::Expression* value = nullptr;
    bool output = false;
  };
  Catalogue::RoutinePtr routine;
  std::vector<Argument> arguments;
};
struct TransactionNode {
  tsql::TransactionVerb verb = tsql::TransactionVerb::Begin;
};
struct NoCountNode {
  bool on = false;
};
struct EmptyNode {};

struct Node {
  std::variant<EmptyNode, SelectNode, AssignNode, ChangeNode, DeferredNode, IfNode, WhileNode,
               BlockNode, ReturnNode, BreakNode, ContinueNode, ExecuteNode, TransactionNode,
               NoCountNode>
      node;
};

/// A batch or the body of a procedure, ready to run. `text` and `tree` stay alive with it.
struct Plan {
  std::string text;
  std::shared_ptr<const tsql::Batch> tree;
  bool constantsInside = false;  ///< constants are part of the SQLite texts: nothing to bind
  std::vector<Guard> guards;
  VariableTable variables;
  std::vector<PreparedStatement> clearings;  ///< empty the table variables
  BlockNode body;
  bool cacheable = true;
  bool changesData = false;  ///< may do more than read
  bool makesTempTables = false;
  std::size_t activeCalls = 0;  ///< of a procedure that is running right now
};

}  // namespace azcoll::embedded
