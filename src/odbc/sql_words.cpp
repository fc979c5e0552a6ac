#include "odbc/sql_words.h"

#include <utility>

#include "text/letter_case.h"
#include "text/utf8.h"
#include "tsql/lexer.h"

namespace azcoll::odbc {
namespace {

using tsql::TokenKind;

SqlWord::Kind kindOf(const tsql::Token& token) {
  switch (token.kind) {
    case TokenKind::Word:
    case TokenKind::Reserved:
    case TokenKind::Variable:
      return SqlWord::Kind::Name;
    case TokenKind::QuotedName:
      return SqlWord::Kind::QuotedName;
    case TokenKind::UnclosedQuote:
      return SqlWord::Kind::Literal;
    default:
      return token.isConstant() ? SqlWord::Kind::Literal : SqlWord::Kind::Sign;
  }
}

}  // namespace

bool SqlWord::is(std::string_view keyword) const {
  return kind == Kind::Name && ascii::equalsIgnoringCase(text, keyword);
}

std::vector<SqlWord> wordsOf(std::string_view text) {
  std::vector<SqlWord> words;
  if (findMalformedUtf8(text) != std::string_view::npos) {
    return words;  // no driver gets it
  }
  int depth = 0;
  tsql::Lexer lexer{text};
  for (tsql::Token token = lexer.next(); token.kind != TokenKind::End; token = lexer.next()) {
    if (token.kind == TokenKind::UnclosedComment) {
      continue;
    }
    depth -= token.symbol == tsql::Symbol::RightParenthesis ? 1 : 0;
    words.push_back({kindOf(token), token.value(), depth});
    depth += token.symbol == tsql::Symbol::LeftParenthesis ? 1 : 0;
  }
  return words;
}

}  // namespace azcoll::odbc
