#include "tsql/parser_core.h"

namespace azcoll::tsql {

SelectStatement Parser::parseSelect() { return {parseQuery()}; }

/// The table that a statement changes, with its hints.
NamedTable Parser::parseTarget() {
  NamedTable target;
  if (is(Keyword::Top)) {
    failOutside("TOP in a statement that changes rows");
  }
  if (is(Keyword::OtherFunction)) {
    failOutside("the function " + nearText());
  }
  target.name = parseTableName();
  // Without WITH, `(NOLOCK)` is a list of columns here.
  if (is(Keyword::With) && peek().symbol == Symbol::LeftParenthesis) {
    parseTableHints(target.hints);
  }
  return target;
}

void Parser::refuseOutputClause() {
  if (isWord("OUTPUT")) {
    failOutside("the clause OUTPUT");
  }
}

void Parser::refuseCurrentOf() {
  if (is(Keyword::Current)) {
    failOutside("WHERE CURRENT OF");
  }
}

InsertStatement Parser::parseInsert() {
  InsertStatement insert;
  advance();
  if (is(Keyword::Top)) {
    failOutside("TOP in a statement that changes rows");
  }
  accept(Keyword::Into);
  insert.target = parseTarget();
  // A parenthesis opens the list of columns, or a query.
  const bool queryFollows = peek().keyword == Keyword::Select || peek().raw == "(";
  if (is(Symbol::LeftParenthesis) && !queryFollows) {
    insert.columns = parseNameList();
  }
  refuseOutputClause();
  if (is(Keyword::Default)) {
    advance();
    expect(Keyword::Values);
    insert.defaultValues = true;
  } else if (is(Keyword::Values)) {
    insert.rows = parseValues();
  } else if (is(Keyword::Select) || is(Symbol::LeftParenthesis)) {
    ++subqueries_;  // `@v = …` has no meaning here
    insert.query = parseQuery();
    --subqueries_;
  } else if (is(Keyword::Exec)) {
    failOutside("INSERT with EXECUTE");
  } else {
    fail();
  }
  return insert;
}

std::vector<std::vector<ExpressionPtr>> Parser::parseValues() {
  advance();
  std::vector<std::vector<ExpressionPtr>> rows;
  do {
    expect(Symbol::LeftParenthesis);
    std::vector<ExpressionPtr> row;
    do {
      // No expression: the column's default.
      if (accept(Keyword::Default)) {
        row.push_back(nullptr);
      } else {
        row.push_back(parseScalar());
      }
    } while (accept(Symbol::Comma));
    expect(Symbol::RightParenthesis);
    rows.push_back(std::move(row));
  } while (accept(Symbol::Comma));
  return rows;
}

UpdateStatement Parser::parseUpdate() {
  UpdateStatement update;
  advance();
  if (is(Keyword::Statistics)) {
    failOutside("UPDATE STATISTICS");
  }
  update.target = parseTarget();
  expect(Keyword::Set);
  do {
    update.assignments.push_back(parseAssignment());
  } while (accept(Symbol::Comma));
  refuseOutputClause();
  if (accept(Keyword::From)) {
    update.from = parseFrom();
  }
  if (accept(Keyword::Where)) {
    refuseCurrentOf();
    update.where = parseCondition();
  }
  refuseQueryTail();
  return update;
}

Assignment Parser::parseAssignment() {
  Assignment assignment;
  if (current_.kind == TokenKind::Variable) {
    failOutside("a variable set by UPDATE");
  }
  assignment.column = parseObjectName(4);
  if (is(Symbol::LeftParenthesis)) {
    failOutside("a method of a column");
  }
  if (is(Symbol::CompoundAssignment)) {
    failOutside("compound assignment (+= and the like)");
  }
  expect(Symbol::Equal);
  if (is(Keyword::Default)) {
    failOutside("DEFAULT in UPDATE");
  }
  assignment.value = parseScalar();
  return assignment;
}

DeleteStatement Parser::parseDelete() {
  DeleteStatement statement;
  advance();
  if (is(Keyword::Top)) {
    failOutside("TOP in a statement that changes rows");
  }
  accept(Keyword::From);
  statement.target = parseTarget();
  refuseOutputClause();
  if (accept(Keyword::From)) {
    statement.from = parseFrom();
  }
  if (accept(Keyword::Where)) {
    refuseCurrentOf();
    statement.where = parseCondition();
  }
  refuseQueryTail();
  return statement;
}

}  // namespace azcoll::tsql
