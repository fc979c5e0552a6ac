#include "tsql/parser.h"

#include <charconv>

#include "text/letter_case.h"
#include "text/utf8.h"
#include "tsql/parser_core.h"
#include "tsql/position.h"
#include "tsql/syntax_error.h"

namespace azcoll::tsql {

namespace {

constexpr std::size_t kMaxShown = 128;  // characters of a token that a message repeats

}  // namespace

Parser::Parser(std::string_view text) : lexer_(text) {
  current_ = lexer_.next();
  if (current_.kind == TokenKind::UnclosedQuote || current_.kind == TokenKind::UnclosedComment) {
    fail();
  }
}

// ---------------------------------------------------------------- tokens

void Parser::advance() {
  // A constant passed here becomes part of the tree; takeLiteral() takes it back.
  if (current_.isConstant()) {
    structural_.push_back(current_.ordinal);
  }
  previous_ = current_;
  if (aheadCount_ == 0) {
    current_ = lexer_.next();
  } else {
    current_ = ahead_[0];
    ahead_[0] = ahead_[1];
    --aheadCount_;
  }
  // An open quote is reported only when the parser has accepted everything before it.
  if (current_.kind == TokenKind::UnclosedQuote || current_.kind == TokenKind::UnclosedComment) {
    fail();
  }
}

const Token& Parser::peek(std::size_t ahead) {
  while (aheadCount_ < ahead) {
    ahead_[aheadCount_++] = lexer_.next();
  }
  return ahead_[ahead - 1];
}

bool Parser::isWord(std::string_view upper) const {
  return current_.kind == TokenKind::Word && ascii::equalsIgnoringCase(current_.raw, upper);
}

bool Parser::isName() const {
  return current_.kind == TokenKind::Word || current_.kind == TokenKind::QuotedName;
}

bool Parser::isText() const {
  return current_.kind == TokenKind::Text || current_.kind == TokenKind::NationalText;
}

bool Parser::accept(Symbol symbol) {
  if (!is(symbol)) {
    return false;
  }
  advance();
  return true;
}

bool Parser::accept(Keyword keyword) {
  if (!is(keyword)) {
    return false;
  }
  advance();
  return true;
}

bool Parser::acceptWord(std::string_view upper) {
  if (!isWord(upper)) {
    return false;
  }
  advance();
  return true;
}

void Parser::expect(Symbol symbol) {
  if (!accept(symbol)) {
    fail();
  }
}

void Parser::expect(Keyword keyword) {
  if (!accept(keyword)) {
    fail();
  }
}

// ---------------------------------------------------------------- errors

/// The token that an error names: the current one, or the last one at the end of the text.
const Token& Parser::placeOfError() const {
  return current_.kind == TokenKind::End && previous_.kind != TokenKind::End ? previous_ : current_;
}

std::string Parser::nearText() const {
  return std::string(leftCharacters(placeOfError().value(), kMaxShown));
}

void Parser::failAt(int number, const std::string& message, const Token& token) {
  throw SyntaxError(number, message, token.position,
                    markedFragment(lexer_.text(), token.position.offset, token.raw.size()));
}

void Parser::fail() {
  switch (current_.kind) {
    case TokenKind::UnclosedQuote:
      failAt(105, "Unclosed quotation mark after the character string '" + nearText() + "'.",
             current_);
    case TokenKind::UnclosedComment:
      failAt(113, "Missing end comment mark '*/'.", current_);
    case TokenKind::Reserved:
      failAt(156, "Incorrect syntax near the keyword '" + nearText() + "'.", current_);
    default:
      failAt(102, "Incorrect syntax near '" + nearText() + "'.", placeOfError());
  }
}

void Parser::failTooDeep() {
  failAt(191,
         "Some part of your SQL statement is nested too deeply. Rewrite the query or break it up "
         "into smaller queries.",
         current_);
}

void Parser::failNoCondition() {
  failAt(4145,
         "An expression of non-boolean type specified in a context where a condition is expected, "
         "near '" +
             nearText() + "'.",
         placeOfError());
}

void Parser::failOutside(std::string_view construct) {
  failAt(0, "Outside the supported T-SQL: " + std::string(construct) + ".", placeOfError());
}

void Parser::addLink() {
  if (++height_ > kMaxChain) {
    failTooDeep();
  }
}

// ---------------------------------------------------------------- names, types, constants

std::string Parser::takeName() {
  if (!isName()) {
    fail();
  }
  std::string name = takeAnyName(current_);
  advance();
  return name;
}

/// The name that a token holds, a text in quotes included (an alias may be one).
std::string Parser::takeAnyName(const Token& token) {
  std::string name = token.value();
  if (name.empty()) {
    failAt(1038,
           "An object or column name is missing or empty. For SELECT INTO statements, verify each "
           "column has a name. For other statements, look for empty alias names. Aliases defined "
           "as \"\" or [] are not allowed. Change the alias to a valid name.",
           token);
  }
  // What follows could be lost: many interfaces take a name to end there.
  if (name.find('\0') != std::string::npos) {
    failAt(0, "Outside the supported T-SQL: a name with a zero character.", token);
  }
  // Bytes first: they are at least as many as characters.
  if (name.size() > kMaxShown && leftCharacters(name, kMaxShown).size() < name.size()) {
    failAt(103,
           "The identifier that starts with '" + std::string(leftCharacters(name, kMaxShown)) +
               "' is too long. Maximum length is 128.",
           token);
  }
  return name;
}

ObjectName Parser::parseObjectName(std::size_t maxParts) {
  ObjectName name;
  name.position = current_.position;
  const Token first = current_;
  name.parts.push_back(takeName());
  // `T.*` belongs to the caller.
  while (is(Symbol::Dot) && peek().symbol != Symbol::Star) {
    advance();
    if (is(Symbol::Dot)) {
      failOutside("a name with an empty part");
    }
    name.parts.push_back(takeName());
  }
  if (name.parts.size() > maxParts) {
    failAt(117,
           "The object name '" + nearText() +
               "' contains more than the maximum number of prefixes. The maximum is " +
               std::to_string(maxParts - 1) + ".",
           first);
  }
  return name;
}

/// A table, view or table variable.
ObjectName Parser::parseTableName() {
  if (current_.kind == TokenKind::Variable) {
    ObjectName name{{std::string(current_.raw)}, current_.position};
    advance();
    return name;
  }
  // To all that reads the tree, `@` at the start of a table's name means a table variable.
  if (current_.kind == TokenKind::QuotedName && current_.raw.substr(1, 1) == "@") {
    failOutside("a table whose name begins with @");
  }
  return parseObjectName(4);
}

/// `(name, name …)`.
std::vector<std::string> Parser::parseNameList() {
  expect(Symbol::LeftParenthesis);
  std::vector<std::string> names;
  do {
    names.push_back(takeName());
  } while (accept(Symbol::Comma));
  expect(Symbol::RightParenthesis);
  return names;
}

TypeName Parser::parseType() {
  TypeName type;
  type.position = current_.position;
  type.name = ascii::upper(takeName());
  if (is(Symbol::Dot)) {
    failOutside("a data type with a schema");
  }
  if (is(Keyword::Varying)) {
    failOutside("a data type of several words");
  }
  if (accept(Symbol::LeftParenthesis)) {
    if (acceptWord("MAX")) {
      type.length = -1;
    } else {
      type.length = takeTypeNumber();
      if (accept(Symbol::Comma)) {
        type.scale = takeTypeNumber();
      }
    }
    expect(Symbol::RightParenthesis);
  }
  return type;
}

int Parser::takeTypeNumber() {
  if (current_.kind != TokenKind::Integer) {
    fail();
  }
  int number = 0;
  const auto* const end = current_.raw.data() + current_.raw.size();
  if (std::from_chars(current_.raw.data(), end, number).ec != std::errc()) {
    fail();
  }
  advance();
  return number;
}

ExpressionPtr Parser::takeLiteral() {
  static constexpr auto kindOf = [](TokenKind kind) {
    switch (kind) {
      case TokenKind::Integer:
        return LiteralKind::Integer;
      case TokenKind::Decimal:
        return LiteralKind::Decimal;
      case TokenKind::Float:
        return LiteralKind::Float;
      case TokenKind::Text:
        return LiteralKind::Text;
      case TokenKind::NationalText:
        return LiteralKind::NationalText;
      case TokenKind::Binary:
        return LiteralKind::Binary;
      default:
        return LiteralKind::Null;
    }
  };
  Literal literal;
  literal.kind = kindOf(current_.kind);
  literal.ordinal = current_.ordinal;
  if (literal.kind != LiteralKind::Null) {
    literal.text = current_.value();
  }
  const Position position = current_.position;
  advance();
  if (literal.kind != LiteralKind::Null) {
    structural_.pop_back();  // advance() took it for no Literal
  }
  return makeExpression(position, std::move(literal));
}

ExpressionPtr Parser::takeVariable() {
  const Position position = current_.position;
  return makeExpression(position, Variable{takeVariableName()});
}

std::string Parser::takeVariableName() {
  if (current_.kind != TokenKind::Variable || current_.raw.size() < 2) {
    fail();
  }
  std::string name(current_.raw);
  advance();
  return name;
}

/// A constant with or without sign, NULL, a variable or a marker: what a routine's defaults and
/// arguments may be.
ExpressionPtr Parser::parseConstant() {
  if (current_.isConstant() || is(Keyword::Null)) {
    return takeLiteral();
  }
  if (current_.kind == TokenKind::Variable) {
    return takeVariable();
  }
  if (current_.kind == TokenKind::Marker) {
    auto marker = makeExpression(current_.position, Marker{current_.ordinal});
    advance();
    return marker;
  }
  if (is(Symbol::Minus) || is(Symbol::Plus)) {
    const Position position = current_.position;
    const UnaryOperator op = is(Symbol::Minus) ? UnaryOperator::Minus : UnaryOperator::Plus;
    advance();
    if (current_.kind < TokenKind::Integer || current_.kind > TokenKind::Float) {
      fail();
    }
    return makeExpression(position, Unary{op, takeLiteral()});
  }
  if (isName()) {
    failOutside("a word in place of a constant");
  }
  fail();
}

// ---------------------------------------------------------------- batch

Batch Parser::parseBatch() {
  Batch batch;
  batch.statements = parseStatementsUntil(Keyword::None);
  batch.literalCount = lexer_.literalCount();
  batch.markerCount = lexer_.markerCount();
  batch.structuralLiterals = std::move(structural_);
  return batch;
}

Batch parse(std::string_view text) {
  const std::size_t malformed = findMalformedUtf8(text);
  if (malformed != std::string_view::npos) {
    throw SyntaxError(0, "The text is not valid UTF-8.", positionAt(text, malformed),
                      markedFragment(text, malformed, 1));
  }
  return Parser(text).parseBatch();
}

}  // namespace azcoll::tsql
