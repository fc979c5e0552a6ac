#include "text/letter_case.h"
#include "tsql/parser_core.h"

namespace azcoll::tsql {

/// Statements up to the word `end` (which is left), or up to the end of the text for `None`.
std::vector<StatementPtr> Parser::parseStatementsUntil(Keyword end) {
  std::vector<StatementPtr> statements;
  while (true) {
    while (accept(Symbol::Semicolon)) {
    }
    if (current_.kind == TokenKind::End || (end != Keyword::None && is(end))) {
      return statements;
    }
    statements.push_back(parseStatement());
  }
}

StatementPtr Parser::parseStatement() {
  const Part part(*this);
  ++batchStatements_;
  return std::make_unique<Statement>(parseStatementNode());
}

/// The statement that another one governs.
StatementPtr Parser::parseNestedStatement() {
  const Nesting nesting(*this);
  return parseStatement();
}

Statement Parser::parseStatementNode() {
  const Position position = current_.position;
  // A query may begin with a parenthesis.
  if (is(Symbol::LeftParenthesis)) {
    return {position, parseSelect()};
  }
  switch (current_.keyword) {
    case Keyword::Select:
      return {position, parseSelect()};
    case Keyword::Insert:
      return {position, parseInsert()};
    case Keyword::Update:
      return {position, parseUpdate()};
    case Keyword::Delete:
      return {position, parseDelete()};
    case Keyword::Create:
      return parseCreate(position);
    case Keyword::Drop:
      return {position, parseDrop()};
    case Keyword::Declare:
      return {position, parseDeclare()};
    case Keyword::Set:
      return parseSet(position);
    case Keyword::If:
      return {position, parseIf()};
    case Keyword::While:
      return {position, parseWhile()};
    case Keyword::Begin:
      return parseBegin(position);
    case Keyword::Commit:
      return {position, parseTransactionEnd(TransactionVerb::Commit)};
    case Keyword::Rollback:
      return {position, parseTransactionEnd(TransactionVerb::Rollback)};
    case Keyword::Return:
      return {position, parseReturn()};
    case Keyword::Break:
      advance();
      return {position, BreakStatement{}};
    case Keyword::Continue:
      advance();
      return {position, ContinueStatement{}};
    case Keyword::Exec:
      advance();
      return {position, parseExecute()};
    default:
      return parseUnreservedStatement();
  }
}

/// What begins with no word of a statement: a call without EXECUTE, which only the first statement
/// of a batch may be, or something outside or wrong.
Statement Parser::parseUnreservedStatement() {
  const Position position = current_.position;
  if (is(Keyword::With)) {
    failOutside("common table expressions (WITH)");
  }
  if (is(Keyword::OtherStatement) || is(Keyword::Merge) || isWord("THROW") || isWord("DISABLE") ||
      isWord("ENABLE")) {
    failOutside("the statement " + nearText());
  }
  if (current_.raw == "{") {
    failOutside("escape sequences in braces");
  }
  if (current_.kind == TokenKind::Word && peek().raw == ":") {
    failOutside("labels");
  }
  if (isName() && batchStatements_ == 1) {
    const Token first = current_;
    ExecuteStatement execute;
    execute.procedure = parseObjectName(4);
    if (isName()) {  // a misspelt statement much rather than a call
      failAt(102, "Incorrect syntax near '" + first.value() + "'.", first);
    }
    parseExecuteArguments(execute);
    return {position, std::move(execute)};
  }
  fail();
}

DeclareStatement Parser::parseDeclare() {
  DeclareStatement declare;
  advance();
  // DECLARE name CURSOR: variables begin with `@`.
  if (isName()) {
    failOutside("cursors");
  }
  do {
    declare.variables.push_back(parseDeclaration());
  } while (accept(Symbol::Comma));
  return declare;
}

VariableDeclaration Parser::parseDeclaration() {
  VariableDeclaration variable;
  variable.position = current_.position;
  variable.name = takeVariableName();
  accept(Keyword::As);
  if (is(Keyword::Cursor)) {
    failOutside("cursors");
  }
  if (accept(Keyword::Table)) {
    variable.table = std::make_unique<CreateTableStatement>();
    variable.table->name = {{variable.name}, variable.position};
    parseTableElements(*variable.table);
    return variable;
  }
  variable.type = parseType();
  if (accept(Symbol::Equal)) {
    variable.initial = parseScalar();
  }
  return variable;
}

Statement Parser::parseSet(Position position) {
  advance();
  if (current_.kind != TokenKind::Variable) {
    return {position, parseSetOption()};
  }
  SetVariableStatement set;
  set.name = takeVariableName();
  if (is(Symbol::CompoundAssignment)) {
    failOutside("compound assignment (+= and the like)");
  }
  if (is(Symbol::Dot)) {
    failOutside("a method of a variable");
  }
  expect(Symbol::Equal);
  if (is(Keyword::Cursor)) {
    failOutside("cursors");
  }
  set.value = parseScalar();
  return {position, std::move(set)};
}

SetOptionStatement Parser::parseSetOption() {
  if (is(Keyword::Other) || is(Keyword::Statistics) || is(Keyword::Transaction)) {
    failOutside("SET " + nearText());
  }
  SetOptionStatement set;
  if (current_.kind != TokenKind::Word) {
    fail();
  }
  set.option = ascii::upper(current_.raw);
  advance();
  if (is(Keyword::On) || is(Keyword::Off)) {
    set.on = is(Keyword::On);
    advance();
    return set;
  }
  if (is(Symbol::Comma)) {
    failOutside("SET of several options");
  }
  if (isName() || current_.isConstant() || current_.kind == TokenKind::Variable ||
      is(Symbol::Minus)) {
    failOutside("SET " + set.option + " with a value");
  }
  fail();
}

IfStatement Parser::parseIf() {
  IfStatement statement;
  advance();
  statement.condition = parseCondition();
  statement.then = parseNestedStatement();
  // A semicolon ends the statement inside, not the IF.
  if (is(Symbol::Semicolon) && peek().keyword == Keyword::Else) {
    advance();
  }
  if (accept(Keyword::Else)) {
    statement.otherwise = parseNestedStatement();
  }
  return statement;
}

WhileStatement Parser::parseWhile() {
  WhileStatement statement;
  advance();
  statement.condition = parseCondition();
  statement.body = parseNestedStatement();
  return statement;
}

Statement Parser::parseBegin(Position position) {
  advance();
  if (accept(Keyword::Transaction)) {
    refuseTransactionName();
    return {position, TransactionStatement{TransactionVerb::Begin}};
  }
  if (isWord("TRY") || isWord("CATCH")) {
    failOutside("BEGIN " + nearText());
  }
  if (isWord("DIALOG") || isWord("CONVERSATION") || isWord("ATOMIC") || is(Keyword::Other)) {
    failOutside("BEGIN " + nearText());
  }
  const Nesting nesting(*this);
  BlockStatement block;
  block.statements = parseStatementsUntil(Keyword::End);
  // T-SQL has no empty block.
  if (block.statements.empty()) {
    fail();
  }
  expect(Keyword::End);
  return {position, std::move(block)};
}

TransactionStatement Parser::parseTransactionEnd(TransactionVerb verb) {
  advance();
  if (accept(Keyword::Transaction)) {
    refuseTransactionName();
  } else {
    acceptWord("WORK");
  }
  return {verb};
}

void Parser::refuseTransactionName() {
  if (isName() || current_.kind == TokenKind::Variable) {
    failOutside("named transactions");
  }
  if (is(Keyword::With)) {
    failOutside("options of a transaction (WITH)");
  }
}

/// Whether the current token can begin a value.
bool Parser::startsValue() const {
  switch (current_.keyword) {
    case Keyword::Null:
    case Keyword::Case:
    case Keyword::Coalesce:
    case Keyword::Nullif:
    case Keyword::Convert:
    case Keyword::Left:
    case Keyword::Right:
    case Keyword::Niladic:
      return true;
    default:
      return current_.isConstant() || isName() || current_.kind == TokenKind::Variable ||
             current_.kind == TokenKind::Marker || is(Symbol::LeftParenthesis) ||
             is(Symbol::Minus) || is(Symbol::Plus);
  }
}

ReturnStatement Parser::parseReturn() {
  ReturnStatement statement;
  advance();
  // RETURN ends without a mark of its own: the next statement may follow at once.
  if (startsValue()) {
    statement.value = parseScalar();
  }
  return statement;
}

ExecuteStatement Parser::parseExecute() {
  ExecuteStatement statement;
  if (current_.kind == TokenKind::Variable) {
    failOutside(peek().symbol == Symbol::Equal ? "the return value of EXECUTE"
                                               : "EXECUTE of a procedure named by a variable");
  }
  if (is(Symbol::LeftParenthesis)) {
    failOutside("EXECUTE of a text");
  }
  if (is(Keyword::As)) {
    failOutside("EXECUTE AS");
  }
  statement.procedure = parseObjectName(4);
  parseExecuteArguments(statement);
  return statement;
}

void Parser::parseExecuteArguments(ExecuteStatement& statement) {
  const bool argumentFollows = current_.isConstant() || isName() || is(Keyword::Null) ||
                               is(Keyword::Default) || is(Symbol::Minus) || is(Symbol::Plus) ||
                               current_.kind == TokenKind::Variable ||
                               current_.kind == TokenKind::Marker;
  if (argumentFollows) {
    do {
      statement.arguments.push_back(parseExecuteArgument());
    } while (accept(Symbol::Comma));
  }
  if (is(Keyword::With)) {
    failOutside("options of EXECUTE (WITH)");
  }
}

ExecuteArgument Parser::parseExecuteArgument() {
  ExecuteArgument argument;
  if (current_.kind == TokenKind::Variable && peek().symbol == Symbol::Equal) {
    argument.name = takeVariableName();
    advance();
  }
  if (is(Keyword::Default)) {
    failOutside("DEFAULT as an argument");
  }
  argument.value = parseConstant();
  argument.output = acceptWord("OUTPUT") || acceptWord("OUT");
  return argument;
}

}  // namespace azcoll::tsql
