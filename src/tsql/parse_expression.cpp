#include <optional>

#include "text/letter_case.h"
#include "tsql/condition.h"
#include "tsql/parser_core.h"

namespace azcoll::tsql {

namespace {

constexpr int kReadsAdditive = 1;
constexpr int kReadsMultiplicative = 2;

struct Arithmetic {
  BinaryOperator op;
  int precedence;
};

std::optional<Arithmetic> arithmeticOperator(Symbol symbol) {
  switch (symbol) {
    case Symbol::Plus:
      return Arithmetic{BinaryOperator::Add, kReadsAdditive};
    case Symbol::Minus:
      return Arithmetic{BinaryOperator::Subtract, kReadsAdditive};
    case Symbol::Star:
      return Arithmetic{BinaryOperator::Multiply, kReadsMultiplicative};
    case Symbol::Slash:
      return Arithmetic{BinaryOperator::Divide, kReadsMultiplicative};
    case Symbol::Percent:
      return Arithmetic{BinaryOperator::Modulo, kReadsMultiplicative};
    default:
      return std::nullopt;
  }
}

std::optional<BinaryOperator> comparisonOperator(Symbol symbol) {
  switch (symbol) {
    case Symbol::Equal:
      return BinaryOperator::Equal;
    case Symbol::NotEqual:
      return BinaryOperator::NotEqual;
    case Symbol::Less:
      return BinaryOperator::Less;
    case Symbol::Greater:
      return BinaryOperator::Greater;
    case Symbol::LessEqual:
      return BinaryOperator::LessEqual;
    case Symbol::GreaterEqual:
      return BinaryOperator::GreaterEqual;
    default:
      return std::nullopt;
  }
}

ExpressionPtr makeBinary(BinaryOperator op, ExpressionPtr left, ExpressionPtr right) {
  const Position position = left->position;
  return makeExpression(position, Binary{op, std::move(left), std::move(right)});
}

}  // namespace

void Parser::requireCondition(const Expression& expression) {
  if (!isCondition(expression)) {
    failNoCondition();
  }
}

ExpressionPtr Parser::parseCondition() {
  const Part part(*this);
  return parseOr(Wanted::Condition);
}

ExpressionPtr Parser::parseScalar() {
  const Part part(*this);
  return parseArithmetic(kReadsAdditive, Inside::Value);
}

/// Inside parentheses, where only what follows distinguishes a condition from a value.
ExpressionPtr Parser::parseEither() {
  const Part part(*this);
  return parseOr(Wanted::Either);
}

ExpressionPtr Parser::parseOr(Wanted wanted) {
  ExpressionPtr left = parseAnd(wanted);
  while (is(Keyword::Or)) {
    // In parentheses only the OR shows that a condition was meant.
    requireCondition(*left);
    advance();
    left = makeBinary(BinaryOperator::Or, std::move(left), parseAnd(Wanted::Condition));
    addLink();
  }
  return left;
}

ExpressionPtr Parser::parseAnd(Wanted wanted) {
  ExpressionPtr left = parseNot(wanted);
  while (is(Keyword::And)) {
    requireCondition(*left);
    advance();
    left = makeBinary(BinaryOperator::And, std::move(left), parseNot(Wanted::Condition));
    addLink();
  }
  return left;
}

ExpressionPtr Parser::parseNot(Wanted wanted) {
  if (!is(Keyword::Not)) {
    return parsePredicate(wanted);
  }
  const Nesting nesting(*this);
  const Position position = current_.position;
  advance();
  return makeExpression(position, Unary{UnaryOperator::Not, parseNot(Wanted::Condition)});
}

ExpressionPtr Parser::parsePredicate(Wanted wanted) {
  if (is(Keyword::Exists)) {
    return parseExists();
  }
  ExpressionPtr left = parseArithmetic(kReadsAdditive, Inside::ValueOrCondition);
  if (isCondition(*left)) {
    return left;
  }
  return parsePredicateBehind(std::move(left), wanted);
}

/// What may follow a value to make a condition of it.
ExpressionPtr Parser::parsePredicateBehind(ExpressionPtr left, Wanted wanted) {
  const Position position = left->position;
  if (const auto comparison = comparisonOperator(current_.symbol)) {
    advance();
    if (is(Keyword::All) || is(Keyword::Any) || is(Keyword::Some)) {
      failOutside("ALL, ANY and SOME in front of a subquery");
    }
    return makeBinary(*comparison, std::move(left), parseArithmetic(kReadsAdditive, Inside::Value));
  }
  switch (current_.keyword) {
    case Keyword::Is: {
      advance();
      const bool negated = accept(Keyword::Not);
      expect(Keyword::Null);
      return makeExpression(position, IsNull{std::move(left), negated});
    }
    case Keyword::Not:
      advance();
      return parseNegatable(std::move(left), true);
    case Keyword::In:
    case Keyword::Like:
    case Keyword::Between:
      return parseNegatable(std::move(left), false);
    default:
      if (wanted == Wanted::Condition) {
        failNoCondition();
      }
      return left;
  }
}

ExpressionPtr Parser::parseNegatable(ExpressionPtr left, bool negated) {
  const Position position = left->position;
  if (accept(Keyword::In)) {
    return parseIn(std::move(left), negated);
  }
  if (accept(Keyword::Like)) {
    Like like{std::move(left), parseArithmetic(kReadsAdditive, Inside::Value), nullptr, negated};
    if (accept(Keyword::Escape)) {
      like.escape = parseArithmetic(kReadsAdditive, Inside::Value);
    }
    return makeExpression(position, std::move(like));
  }
  expect(Keyword::Between);
  Between between{std::move(left), parseArithmetic(kReadsAdditive, Inside::Value), nullptr,
                  negated};
  expect(Keyword::And);
  between.high = parseArithmetic(kReadsAdditive, Inside::Value);
  return makeExpression(position, std::move(between));
}

ExpressionPtr Parser::parseIn(ExpressionPtr left, bool negated) {
  const Nesting nesting(*this);
  const Position position = left->position;
  expect(Symbol::LeftParenthesis);
  if (is(Keyword::Select)) {
    QueryPtr query = parseSubquery();
    expect(Symbol::RightParenthesis);
    return makeExpression(position, InQuery{std::move(left), std::move(query), negated});
  }
  InList list{std::move(left), parseScalarList(), negated};
  // `IN ((SELECT …) UNION …)` looks like a list of one value up to the UNION.
  auto* const first = std::get_if<ScalarQuery>(&list.items[0]->node);
  if (list.items.size() == 1 && continueQuery(first)) {
    expect(Symbol::RightParenthesis);
    return makeExpression(position,
                          InQuery{std::move(list.operand), std::move(first->query), negated});
  }
  expect(Symbol::RightParenthesis);
  return makeExpression(position, std::move(list));
}

ExpressionPtr Parser::parseExists() {
  const Nesting nesting(*this);
  const Position position = current_.position;
  advance();
  expect(Symbol::LeftParenthesis);
  QueryPtr query = parseSubquery();
  expect(Symbol::RightParenthesis);
  return makeExpression(position, Exists{std::move(query)});
}

std::vector<ExpressionPtr> Parser::parseScalarList() {
  std::vector<ExpressionPtr> list;
  do {
    list.push_back(parseScalar());
  } while (accept(Symbol::Comma));
  return list;
}

/// Operators of at least the precedence `minimum`, all of them left-associative. A condition in
/// parentheses is handed back as it is: nothing can be evaluated with it.
ExpressionPtr Parser::parseArithmetic(int minimum, Inside inside) {
  ExpressionPtr left = parseUnary(inside);
  if (inside == Inside::ValueOrCondition && isCondition(*left)) {
    return left;
  }
  // `T.*` is a whole item: nothing is calculated with it.
  if (std::holds_alternative<Star>(left->node)) {
    return left;
  }
  while (true) {
    if (is(Symbol::Bitwise)) {
      failOutside("bitwise operators");
    }
    const auto arithmetic = arithmeticOperator(current_.symbol);
    if (!arithmetic || arithmetic->precedence < minimum) {
      return left;
    }
    advance();
    left = makeBinary(arithmetic->op, std::move(left),
                      parseArithmetic(arithmetic->precedence + 1, Inside::Value));
    addLink();
  }
}

/// A sign binds less tightly than `*`, `/` and `%`: `-100 / -100 * 10` is -(100 / -(100 * 10)).
ExpressionPtr Parser::parseUnary(Inside inside) {
  if (!is(Symbol::Minus) && !is(Symbol::Plus)) {
    return parsePrimary(inside);
  }
  const Nesting nesting(*this);
  const Position position = current_.position;
  const UnaryOperator op = is(Symbol::Minus) ? UnaryOperator::Minus : UnaryOperator::Plus;
  advance();
  return makeExpression(position, Unary{op, parseArithmetic(kReadsMultiplicative, Inside::Value)});
}

ExpressionPtr Parser::parsePrimary(Inside inside) {
  if (current_.isConstant()) {
    ExpressionPtr literal = takeLiteral();
    if (is(Keyword::Collate)) {
      failOutside("COLLATE in an expression");
    }
    return literal;
  }
  ExpressionPtr primary;
  if (is(Symbol::LeftParenthesis)) {
    primary = parseParenthesized(inside);
  } else if (isName()) {
    primary = parseNamePrimary();
  } else if (current_.kind == TokenKind::Variable) {
    primary = takeVariable();
  } else if (current_.kind == TokenKind::Marker) {
    primary = makeExpression(current_.position, Marker{current_.ordinal});
    advance();
  } else if (current_.kind == TokenKind::Reserved) {
    primary = parseReservedPrimary();
  } else if (is(Symbol::Bitwise)) {
    failOutside("bitwise operators");
  } else if (current_.raw.substr(0, 1) == "$") {
    failOutside("constants of money and special columns ($)");
  } else if (current_.raw == "{") {
    failOutside("escape sequences in braces");
  } else {
    fail();
  }
  if (is(Keyword::Collate)) {
    failOutside("COLLATE in an expression");
  }
  return primary;
}

ExpressionPtr Parser::parseReservedPrimary() {
  switch (current_.keyword) {
    case Keyword::Null:
      return takeLiteral();
    case Keyword::Case:
      return parseCase();
    case Keyword::Convert:
      return parseConvert();
    // Reserved words that name functions only before a parenthesis.
    case Keyword::Coalesce:
    case Keyword::Nullif:
    case Keyword::Left:
    case Keyword::Right: {
      if (peek().symbol != Symbol::LeftParenthesis) {
        fail();
      }
      ObjectName name{{std::string(current_.raw)}, current_.position};
      advance();
      return parseCall(std::move(name));
    }
    case Keyword::Niladic: {
      const Position position = current_.position;
      FunctionCall call;
      call.name = {{std::string(current_.raw)}, position};
      advance();
      return makeExpression(position, std::move(call));
    }
    case Keyword::OtherFunction:
      failOutside("the function " + nearText());
    default:
      fail();
  }
}

ExpressionPtr Parser::parseParenthesized(Inside inside) {
  const Nesting nesting(*this);
  const Position position = current_.position;
  advance();
  if (is(Keyword::Select)) {
    QueryPtr query = parseSubquery();
    expect(Symbol::RightParenthesis);
    return makeExpression(position, ScalarQuery{std::move(query)});
  }
  ExpressionPtr inner = inside == Inside::ValueOrCondition ? parseEither() : parseScalar();
  continueQuery(std::get_if<ScalarQuery>(&inner->node));
  expect(Symbol::RightParenthesis);
  return inner;
}

/// `((SELECT …) UNION …)`: what looked like a value is the first operand of a query. Whether the
/// query went on.
bool Parser::continueQuery(ScalarQuery* first) {
  if (first == nullptr || !atSetOperator() || !first->query->orderBy.empty()) {
    return false;
  }
  ++subqueries_;
  first->query = parseUnion(std::move(first->query));
  --subqueries_;
  return true;
}

/// A column, `T.*` at the start of an item of the select list, or a call.
ExpressionPtr Parser::parseNamePrimary() {
  const Position position = current_.position;
  const bool quoted = current_.kind == TokenKind::QuotedName;
  if (!quoted && peek().symbol == Symbol::LeftParenthesis) {
    if (ExpressionPtr special = parseSpecialCall()) {
      return special;
    }
  }
  ObjectName name = parseObjectName(4);
  if (is(Symbol::Dot)) {  // parseObjectName() stops before `.*`
    advance();
    // A star with a table's name opens an item of a select list and stands nowhere else.
    if (position.offset != starOffset_) {
      fail();
    }
    advance();
    return makeExpression(position, Star{std::move(name)});
  }
  if (is(Symbol::LeftParenthesis)) {
    return parseCall(std::move(name));
  }
  return makeExpression(position, ColumnReference{std::move(name)});
}

/// A call from its opening parenthesis on.
ExpressionPtr Parser::parseCall(ObjectName name) {
  const Nesting nesting(*this);
  const Position position = name.position;
  const bool counts =
      name.parts.size() == 1 && (ascii::equalsIgnoringCase(name.parts[0], "COUNT") ||
                                 ascii::equalsIgnoringCase(name.parts[0], "COUNT_BIG"));
  FunctionCall call;
  call.name = std::move(name);
  expect(Symbol::LeftParenthesis);
  if (counts && is(Symbol::Star)) {
    call.arguments.push_back(makeExpression(current_.position, Star{}));
    advance();
  } else if (!is(Symbol::RightParenthesis)) {
    call.distinct = accept(Keyword::Distinct);
    // ALL says what holds without it.
    if (!call.distinct) {
      accept(Keyword::All);
    }
    call.arguments = parseScalarList();
  }
  expect(Symbol::RightParenthesis);
  if (is(Keyword::Over)) {
    failOutside("window functions (OVER)");
  }
  if (isWord("WITHIN") && peek().keyword == Keyword::Group) {
    failOutside("WITHIN GROUP");
  }
  return makeExpression(position, std::move(call));
}

/// The calls whose arguments are not a plain list; null when the current word is none of them.
ExpressionPtr Parser::parseSpecialCall() {
  if (isWord("CAST")) {
    return parseCast();
  }
  if (isWord("IIF")) {
    return parseIif();
  }
  for (const std::string_view other : {"TRY_CAST", "PARSE", "TRY_PARSE"}) {
    if (isWord(other)) {
      failOutside("the function " + std::string(other));
    }
  }
  return nullptr;
}

ExpressionPtr Parser::parseCase() {
  const Nesting nesting(*this);
  const Position position = current_.position;
  advance();
  Case node;
  if (!is(Keyword::When)) {
    node.operand = parseScalar();
  }
  do {
    expect(Keyword::When);
    CaseBranch branch;
    branch.when = node.operand ? parseScalar() : parseCondition();
    expect(Keyword::Then);
    branch.then = parseScalar();
    node.branches.push_back(std::move(branch));
  } while (is(Keyword::When));
  if (accept(Keyword::Else)) {
    node.otherwise = parseScalar();
  }
  expect(Keyword::End);
  return makeExpression(position, std::move(node));
}

ExpressionPtr Parser::parseCast() {
  const Nesting nesting(*this);
  const Position position = current_.position;
  advance();
  expect(Symbol::LeftParenthesis);
  Cast cast;
  cast.operand = parseScalar();
  expect(Keyword::As);
  cast.type = parseType();
  expect(Symbol::RightParenthesis);
  return makeExpression(position, std::move(cast));
}

ExpressionPtr Parser::parseConvert() {
  const Nesting nesting(*this);
  const Position position = current_.position;
  advance();
  expect(Symbol::LeftParenthesis);
  Cast cast;
  cast.isConvert = true;
  cast.type = parseType();
  expect(Symbol::Comma);
  cast.operand = parseScalar();
  if (accept(Symbol::Comma)) {
    cast.style = parseScalar();
  }
  expect(Symbol::RightParenthesis);
  return makeExpression(position, std::move(cast));
}

/// `IIF(condition, a, b)` is short for a CASE with one branch, and becomes one.
ExpressionPtr Parser::parseIif() {
  const Nesting nesting(*this);
  const Position position = current_.position;
  advance();
  expect(Symbol::LeftParenthesis);
  CaseBranch branch;
  branch.when = parseCondition();
  expect(Symbol::Comma);
  branch.then = parseScalar();
  expect(Symbol::Comma);
  Case node;
  node.branches.push_back(std::move(branch));
  node.otherwise = parseScalar();
  expect(Symbol::RightParenthesis);
  return makeExpression(position, std::move(node));
}

}  // namespace azcoll::tsql
