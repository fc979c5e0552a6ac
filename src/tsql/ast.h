#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <variant>
#include <vector>

namespace azcoll::tsql {

/// A place in the text: byte offset, and line and column (from 1, columns in characters).
struct Position {
  std::size_t offset = 0;
  std::uint32_t line = 1;
  std::uint32_t column = 1;
};

/// A name of up to four parts, each unquoted: `server.database.schema.object`, the last one always
/// there. `dbo.T` has two parts.
struct ObjectName {
  std::vector<std::string> parts;
  Position position;
};

/// A type as written: `DECIMAL(9, 2)` is {"DECIMAL", 9, 2}; `VARCHAR(MAX)` has length -1.
struct TypeName {
  std::string name;  ///< upper case, without schema or brackets
  std::optional<int> length;
  std::optional<int> scale;
  Position position;
};

struct Expression;
struct Query;
struct Statement;
using ExpressionPtr = std::unique_ptr<Expression>;
using QueryPtr = std::unique_ptr<Query>;
using StatementPtr = std::unique_ptr<Statement>;

// ---------------------------------------------------------------- expressions

enum class LiteralKind : std::uint8_t { Integer, Decimal, Float, Text, NationalText, Binary, Null };

/// The ordinal of a constant that the shape of its text does not lift: the word NULL anywhere but
/// where it opens a value of a VALUES row.
inline constexpr std::size_t kNotLifted = static_cast<std::size_t>(-1);

/// A constant. `text` is the value: digits as written, text without its quotes and with doubled
/// apostrophes undone. `ordinal` numbers the constants of a batch from 0 in textual order, so that
/// a plan can take the values from another text of the same shape; `kNotLifted` when the constant
/// is part of the shape.
struct Literal {
  LiteralKind kind = LiteralKind::Null;
  std::string text;
  std::size_t ordinal = kNotLifted;
};

struct ColumnReference {
  ObjectName name;
};
/// `*` or `T.*`; the qualifier has no parts for a bare star.
struct Star {
  ObjectName qualifier;
};
/// `@name`, or `@@NAME` for a system value; with its at signs.
struct Variable {
  std::string name;
};
/// A `?` marker, numbered from 0 in textual order.
struct Marker {
  std::size_t ordinal = 0;
};

enum class UnaryOperator : std::uint8_t { Minus, Plus, Not };
struct Unary {
  UnaryOperator op;
  ExpressionPtr operand;
};

enum class BinaryOperator : std::uint8_t {
  Add,
  Subtract,
  Multiply,
  Divide,
  Modulo,
  Equal,
  NotEqual,
  Less,
  Greater,
  LessEqual,
  GreaterEqual,
  And,
  Or
};
struct Binary {
  BinaryOperator op;
  ExpressionPtr left;
  ExpressionPtr right;
};

struct Between {
  ExpressionPtr operand;
  ExpressionPtr low;
  ExpressionPtr high;
  bool negated = false;
};
struct Like {
  ExpressionPtr operand;
  ExpressionPtr pattern;
  ExpressionPtr escape;
  bool negated = false;
};
struct InList {
  ExpressionPtr operand;
  std::vector<ExpressionPtr> items;
  bool negated = false;
};
struct InQuery {
  ExpressionPtr operand;
  QueryPtr query;
  bool negated = false;
};
struct IsNull {
  ExpressionPtr operand;
  bool negated = false;
};
struct Exists {
  QueryPtr query;
};
struct ScalarQuery {
  QueryPtr query;
};

struct CaseBranch {
  ExpressionPtr when;
  ExpressionPtr then;
};
/// `CASE [operand] WHEN … THEN … [ELSE …] END`; operand and otherwise may be null.
struct Case {
  ExpressionPtr operand;
  std::vector<CaseBranch> branches;
  ExpressionPtr otherwise;
};

/// `NAME(arguments)`; aggregates too. `COUNT(*)` has one Star argument.
struct FunctionCall {
  ObjectName name;
  std::vector<ExpressionPtr> arguments;
  bool distinct = false;
};
/// `CAST(operand AS type)`, or `CONVERT(type, operand[, style])` with `style` set when given.
struct Cast {
  ExpressionPtr operand;
  TypeName type;
  ExpressionPtr style;
  bool isConvert = false;
};

struct Expression {
  Position position;
  std::variant<Literal, ColumnReference, Star, Variable, Marker, Unary, Binary, Between, Like,
               InList, InQuery, IsNull, Exists, ScalarQuery, Case, FunctionCall, Cast>
      node;
};

// ---------------------------------------------------------------- queries

struct SelectItem {
  ExpressionPtr expression;
  std::string alias;  ///< empty when none was given
  bool hasAlias = false;
  std::string assignTo;  ///< `@v` of `SELECT @v = expression`, else empty
  Position position;
};

struct OrderItem {
  ExpressionPtr expression;
  bool descending = false;
};

struct TableSource;
using TableSourcePtr = std::unique_ptr<TableSource>;

/// A table, view or table variable (`@T`) by name. Hints are kept upper case ("NOLOCK").
struct NamedTable {
  ObjectName name;
  std::vector<std::string> hints;
};
struct DerivedTable {
  QueryPtr query;
};
/// A table-valued function in FROM or after APPLY.
struct FunctionTable {
  ObjectName name;
  std::vector<ExpressionPtr> arguments;
};

enum class JoinKind : std::uint8_t { Inner, Left, Right, Full, Cross, CrossApply, OuterApply };
struct Join {
  JoinKind kind;
  TableSourcePtr left;
  TableSourcePtr right;
  ExpressionPtr on;
};

struct TableSource {
  Position position;
  std::string alias;  ///< empty when none was given
  std::variant<NamedTable, DerivedTable, FunctionTable, Join> node;
};

struct Top {
  ExpressionPtr count;
};

/// `SELECT … FROM … WHERE … GROUP BY … HAVING …`. Comma-separated sources are all in `from`.
struct QuerySpecification {
  bool distinct = false;
  std::optional<Top> top;
  std::vector<SelectItem> items;
  std::vector<TableSourcePtr> from;
  ExpressionPtr where;
  std::vector<ExpressionPtr> groupBy;
  ExpressionPtr having;
};

enum class SetOperator : std::uint8_t { Union, UnionAll, Except, Intersect };
struct SetOperation {
  SetOperator op;
  QueryPtr left;
  QueryPtr right;
};

/// A query expression with the ORDER BY that belongs to it.
struct Query {
  Position position;
  std::variant<QuerySpecification, SetOperation> body;
  std::vector<OrderItem> orderBy;
};

// ---------------------------------------------------------------- statements

struct SelectStatement {
  QueryPtr query;
};

/// Exactly one of `rows`, `query` is filled, or neither for `DEFAULT VALUES`. A null expression in
/// a row stands for the word DEFAULT.
struct InsertStatement {
  NamedTable target;
  std::vector<std::string> columns;  ///< empty: all columns of the table in order
  std::vector<std::vector<ExpressionPtr>> rows;
  QueryPtr query;
  bool defaultValues = false;
};

struct Assignment {
  ObjectName column;
  ExpressionPtr value;
};

/// `UPDATE target SET … [FROM …] [WHERE …]`; the target may be an alias of the FROM clause.
struct UpdateStatement {
  NamedTable target;
  std::vector<Assignment> assignments;
  std::vector<TableSourcePtr> from;
  ExpressionPtr where;
};

/// `DELETE [FROM] target [FROM …] [WHERE …]`.
struct DeleteStatement {
  NamedTable target;
  std::vector<TableSourcePtr> from;
  ExpressionPtr where;
};

struct ColumnDefinition {
  std::string name;
  TypeName type;
  std::optional<bool> nullable;  ///< as written; not given means nullable unless in the key
  bool identity = false;
  std::int64_t identitySeed = 1;
  std::int64_t identityIncrement = 1;
  std::string defaultName;     ///< name of the DEFAULT constraint, or empty
  ExpressionPtr defaultValue;  ///< may be null
  std::string collation;       ///< as written, or empty
  Position position;
};

enum class ConstraintKind : std::uint8_t { PrimaryKey, Unique, ForeignKey, Check };

/// A table constraint; one written after a column is the same with that one column.
struct ConstraintDefinition {
  ConstraintKind kind = ConstraintKind::PrimaryKey;
  std::string name;  ///< empty when none was given
  std::vector<std::string> columns;
  ObjectName referencedTable;
  std::vector<std::string> referencedColumns;
  ExpressionPtr check;
  Position position;
};

struct CreateTableStatement {
  ObjectName name;
  std::vector<ColumnDefinition> columns;
  std::vector<ConstraintDefinition> constraints;
};
struct CreateIndexStatement {
  std::string name;
  ObjectName table;
  std::vector<std::string> columns;
  std::vector<bool> descending;  ///< of each column
  bool unique = false;
};
struct DropStatement {
  std::string kind;  ///< "TABLE", "PROCEDURE", "FUNCTION" or "INDEX"
  ObjectName name;   ///< of an index: the parts of its table, then its own name
  bool ifExists = false;
};

struct ParameterDefinition {
  std::string name;  ///< with its `@`
  TypeName type;
  ExpressionPtr defaultValue;  ///< may be null: the parameter must be supplied
  bool output = false;
};
/// `source` is the text of the whole statement, kept in the catalogue.
struct CreateProcedureStatement {
  ObjectName name;
  std::vector<ParameterDefinition> parameters;
  std::vector<StatementPtr> body;
  std::string source;
};
/// Inline table-valued function: `RETURNS TABLE AS RETURN (query)`.
struct CreateFunctionStatement {
  ObjectName name;
  std::vector<ParameterDefinition> parameters;
  QueryPtr body;
  std::string source;
};

/// One variable of a DECLARE: a scalar with an optional first value, or a table.
struct VariableDeclaration {
  std::string name;                             ///< with its `@`
  TypeName type;                                ///< of a scalar
  ExpressionPtr initial;                        ///< may be null
  std::unique_ptr<CreateTableStatement> table;  ///< of a table variable, else null
  Position position;
};
struct DeclareStatement {
  std::vector<VariableDeclaration> variables;
};
struct SetVariableStatement {
  std::string name;
  ExpressionPtr value;
};
/// `SET NOCOUNT ON` and the like: name upper case.
struct SetOptionStatement {
  std::string option;
  bool on = false;
};
struct IfStatement {
  ExpressionPtr condition;
  StatementPtr then;
  StatementPtr otherwise;
};
struct WhileStatement {
  ExpressionPtr condition;
  StatementPtr body;
};
struct BlockStatement {
  std::vector<StatementPtr> statements;
};
struct ReturnStatement {
  ExpressionPtr value;
};
struct BreakStatement {};
struct ContinueStatement {};
struct ExecuteArgument {
  std::string name;
  ExpressionPtr value;
  bool output = false;
};
struct ExecuteStatement {
  ObjectName procedure;
  std::vector<ExecuteArgument> arguments;
};

enum class TransactionVerb : std::uint8_t { Begin, Commit, Rollback };
struct TransactionStatement {
  TransactionVerb verb;
};

struct Statement {
  Position position;
  std::variant<SelectStatement, InsertStatement, UpdateStatement, DeleteStatement,
               CreateTableStatement, CreateIndexStatement, DropStatement, CreateProcedureStatement,
               CreateFunctionStatement, DeclareStatement, SetVariableStatement, SetOptionStatement,
               IfStatement, WhileStatement, BlockStatement, ReturnStatement, BreakStatement,
               ContinueStatement, ExecuteStatement, TransactionStatement>
      node;
};

/// A parsed batch. `literalCount` is the number of constants (their ordinals run from 0).
/// `structuralLiterals` are the ordinals, rising, of the constants that no `Literal` node holds
/// because they are part of something else (the length of a type, the seed of an identity, an alias
/// in quotes): a plan serves another text of the same shape only when these are the same there.
struct Batch {
  std::vector<StatementPtr> statements;
  std::size_t literalCount = 0;
  std::size_t markerCount = 0;
  std::vector<std::size_t> structuralLiterals;
};

}  // namespace azcoll::tsql
