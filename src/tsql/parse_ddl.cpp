#include <charconv>

#include "text/letter_case.h"
#include "tsql/parser_core.h"

namespace azcoll::tsql {

Statement Parser::parseCreate(Position position) {
  advance();
  if (is(Keyword::Or)) {
    failOutside("CREATE OR ALTER");
  }
  if (is(Keyword::Table)) {
    return {position, parseCreateTable()};
  }
  if (is(Keyword::Unique) || is(Keyword::Clustered) || is(Keyword::Nonclustered) ||
      is(Keyword::Index)) {
    return {position, parseCreateIndex()};
  }
  if (is(Keyword::Procedure)) {
    return {position, parseCreateProcedure(position)};
  }
  if (is(Keyword::Function)) {
    return {position, parseCreateFunction(position)};
  }
  if (current_.kind == TokenKind::Word || is(Keyword::Other)) {
    failOutside("the statement CREATE " + nearText());
  }
  fail();
}

CreateTableStatement Parser::parseCreateTable() {
  CreateTableStatement table;
  advance();
  table.name = parseObjectName(3);
  parseTableElements(table);
  refuseStorageOptions();
  return table;
}

/// The columns and constraints in parentheses, of a table or of a table variable.
void Parser::parseTableElements(CreateTableStatement& table) {
  expect(Symbol::LeftParenthesis);
  do {
    switch (current_.keyword) {
      case Keyword::Constraint:
      case Keyword::Primary:
      case Keyword::Unique:
      case Keyword::Foreign:
      case Keyword::Check:
        parseTableConstraint(table);
        break;
      case Keyword::Index:
        failOutside("an index inside CREATE TABLE");
      default:
        parseColumn(table);
        break;
    }
  } while (accept(Symbol::Comma));
  expect(Symbol::RightParenthesis);
}

void Parser::refuseStorageOptions() {
  if (is(Keyword::On) || isWord("TEXTIMAGE_ON") || isWord("FILESTREAM_ON")) {
    failOutside("file groups (ON)");
  }
  if (is(Keyword::With)) {
    failOutside("storage options (WITH)");
  }
}

void Parser::parseColumn(CreateTableStatement& table) {
  ColumnDefinition column;
  column.position = current_.position;
  column.name = takeName();
  if (is(Keyword::As)) {
    failOutside("computed columns");
  }
  column.type = parseType();
  while (parseColumnOption(table, column)) {
  }
  table.columns.push_back(std::move(column));
}

/// Whether one more option of the column was read.
bool Parser::parseColumnOption(CreateTableStatement& table, ColumnDefinition& column) {
  switch (current_.keyword) {
    case Keyword::Null:
      advance();
      column.nullable = true;
      return true;
    case Keyword::Not:
      advance();
      expect(Keyword::Null);
      column.nullable = false;
      return true;
    case Keyword::Identity:
      parseIdentity(column);
      return true;
    case Keyword::Collate:
      advance();
      column.collation = takeName();
      return true;
    case Keyword::Constraint:
    case Keyword::Default:
    case Keyword::Primary:
    case Keyword::Unique:
    case Keyword::References:
    case Keyword::Foreign:
    case Keyword::Check:
      parseColumnConstraint(table, column);
      return true;
    default:
      break;
  }
  for (const std::string_view option : {"ENCRYPTED", "FILESTREAM", "GENERATED", "HIDDEN", "INDEX",
                                        "MASKED", "PERSISTED", "ROWGUIDCOL", "SPARSE"}) {
    if (ascii::equalsIgnoringCase(current_.raw, option)) {
      failOutside("the column option " + nearText());
    }
  }
  return false;
}

void Parser::parseIdentity(ColumnDefinition& column) {
  advance();
  column.identity = true;
  if (accept(Symbol::LeftParenthesis)) {
    column.identitySeed = takeIdentityNumber();
    expect(Symbol::Comma);
    column.identityIncrement = takeIdentityNumber();
    expect(Symbol::RightParenthesis);
  }
  if (is(Keyword::Not) && peek().keyword == Keyword::For) {
    failOutside("NOT FOR REPLICATION");
  }
}

std::int64_t Parser::takeIdentityNumber() {
  const bool negative = accept(Symbol::Minus);
  if (!negative) {
    accept(Symbol::Plus);
  }
  if (current_.kind != TokenKind::Integer) {
    fail();
  }
  std::int64_t number = 0;
  const auto* const end = current_.raw.data() + current_.raw.size();
  if (std::from_chars(current_.raw.data(), end, number).ec != std::errc()) {
    fail();
  }
  advance();
  return negative ? -number : number;
}

/// A constraint after a column. A key or a check becomes a constraint of the table.
void Parser::parseColumnConstraint(CreateTableStatement& table, ColumnDefinition& column) {
  ConstraintDefinition constraint;
  constraint.position = current_.position;
  if (accept(Keyword::Constraint)) {
    constraint.name = takeName();
  }
  if (accept(Keyword::Default)) {
    if (column.defaultValue) {
      failAt(8148,
             "More than one column DEFAULT constraint specified for column '" + column.name +
                 "', table '" + table.name.parts.back() + "'.",
             previous_);
    }
    column.defaultName = std::move(constraint.name);
    column.defaultValue = parseScalar();
    return;
  }
  if (accept(Keyword::Check)) {
    constraint.kind = ConstraintKind::Check;
    expect(Symbol::LeftParenthesis);
    constraint.check = parseCondition();
    expect(Symbol::RightParenthesis);
    table.constraints.push_back(std::move(constraint));
    return;
  }
  constraint.columns.push_back(column.name);
  if (accept(Keyword::Primary)) {
    expect(Keyword::Key);
    constraint.kind = ConstraintKind::PrimaryKey;
    skipClustered();
  } else if (accept(Keyword::Unique)) {
    constraint.kind = ConstraintKind::Unique;
    skipClustered();
  } else {
    if (accept(Keyword::Foreign)) {
      expect(Keyword::Key);
    }
    parseReferences(constraint);
  }
  if (is(Keyword::On) || is(Keyword::With)) {
    refuseStorageOptions();
  }
  table.constraints.push_back(std::move(constraint));
}

void Parser::parseTableConstraint(CreateTableStatement& table) {
  ConstraintDefinition constraint;
  constraint.position = current_.position;
  if (accept(Keyword::Constraint)) {
    constraint.name = takeName();
  }
  if (accept(Keyword::Check)) {
    constraint.kind = ConstraintKind::Check;
    expect(Symbol::LeftParenthesis);
    constraint.check = parseCondition();
    expect(Symbol::RightParenthesis);
  } else if (accept(Keyword::Foreign)) {
    expect(Keyword::Key);
    constraint.columns = parseNameList();
    parseReferences(constraint);
  } else if (is(Keyword::Default)) {
    failOutside("DEFAULT as a constraint of the table");
  } else {
    if (accept(Keyword::Primary)) {
      expect(Keyword::Key);
    } else {
      expect(Keyword::Unique);
      constraint.kind = ConstraintKind::Unique;
    }
    skipClustered();
    constraint.columns = parseIndexColumns();
    refuseStorageOptions();
  }
  table.constraints.push_back(std::move(constraint));
}

/// `REFERENCES table [(columns)]`.
void Parser::parseReferences(ConstraintDefinition& constraint) {
  expect(Keyword::References);
  constraint.kind = ConstraintKind::ForeignKey;
  constraint.referencedTable = parseObjectName(3);
  if (is(Symbol::LeftParenthesis)) {
    constraint.referencedColumns = parseNameList();
  }
  while (is(Keyword::On)) {
    advance();
    if (!accept(Keyword::Delete)) {
      expect(Keyword::Update);
    }
    // NO ACTION is what happens anyway.
    if (!isWord("NO")) {
      failOutside("foreign keys that change rows (CASCADE, SET NULL, SET DEFAULT)");
    }
    advance();
    if (!acceptWord("ACTION")) {
      fail();
    }
  }
  if (is(Keyword::Not) && peek().keyword == Keyword::For) {
    failOutside("NOT FOR REPLICATION");
  }
}

/// The order of storing has no meaning for what a statement yields.
void Parser::skipClustered() {
  if (!accept(Keyword::Clustered)) {
    accept(Keyword::Nonclustered);
  }
}

/// `(column [ASC], …)`; `[ASC | DESC]` where the caller takes the directions.
std::vector<std::string> Parser::parseIndexColumns(std::vector<bool>* descending) {
  expect(Symbol::LeftParenthesis);
  std::vector<std::string> columns;
  do {
    columns.push_back(takeName());
    if (descending == nullptr && is(Keyword::Desc)) {
      failOutside("descending keys");
    }
    const bool down = accept(Keyword::Desc);
    if (!down) {
      accept(Keyword::Asc);
    }
    if (descending != nullptr) {
      descending->push_back(down);
    }
  } while (accept(Symbol::Comma));
  expect(Symbol::RightParenthesis);
  return columns;
}

CreateIndexStatement Parser::parseCreateIndex() {
  CreateIndexStatement index;
  index.unique = accept(Keyword::Unique);
  skipClustered();
  expect(Keyword::Index);
  index.name = takeName();
  expect(Keyword::On);
  index.table = parseObjectName(3);
  index.columns = parseIndexColumns(&index.descending);
  if (isWord("INCLUDE")) {
    failOutside("indexes with INCLUDE");
  }
  if (is(Keyword::Where)) {
    failOutside("filtered indexes (WHERE)");
  }
  refuseStorageOptions();
  return index;
}

DropStatement Parser::parseDrop() {
  DropStatement drop;
  advance();
  switch (current_.keyword) {
    case Keyword::Table:
      drop.kind = "TABLE";
      break;
    case Keyword::Procedure:
      drop.kind = "PROCEDURE";
      break;
    case Keyword::Function:
      drop.kind = "FUNCTION";
      break;
    case Keyword::Index:
      drop.kind = "INDEX";
      break;
    default:
      if (current_.kind == TokenKind::Word || is(Keyword::Other)) {
        failOutside("the statement DROP " + nearText());
      }
      fail();
  }
  advance();
  if (accept(Keyword::If)) {
    expect(Keyword::Exists);
    drop.ifExists = true;
  }
  drop.name = parseObjectName(4);
  if (drop.kind == "INDEX" && accept(Keyword::On)) {
    ObjectName table = parseObjectName(3);
    // `DROP INDEX i ON t` and `DROP INDEX t.i` become the same: the table's name, then the index's.
    table.position = drop.name.position;
    table.parts.push_back(drop.name.parts.back());
    drop.name = std::move(table);
  }
  if (drop.kind == "INDEX" && drop.name.parts.size() < 2) {
    failAt(159, "Must specify the table name and index name for the DROP INDEX statement.",
           previous_);
  }
  if (is(Symbol::Comma)) {
    failOutside("DROP of several objects");
  }
  return drop;
}

}  // namespace azcoll::tsql
