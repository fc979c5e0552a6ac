#include <optional>

#include "tsql/parser_core.h"

namespace azcoll::tsql {

namespace {

QueryPtr makeSetOperation(SetOperator op, QueryPtr left, QueryPtr right) {
  auto query = std::make_unique<Query>();
  query->position = left->position;
  query->body = SetOperation{op, std::move(left), std::move(right)};
  return query;
}

}  // namespace

bool Parser::atSetOperator() const {
  return is(Keyword::Union) || is(Keyword::Except) || is(Keyword::Intersect);
}

/// A query with its ORDER BY.
QueryPtr Parser::parseQuery() {
  const Part part(*this);
  QueryPtr query = parseUnion();
  if (is(Keyword::Order)) {
    query->orderBy = parseOrderBy();
  }
  refuseQueryTail();
  return query;
}

/// A query inside another statement or query, without its parentheses.
QueryPtr Parser::parseSubquery() {
  // 1033 is reported at the subquery's own beginning.
  const Token place = current_;
  ++subqueries_;
  QueryPtr query = parseQuery();
  --subqueries_;
  checkOrderOfSubquery(*query, place);
  return query;
}

/// The order of a subquery has a meaning only where TOP chooses by it.
void Parser::checkOrderOfSubquery(const Query& query, const Token& place) {
  const auto* const specification = std::get_if<QuerySpecification>(&query.body);
  if (query.orderBy.empty() || (specification != nullptr && specification->top)) {
    return;
  }
  failAt(1033,
         "The ORDER BY clause is invalid in views, inline functions, derived tables, subqueries, "
         "and common table expressions, unless TOP, OFFSET or FOR XML is also specified.",
         place);
}

/// Operands joined by UNION and EXCEPT; `first` is the first operand where it is read already.
QueryPtr Parser::parseUnion(QueryPtr first) {
  QueryPtr left = parseIntersect(std::move(first));
  while (is(Keyword::Union) || is(Keyword::Except)) {
    SetOperator op = is(Keyword::Union) ? SetOperator::Union : SetOperator::Except;
    advance();
    if (op == SetOperator::Union && accept(Keyword::All)) {
      op = SetOperator::UnionAll;
    }
    left = makeSetOperation(op, std::move(left), parseIntersect());
    addLink();
  }
  return left;
}

/// INTERSECT binds more tightly than UNION and EXCEPT.
QueryPtr Parser::parseIntersect(QueryPtr first) {
  QueryPtr left = first ? std::move(first) : parseQueryOperand();
  while (accept(Keyword::Intersect)) {
    left = makeSetOperation(SetOperator::Intersect, std::move(left), parseQueryOperand());
    addLink();
  }
  return left;
}

QueryPtr Parser::parseQueryOperand() {
  if (!is(Symbol::LeftParenthesis)) {
    return parseSpecification();
  }
  const Nesting nesting(*this);
  advance();
  QueryPtr query = parseUnion();
  expect(Symbol::RightParenthesis);
  return query;
}

QueryPtr Parser::parseSpecification() {
  const Part part(*this);
  auto query = std::make_unique<Query>();
  query->position = current_.position;
  expect(Keyword::Select);
  QuerySpecification specification;
  specification.distinct = accept(Keyword::Distinct);
  if (!specification.distinct) {
    accept(Keyword::All);
  }
  specification.top = parseTop();
  do {
    specification.items.push_back(parseSelectItem());
  } while (accept(Symbol::Comma));
  if (is(Keyword::Into)) {
    failOutside("SELECT INTO");
  }
  if (accept(Keyword::From)) {
    specification.from = parseFrom();
  }
  if (accept(Keyword::Where)) {
    specification.where = parseCondition();
  }
  parseGroupBy(specification);
  if (accept(Keyword::Having)) {
    specification.having = parseCondition();
  }
  query->body = std::move(specification);
  return query;
}

std::optional<Top> Parser::parseTop() {
  if (!accept(Keyword::Top)) {
    return std::nullopt;
  }
  Top top;
  if (accept(Symbol::LeftParenthesis)) {
    top.count = parseScalar();
    expect(Symbol::RightParenthesis);
  } else if (current_.kind == TokenKind::Integer) {
    // Without parentheses TOP takes a number only.
    top.count = takeLiteral();
  } else {
    fail();
  }
  if (is(Keyword::Percent)) {
    failOutside("TOP with PERCENT");
  }
  if (is(Keyword::With)) {
    failOutside("TOP with WITH TIES");
  }
  return top;
}

/// Whether `alias = expression` begins here.
bool Parser::atAssignedAlias() { return (isName() || isText()) && peek().symbol == Symbol::Equal; }

SelectItem Parser::parseSelectItem() {
  SelectItem item;
  item.position = current_.position;
  if (is(Symbol::Star)) {
    item.expression = makeExpression(current_.position, Star{});
    advance();
    return item;
  }
  // Only a SELECT that is a statement gives values to variables.
  if (current_.kind == TokenKind::Variable && subqueries_ == 0) {
    const Symbol behind = peek().symbol;
    if (behind == Symbol::CompoundAssignment) {
      failOutside("compound assignment (+= and the like)");
    }
    if (behind == Symbol::Equal) {
      item.assignTo = takeVariableName();
      advance();
      item.expression = parseScalar();
      return item;
    }
  }
  if (atAssignedAlias()) {
    item.alias = takeAnyName(current_);
    item.hasAlias = true;
    advance();
    advance();
    item.expression = parseScalar();
    return item;
  }
  // `T.*` may stand here, and is recognised by its place.
  starOffset_ = current_.position.offset;
  item.expression = parseScalar();
  // A star takes no alias.
  if (!std::holds_alternative<Star>(item.expression->node)) {
    parseSelectAlias(item);
  }
  return item;
}

void Parser::parseSelectAlias(SelectItem& item) {
  const bool required = accept(Keyword::As);
  if (isName() || isText()) {
    item.alias = takeAnyName(current_);
    item.hasAlias = true;
    advance();
  } else if (required) {
    fail();
  }
}

void Parser::parseGroupBy(QuerySpecification& specification) {
  if (!accept(Keyword::Group)) {
    return;
  }
  expect(Keyword::By);
  if (is(Keyword::All)) {
    failOutside("GROUP BY ALL");
  }
  do {
    const bool groupingSet =
        (isWord("ROLLUP") || isWord("CUBE")) && peek().symbol == Symbol::LeftParenthesis;
    if (groupingSet || (isWord("GROUPING") && peek().kind == TokenKind::Word)) {
      failOutside("ROLLUP, CUBE and GROUPING SETS");
    }
    specification.groupBy.push_back(parseScalar());
  } while (accept(Symbol::Comma));
  if (is(Keyword::With)) {
    failOutside("ROLLUP, CUBE and GROUPING SETS");
  }
}

std::vector<OrderItem> Parser::parseOrderBy() {
  advance();
  expect(Keyword::By);
  std::vector<OrderItem> items;
  do {
    OrderItem item;
    item.expression = parseScalar();
    item.descending = accept(Keyword::Desc);
    if (!item.descending) {
      accept(Keyword::Asc);
    }
    items.push_back(std::move(item));
  } while (accept(Symbol::Comma));
  if (isWord("OFFSET")) {
    failOutside("OFFSET and FETCH");
  }
  return items;
}

void Parser::refuseQueryTail() {
  if (is(Keyword::For)) {
    failOutside("FOR behind a query");
  }
  if (is(Keyword::Option)) {
    failOutside("query hints (OPTION)");
  }
}

}  // namespace azcoll::tsql
