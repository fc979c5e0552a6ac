#include "tsql/lexer.h"

#include <algorithm>

#include "text/letter_case.h"
#include "text/utf8.h"
#include "tsql/letters.h"
#include "tsql/position.h"

namespace azcoll::tsql {

std::string Token::value() const {
  std::string_view inner = raw;
  switch (kind) {
    case TokenKind::NationalText:
      inner.remove_prefix(1);
      [[fallthrough]];
    case TokenKind::Text:
    case TokenKind::QuotedName:
      inner = inner.substr(1, inner.size() - 2);
      break;
    case TokenKind::UnclosedQuote:
      // N' or the mark alone; there is none at the end.
      inner.remove_prefix(hasClass(inner.front(), kWordStart) ? 2 : 1);
      return std::string(inner);
    default:
      return std::string(inner);
  }
  if (!doubled) {
    return std::string(inner);
  }
  const char mark = raw.back();
  std::string plain;
  plain.reserve(inner.size());
  for (std::size_t i = 0; i < inner.size(); ++i) {
    plain += inner[i];
    if (inner[i] == mark) {
      ++i;  // the mark stands there twice
    }
  }
  return plain;
}

Token Lexer::next() {
  if (!skipBlanksAndComments()) {
    return take(TokenKind::UnclosedComment, text_.size());
  }
  if (at_ == text_.size()) {
    return take(TokenKind::End, at_);
  }
  const char c = text_[at_];
  // In front of symbols: a number may begin with its point.
  if (startsNumber(text_, at_)) {
    return takeNumber();
  }
  if (hasClass(c, kWordStart)) {
    if (ascii::upper(c) == 'N' && byteAt(text_, at_ + 1) == '\'') {
      return takeQuoted(TokenKind::NationalText, at_ + 1, '\'');
    }
    return takeWord();
  }
  switch (c) {
    case '\'':
      return takeQuoted(TokenKind::Text, at_, '\'');
    case '"':
      return takeQuoted(TokenKind::QuotedName, at_, '"');
    case '[':
      return takeQuoted(TokenKind::QuotedName, at_, ']');
    case '@':
      return take(TokenKind::Variable, lettersEnd(wordEnd(text_, at_)));
    case '?': {
      Token marker = take(TokenKind::Marker, at_ + 1);
      marker.ordinal = markerCount_++;
      return marker;
    }
    default:
      return takeSymbol();
  }
}

/// Whether all comments on the way are closed; an open one is left in place.
bool Lexer::skipBlanksAndComments() {
  while (at_ < text_.size()) {
    if (hasClass(text_[at_], kBlank)) {
      ++at_;
    } else if (startsComment(text_, at_)) {
      const CommentSpan comment = scanComment(text_, at_);
      if (!comment.closed) {
        return false;
      }
      at_ = comment.end;
    } else {
      break;
    }
  }
  return true;
}

Token Lexer::take(TokenKind kind, std::size_t end, Keyword keyword) {
  Token token;
  token.kind = kind;
  token.keyword = keyword;
  token.raw = text_.substr(at_, end - at_);
  // From the last place on, so that a text is read once for all its positions.
  token.position = located_ = positionAt(text_, at_, located_);
  at_ = end;
  track(token);
  return token;
}

Token Lexer::takeConstant(TokenKind kind, std::size_t end) {
  Token token = take(kind, end);
  token.ordinal = literalCount_++;
  return token;
}

Token Lexer::takeQuoted(TokenKind kind, std::size_t openAt, char close) {
  const QuotedSpan span = scanQuoted(text_, openAt, close);
  if (!span.closed) {
    // A token, not an error: what is wrong before the quote is reported first.
    return take(TokenKind::UnclosedQuote, span.end);
  }
  Token token = kind == TokenKind::QuotedName ? take(kind, span.end) : takeConstant(kind, span.end);
  token.doubled = span.doubled;
  return token;
}

Token Lexer::takeNumber() {
  const NumberSpan number = scanNumber(text_, at_);
  switch (number.kind) {
    case LiteralKind::Integer:
      return takeConstant(TokenKind::Integer, number.end);
    case LiteralKind::Decimal:
      return takeConstant(TokenKind::Decimal, number.end);
    case LiteralKind::Float:
      return takeConstant(TokenKind::Float, number.end);
    default:
      return takeConstant(TokenKind::Binary, number.end);
  }
}

Token Lexer::takeWord() {
  const std::size_t end = lettersEnd(wordEnd(text_, at_));
  if (end == at_) {  // a character beyond ASCII that is not a letter
    // A byte that is not UTF-8 has no length: the lexer moves on all the same.
    return take(TokenKind::Unexpected,
                at_ + std::max<std::size_t>(decodeUtf8(text_, at_).length, 1));
  }
  const Keyword keyword = findKeyword(text_.substr(at_, end - at_));
  if (keyword == Keyword::None) {
    return take(TokenKind::Word, end);
  }
  const bool isValue = keyword == Keyword::Null && values_.atValue();
  Token token = take(TokenKind::Reserved, end, keyword);
  // As in the shape, where this NULL stands for any value.
  if (isValue) {
    token.ordinal = literalCount_++;
  }
  return token;
}

/// `end`, or the first character before it that is beyond ASCII and not a letter.
std::size_t Lexer::lettersEnd(std::size_t end) const {
  for (std::size_t i = at_; i < end;) {
    if (static_cast<unsigned char>(text_[i]) < 0x80) {
      ++i;
      continue;
    }
    const CodePoint point = decodeUtf8(text_, i);
    if (!isLetterBeyondAscii(point.value)) {
      return i;
    }
    i += point.length;
  }
  return end;
}

Token Lexer::takeOne(Symbol symbol, std::size_t length) {
  Token token = take(TokenKind::Symbol, at_ + length);
  token.symbol = symbol;
  switch (symbol) {
    case Symbol::LeftParenthesis:
      values_.onOpen();
      break;
    case Symbol::RightParenthesis:
      values_.onClose();
      break;
    case Symbol::Comma:
      values_.onComma();
      break;
    default:
      values_.onOther();
      break;
  }
  return token;
}

Token Lexer::takeSymbol() {
  switch (text_[at_]) {
    case '(':
      return takeOne(Symbol::LeftParenthesis, 1);
    case ')':
      return takeOne(Symbol::RightParenthesis, 1);
    case ',':
      return takeOne(Symbol::Comma, 1);
    case '.':
      return takeOne(Symbol::Dot, 1);
    case ';':
      return takeOne(Symbol::Semicolon, 1);
    case '=':
    case '<':
    case '>':
    case '!':
      return takeComparison();
    case '$':
      // It opens a constant of money or a special column: the whole word is reported.
      return take(TokenKind::Unexpected, wordEnd(text_, at_));
    default:
      return takeOperator();
  }
}

Token Lexer::takeComparison() {
  const char second = byteAt(text_, at_ + 1);
  switch (text_[at_]) {
    case '=':
      return takeOne(Symbol::Equal, 1);
    case '<':
      if (second == '>') {
        return takeOne(Symbol::NotEqual, 2);
      }
      return second == '=' ? takeOne(Symbol::LessEqual, 2) : takeOne(Symbol::Less, 1);
    case '>':
      return second == '=' ? takeOne(Symbol::GreaterEqual, 2) : takeOne(Symbol::Greater, 1);
    default:
      break;
  }
  // T-SQL's own spellings: `!=`, and `!<` for not less.
  switch (second) {
    case '=':
      return takeOne(Symbol::NotEqual, 2);
    case '<':
      return takeOne(Symbol::GreaterEqual, 2);
    case '>':
      return takeOne(Symbol::LessEqual, 2);
    default:
      return take(TokenKind::Unexpected, at_ + 1);
  }
}

Token Lexer::takeOperator() {
  if (std::string_view("+-*/%&|^~").find(text_[at_]) == std::string_view::npos) {
    return take(TokenKind::Unexpected, at_ + 1);
  }
  // `+=` and the like; the parser refuses them by that name.
  if (byteAt(text_, at_ + 1) == '=') {
    return takeOne(Symbol::CompoundAssignment, 2);
  }
  switch (text_[at_]) {
    case '+':
      return takeOne(Symbol::Plus, 1);
    case '-':
      return takeOne(Symbol::Minus, 1);
    case '*':
      return takeOne(Symbol::Star, 1);
    case '/':
      return takeOne(Symbol::Slash, 1);
    case '%':
      return takeOne(Symbol::Percent, 1);
    default:
      return takeOne(Symbol::Bitwise, 1);
  }
}

void Lexer::track(const Token& token) {
  if (token.keyword == Keyword::Values) {
    values_.onValuesWord();
  } else if (token.kind != TokenKind::Symbol) {
    values_.onOther();
  }
}

}  // namespace azcoll::tsql
