#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <unordered_map>
#include <variant>
#include <vector>

#include "cursor/result_set.h"
#include "embedded/catalogue.h"
#include "embedded/conversions.h"
#include "embedded/sql_error.h"
#include "embedded/sqlite_handle.h"
#include "embedded/types.h"
#include "tsql/ast.h"
#include "tsql/parser.h"

namespace azcoll::embedded {

/// Where the value of a parameter of an SQLite statement comes from.
enum class SlotSource : std::uint8_t {
  Literal,   ///< constant number `index` of the batch's text
  Variable,  ///< variable number `index` of the frame
  Marker,    ///< parameter number `index` of the caller
  Now,
  RowCount,
  Identity,
  TransactionCount
};

/// A parameter of an SQLite statement; its value is converted to `target` when it is bound.
struct Slot {
  SlotSource source = SlotSource::Literal;
  bool negate = false;
  Conversion conversion = Conversion::Compare;
  std::uint32_t index = 0;
  Type target;
};

/// What a plan took for granted of a constant; a text of the same shape whose constant is otherwise
/// needs a plan of its own.
struct Guard {
  enum class Kind : std::uint8_t {
    SameText,      ///< it is part of the plan: an ordinal of ORDER BY, the length of a type
    SameType,      ///< its own type is that of a result, or decides about conversions
    SmallInteger,  ///< a whole number of at most 18 digits
    Scale          ///< a decimal of at most `type.scale` digits behind the point
  };
  Kind kind = Kind::SameText;
  std::size_t ordinal = 0;
  Type type;
  std::string text;  ///< without quotes
};

struct ResultColumn {
  ColumnInfo info;
  Type type;
};

/// An SQLite statement and what its parameters are.
struct Piece {
  std::string sql;
  SqliteStatement statement;
  std::vector<Slot> slots;
  std::optional<SqlError> failure{};  ///< what to refuse with instead of running it
};

struct Node;
using NodePtr = std::unique_ptr<Node>;

/// Gives a result set.
struct SelectNode {
  Piece piece;
  std::vector<ResultColumn> columns;
  ColumnList shown{};  ///< the same for the results; filled at the first run
};
/// Gives values to variables, row by row: SELECT @v = …, SET, DECLARE with a first value.
struct AssignNode {
  struct Target {
    std::size_t variable = 0;
    Type type;  ///< of the value
  };
  Piece piece;
  std::vector<Target> targets;
  bool isSet = false;  ///< SET, DECLARE: no result means NULL
};
enum class ChangeKind : std::uint8_t { Insert, Update, Delete };
struct ChangeNode {
  Piece piece;
  ChangeKind kind = ChangeKind::Insert;
  Catalogue::TablePtr table;
};
/// Compiled when it is reached: a definition, or a statement over what does not exist yet.
struct DeferredNode {
  const tsql::Statement* statement = nullptr;
};
struct IfNode {
  Piece condition;
  NodePtr then;
  NodePtr otherwise;
};
struct WhileNode {
  Piece condition;
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

/// A scalar variable of a batch or procedure.
struct VariableInfo {
  std::string name;
  Type type;
};

/// The variables declared so far.
struct VariableTable {
  std::vector<VariableInfo> scalars;
  std::unordered_map<std::string, std::size_t> scalarByName;
  std::unordered_map<std::string, std::shared_ptr<const Table>> tables;
};

/// A batch or the body of a procedure, ready to run. `text` and `tree` stay alive with it.
struct Plan {
  std::string text;
  std::shared_ptr<const tsql::Batch> tree;
  bool constantsInside = false;  ///< constants are part of the SQLite texts: nothing to bind
  std::vector<Guard> guards;
  VariableTable variables;
  std::vector<Piece> clearings;  ///< empty the table variables
  BlockNode body;
  bool cacheable = true;
  bool changesData = false;  ///< may do more than read
  bool makesTempTables = false;
  std::size_t activeCalls = 0;  ///< of a procedure that is running right now
};

/// Whether the constants of a text fit what the plan took for granted.
[[nodiscard]] bool guardsHold(const std::vector<Guard>& guards, const tsql::Shape& shape);

/// Refuses constants that have no value here: numbers of more than 38 digits (1007), floating-point
/// numbers out of range (168), binary constants. A plan is shared by texts with and without them,
/// and nothing of a text may run that holds one.
void checkConstants(const tsql::Shape& shape);

/// The text of a constant with apostrophes written twice undone.
[[nodiscard]] std::string literalText(const tsql::LiteralToken& token);

}  // namespace azcoll::embedded
