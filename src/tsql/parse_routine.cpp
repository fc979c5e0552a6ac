#include "tsql/parser_core.h"

namespace azcoll::tsql {

/// The text from `start` to the end of the batch, without the blanks there.
std::string Parser::sourceFrom(Position start) const {
  std::string_view source = lexer_.text().substr(start.offset);
  while (!source.empty() && hasClass(source.back(), kBlank)) {
    source.remove_suffix(1);
  }
  return std::string(source);
}

CreateProcedureStatement Parser::parseCreateProcedure(Position start) {
  // This statement is counted already.
  if (batchStatements_ != 1) {
    failAt(111, "'CREATE/ALTER PROCEDURE' must be the first statement in a query batch.", current_);
  }
  CreateProcedureStatement procedure;
  advance();
  procedure.name = parseObjectName(2);
  if (is(Symbol::Semicolon)) {
    failOutside("numbered procedures");
  }
  // The parameters of a procedure may stand in parentheses or without.
  const bool enclosed = accept(Symbol::LeftParenthesis);
  if (enclosed || current_.kind == TokenKind::Variable) {
    procedure.parameters = parseParameters();
  }
  if (enclosed) {
    expect(Symbol::RightParenthesis);
  }
  if (is(Keyword::With) || is(Keyword::For)) {
    failOutside("options of a procedure (WITH, FOR)");
  }
  expect(Keyword::As);
  // A procedure's body reaches to the end of the batch, with or without BEGIN and END.
  procedure.body = parseStatementsUntil(Keyword::None);
  if (procedure.body.empty()) {
    fail();
  }
  procedure.source = sourceFrom(start);
  return procedure;
}

std::vector<ParameterDefinition> Parser::parseParameters() {
  std::vector<ParameterDefinition> parameters;
  do {
    parameters.push_back(parseParameter());
  } while (accept(Symbol::Comma));
  return parameters;
}

ParameterDefinition Parser::parseParameter() {
  ParameterDefinition parameter;
  parameter.name = takeVariableName();
  accept(Keyword::As);
  if (is(Keyword::Cursor)) {
    failOutside("cursors");
  }
  parameter.type = parseType();
  if (accept(Symbol::Equal)) {
    parameter.defaultValue = parseConstant();
  }
  parameter.output = acceptWord("OUTPUT") || acceptWord("OUT");
  if (isWord("READONLY")) {
    failOutside("table-valued parameters");
  }
  return parameter;
}

CreateFunctionStatement Parser::parseCreateFunction(Position start) {
  if (batchStatements_ != 1) {
    failAt(111, "'CREATE FUNCTION' must be the first statement in a query batch.", current_);
  }
  CreateFunctionStatement function;
  advance();
  function.name = parseObjectName(2);
  expect(Symbol::LeftParenthesis);
  if (!is(Symbol::RightParenthesis)) {
    function.parameters = parseParameters();
  }
  expect(Symbol::RightParenthesis);
  if (!acceptWord("RETURNS")) {
    fail();
  }
  if (!accept(Keyword::Table)) {
    failOutside("functions other than a single query (RETURNS TABLE AS RETURN)");
  }
  if (is(Keyword::With)) {
    failOutside("options of a function (WITH)");
  }
  accept(Keyword::As);
  if (is(Keyword::Begin)) {
    failOutside("functions other than a single query (RETURNS TABLE AS RETURN)");
  }
  expect(Keyword::Return);
  if (is(Symbol::LeftParenthesis)) {
    const Nesting nesting(*this);
    advance();
    function.body = parseSubquery();
    expect(Symbol::RightParenthesis);
  } else {
    function.body = parseSubquery();
  }
  accept(Symbol::Semicolon);
  if (current_.kind != TokenKind::End) {
    fail();
  }
  function.source = sourceFrom(start);
  return function;
}

}  // namespace azcoll::tsql
