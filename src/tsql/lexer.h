#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

#include "tsql/ast.h"
#include "tsql/characters.h"
#include "tsql/keywords.h"

namespace azcoll::tsql {

enum class TokenKind : std::uint8_t {
  End,
  Word,        ///< a bare name
  Reserved,    ///< a reserved word
  QuotedName,  ///< `[name]` or `"name"`
  Variable,
  Marker,
  Integer,
  Decimal,
  Float,
  Text,
  NationalText,
  Binary,
  Symbol,
  UnclosedQuote,
  UnclosedComment,
  Unexpected,  ///< a character that no token starts with
};

enum class Symbol : std::uint8_t {
  None,
  LeftParenthesis,
  RightParenthesis,
  Comma,
  Dot,
  Semicolon,
  Star,
  Plus,
  Minus,
  Slash,
  Percent,
  Equal,
  NotEqual,
  Less,
  Greater,
  LessEqual,
  GreaterEqual,
  Bitwise,             ///< `&`, `|`, `^` or `~`
  CompoundAssignment,  ///< `+=` and the like
};

/// One token. `raw` is its text as written, quotes included.
struct Token {
  TokenKind kind = TokenKind::End;
  Keyword keyword = Keyword::None;
  Symbol symbol = Symbol::None;
  bool doubled = false;  ///< a quoted token that holds its closing mark written twice
  std::string_view raw;
  Position position;
  /// Of a constant and of a word NULL that opens a value of a VALUES row: its number; of a marker:
  /// its number among the markers.
  std::size_t ordinal = kNotLifted;

  [[nodiscard]] bool isConstant() const {
    return kind >= TokenKind::Integer && kind <= TokenKind::Binary;
  }
  /// The value without quotes and prefix, marks written twice undone; otherwise the text.
  [[nodiscard]] std::string value() const;
};

/// Cuts a text into tokens, one at a time. It never fails: what is wrong comes as a token of its
/// own, so that an error before it is reported first. The text must be UTF-8 and outlive the
/// lexer.
class Lexer {
 public:
  explicit Lexer(std::string_view text) : text_(text) {}

  /// The next token; `End` again and again after the last one.
  Token next();

  [[nodiscard]] std::string_view text() const { return text_; }
  /// Numbers given so far.
  [[nodiscard]] std::size_t literalCount() const { return literalCount_; }
  [[nodiscard]] std::size_t markerCount() const { return markerCount_; }

 private:
  bool skipBlanksAndComments();
  Token take(TokenKind kind, std::size_t end, Keyword keyword = Keyword::None);
  Token takeConstant(TokenKind kind, std::size_t end);
  Token takeQuoted(TokenKind kind, std::size_t openAt, char close);
  Token takeNumber();
  Token takeWord();
  Token takeSymbol();
  Token takeComparison();
  Token takeOperator();
  Token takeOne(Symbol symbol, std::size_t length);
  [[nodiscard]] std::size_t lettersEnd(std::size_t end) const;
  void track(const Token& token);

  std::string_view text_;
  std::size_t at_ = 0;
  Position located_;  // the last token's place: lines and columns are counted up to it
  std::size_t literalCount_ = 0;
  std::size_t markerCount_ = 0;
  ValuesTracker values_;
};

}  // namespace azcoll::tsql
