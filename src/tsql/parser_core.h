#pragma once

#include <algorithm>
#include <array>
#include <cstddef>
#include <memory>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "tsql/ast.h"
#include "tsql/lexer.h"
#include "tsql/parser.h"

namespace azcoll::tsql {

/// Recursive descent over the tokens of one batch. The definitions stand in one file per subject:
/// parser.cpp (tokens, names, types, errors), parse_expression.cpp, parse_query.cpp,
/// parse_source.cpp, parse_dml.cpp, parse_ddl.cpp, parse_routine.cpp, parse_procedural.cpp.
class Parser {
 public:
  explicit Parser(std::string_view text);

  Batch parseBatch();

 private:
  /// Keeps the links of chains apart while a part of the tree is read: inside they count from 0;
  /// afterwards the outer count is that of its highest part. So the count never falls short of the
  /// links on any way through the tree, and parts side by side do not add up.
  class Part {
   public:
    explicit Part(Parser& parser) : parser_(parser), outer_(std::exchange(parser.height_, 0)) {}
    ~Part() { parser_.height_ = std::max(outer_, parser_.height_); }
    Part(const Part&) = delete;
    Part& operator=(const Part&) = delete;
    Part(Part&&) = delete;
    Part& operator=(Part&&) = delete;

   private:
    Parser& parser_;
    std::size_t outer_;
  };

  /// A part that is nested: refuses what lies deeper than `kMaxNesting`.
  class Nesting {
   public:
    explicit Nesting(Parser& parser) : part_(parser), depth_(parser.depth_) {
      if (depth_ == kMaxNesting) {
        parser.failTooDeep();
      }
      ++depth_;
    }
    ~Nesting() { --depth_; }
    Nesting(const Nesting&) = delete;
    Nesting& operator=(const Nesting&) = delete;
    Nesting(Nesting&&) = delete;
    Nesting& operator=(Nesting&&) = delete;

   private:
    Part part_;
    std::size_t& depth_;
  };

  /// What an expression may be: a condition, or a condition or a value (inside parentheses).
  enum class Wanted : std::uint8_t { Condition, Either };
  /// What parentheses may hold.
  enum class Inside : std::uint8_t { Value, ValueOrCondition };

  /// What stands in parentheses in a FROM clause: joined sources, or a query that still lacks the
  /// alias of a derived table.
  struct SourceOrQuery {
    TableSourcePtr source;
    QueryPtr query;
    Position position;
  };

  // Tokens.
  void advance();
  const Token& peek(std::size_t ahead = 1);  // at most two; valid up to advance()
  [[nodiscard]] bool is(Symbol symbol) const { return current_.symbol == symbol; }
  [[nodiscard]] bool is(Keyword keyword) const { return current_.keyword == keyword; }
  [[nodiscard]] bool isWord(std::string_view upper) const;
  [[nodiscard]] bool isName() const;
  [[nodiscard]] bool isText() const;
  bool accept(Symbol symbol);
  bool accept(Keyword keyword);
  bool acceptWord(std::string_view upper);
  void expect(Symbol symbol);
  void expect(Keyword keyword);

  // Errors, all at the current token.
  [[noreturn]] void fail();
  [[noreturn]] void failAt(int number, const std::string& message, const Token& token);
  [[noreturn]] void failTooDeep();
  [[noreturn]] void failNoCondition();
  [[noreturn]] void failOutside(std::string_view construct);
  [[nodiscard]] const Token& placeOfError() const;
  [[nodiscard]] std::string nearText() const;
  /// Counts one more link of a chain that makes the tree higher without nesting.
  void addLink();

  // Names, types, constants.
  std::string takeName();
  std::string takeAnyName(const Token& token);
  ObjectName parseObjectName(std::size_t maxParts);
  ObjectName parseTableName();
  std::vector<std::string> parseNameList();
  TypeName parseType();
  int takeTypeNumber();
  ExpressionPtr takeLiteral();
  ExpressionPtr takeVariable();
  ExpressionPtr parseConstant();

  // Expressions.
  ExpressionPtr parseCondition();
  ExpressionPtr parseScalar();
  ExpressionPtr parseEither();
  ExpressionPtr parseOr(Wanted wanted);
  ExpressionPtr parseAnd(Wanted wanted);
  ExpressionPtr parseNot(Wanted wanted);
  ExpressionPtr parsePredicate(Wanted wanted);
  ExpressionPtr parsePredicateBehind(ExpressionPtr left, Wanted wanted);
  ExpressionPtr parseNegatable(ExpressionPtr left, bool negated);
  ExpressionPtr parseIn(ExpressionPtr left, bool negated);
  ExpressionPtr parseArithmetic(int minimum, Inside inside);
  ExpressionPtr parseUnary(Inside inside);
  ExpressionPtr parsePrimary(Inside inside);
  ExpressionPtr parseReservedPrimary();
  ExpressionPtr parseParenthesized(Inside inside);
  bool continueQuery(ScalarQuery* first);
  ExpressionPtr parseNamePrimary();
  ExpressionPtr parseCall(ObjectName name);
  ExpressionPtr parseSpecialCall();
  ExpressionPtr parseCase();
  ExpressionPtr parseCast();
  ExpressionPtr parseConvert();
  ExpressionPtr parseIif();
  ExpressionPtr parseExists();
  std::vector<ExpressionPtr> parseScalarList();
  void requireCondition(const Expression& expression);

  // Queries.
  QueryPtr parseQuery();
  QueryPtr parseSubquery();
  void checkOrderOfSubquery(const Query& query, const Token& place);
  QueryPtr parseUnion(QueryPtr first = nullptr);
  QueryPtr parseIntersect(QueryPtr first = nullptr);
  QueryPtr parseQueryOperand();
  QueryPtr parseSpecification();
  std::optional<Top> parseTop();
  SelectItem parseSelectItem();
  void parseSelectAlias(SelectItem& item);
  void parseGroupBy(QuerySpecification& specification);
  std::vector<OrderItem> parseOrderBy();
  void refuseQueryTail();
  [[nodiscard]] bool atSetOperator() const;
  [[nodiscard]] bool atAssignedAlias();

  // Sources of a FROM clause.
  std::vector<TableSourcePtr> parseFrom();
  TableSourcePtr parseJoins(TableSourcePtr left);
  [[nodiscard]] bool atJoin() const;
  JoinKind takeJoinWords();
  TableSourcePtr parseSource();
  TableSourcePtr parseApplied();
  TableSourcePtr parseNamedSource();
  SourceOrQuery parseInParentheses();
  TableSourcePtr finishDerived(QueryPtr query, Position position);
  void parseSourceAlias(TableSource& source, bool required);
  [[nodiscard]] bool atBareHints();
  void parseTableHints(std::vector<std::string>& hints);
  void parseHintList(std::vector<std::string>& hints);
  void refuseColumnAliases();

  // Statements.
  StatementPtr parseStatement();
  Statement parseStatementNode();
  Statement parseUnreservedStatement();
  std::vector<StatementPtr> parseStatementsUntil(Keyword end);
  StatementPtr parseNestedStatement();
  SelectStatement parseSelect();
  InsertStatement parseInsert();
  std::vector<std::vector<ExpressionPtr>> parseValues();
  UpdateStatement parseUpdate();
  Assignment parseAssignment();
  DeleteStatement parseDelete();
  NamedTable parseTarget();
  void refuseOutputClause();
  void refuseCurrentOf();

  // Tables, indexes, routines.
  Statement parseCreate(Position position);
  CreateTableStatement parseCreateTable();
  void parseTableElements(CreateTableStatement& table);
  void parseColumn(CreateTableStatement& table);
  bool parseColumnOption(CreateTableStatement& table, ColumnDefinition& column);
  void parseColumnConstraint(CreateTableStatement& table, ColumnDefinition& column);
  void parseIdentity(ColumnDefinition& column);
  std::int64_t takeIdentityNumber();
  void parseTableConstraint(CreateTableStatement& table);
  void parseReferences(ConstraintDefinition& constraint);
  std::vector<std::string> parseIndexColumns(std::vector<bool>* descending = nullptr);
  void skipClustered();
  void refuseStorageOptions();
  CreateIndexStatement parseCreateIndex();
  DropStatement parseDrop();
  CreateProcedureStatement parseCreateProcedure(Position start);
  CreateFunctionStatement parseCreateFunction(Position start);
  ParameterDefinition parseParameter();
  std::vector<ParameterDefinition> parseParameters();
  [[nodiscard]] std::string sourceFrom(Position start) const;

  // Procedural statements.
  DeclareStatement parseDeclare();
  VariableDeclaration parseDeclaration();
  Statement parseSet(Position position);
  SetOptionStatement parseSetOption();
  IfStatement parseIf();
  WhileStatement parseWhile();
  Statement parseBegin(Position position);
  TransactionStatement parseTransactionEnd(TransactionVerb verb);
  void refuseTransactionName();
  ReturnStatement parseReturn();
  ExecuteStatement parseExecute();
  void parseExecuteArguments(ExecuteStatement& statement);
  ExecuteArgument parseExecuteArgument();
  [[nodiscard]] bool startsValue() const;
  std::string takeVariableName();

  Lexer lexer_;
  Token current_;
  Token previous_;
  std::array<Token, 2> ahead_;  // tokens read beyond the current one
  std::size_t aheadCount_ = 0;
  std::size_t depth_ = 0;
  std::size_t height_ = 0;
  std::size_t subqueries_ = 0;           // subqueries around the current token
  std::size_t starOffset_ = kNotLifted;  // where `T.*` may begin
  std::size_t batchStatements_ = 0;      // statements read so far, nested ones included
  std::vector<std::size_t> structural_;
};

/// A node of an expression at a place.
template <typename Node>
ExpressionPtr makeExpression(const Position& position, Node node) {
  return std::make_unique<Expression>(Expression{position, std::move(node)});
}

}  // namespace azcoll::tsql
