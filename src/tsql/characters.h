#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <string_view>

#include "text/letter_case.h"
#include "tsql/ast.h"

/// The character rules of T-SQL, written once for the lexer and the shape scanner: what both call a
/// word, a number, a quoted text or a comment is the same by construction.
namespace azcoll::tsql {

enum CharacterClass : std::uint8_t {
  kBlank = 1,
  kDigit = 2,
  kWordStart = 4,
  kWordPart = 8,
  kHexDigit = 16,
};

constexpr std::array<std::uint8_t, 256> makeCharacterClasses() {
  std::array<std::uint8_t, 256> classes{};
  for (const char blank : {' ', '\t', '\n', '\v', '\f', '\r'}) {
    classes[static_cast<unsigned char>(blank)] = kBlank;
  }
  for (unsigned c = '0'; c <= '9'; ++c) {
    classes[c] = kDigit | kWordPart | kHexDigit;
  }
  for (unsigned c = 'A'; c <= 'Z'; ++c) {
    classes[c] = kWordStart | kWordPart;
    if (c <= 'F') {
      classes[c] |= kHexDigit;
    }
    classes[c + ('a' - 'A')] = classes[c];
  }
  classes['_'] = classes['#'] = kWordStart | kWordPart;
  classes['@'] = classes['$'] = kWordPart;
  // Bytes of letters beyond ASCII; the lexer looks at the whole code point.
  for (unsigned c = 0x80; c <= 0xFF; ++c) {
    classes[c] = kWordStart | kWordPart;
  }
  return classes;
}

inline constexpr std::array<std::uint8_t, 256> kCharacterClasses = makeCharacterClasses();

constexpr bool hasClass(char c, CharacterClass wanted) {
  return (kCharacterClasses[static_cast<unsigned char>(c)] & wanted) != 0;
}

/// The byte at `at`, or NUL after the end.
constexpr char byteAt(std::string_view text, std::size_t at) {
  return at < text.size() ? text[at] : '\0';
}

constexpr bool isLineBreak(char c) { return c == '\n' || c == '\r'; }

/// Offset of the first byte from `at` on that is not part of a word.
constexpr std::size_t wordEnd(std::string_view text, std::size_t at) {
  while (at < text.size() && hasClass(text[at], kWordPart)) {
    ++at;
  }
  return at;
}

constexpr std::size_t classEnd(std::string_view text, std::size_t at, CharacterClass wanted) {
  while (at < text.size() && hasClass(text[at], wanted)) {
    ++at;
  }
  return at;
}

/// Whether a number starts at `at`: a digit, or a point before one.
constexpr bool startsNumber(std::string_view text, std::size_t at) {
  return hasClass(byteAt(text, at), kDigit) ||
         (byteAt(text, at) == '.' && hasClass(byteAt(text, at + 1), kDigit));
}

struct NumberSpan {
  std::size_t end = 0;
  LiteralKind kind = LiteralKind::Integer;
};

/// The number that starts at `at`. It ends at the first character that cannot be part of it,
/// whatever follows (`0AND` is 0 and AND); an E after the digits always belongs to it, as the
/// exponent, even when no digits follow (`1E` is a float).
constexpr NumberSpan scanNumber(std::string_view text, std::size_t at) {
  if (text[at] == '0' && ascii::upper(byteAt(text, at + 1)) == 'X') {
    return {classEnd(text, at + 2, kHexDigit), LiteralKind::Binary};
  }
  NumberSpan number{classEnd(text, at, kDigit), LiteralKind::Integer};
  if (byteAt(text, number.end) == '.') {
    number = {classEnd(text, number.end + 1, kDigit), LiteralKind::Decimal};
  }
  if (ascii::upper(byteAt(text, number.end)) == 'E') {
    std::size_t end = number.end + 1;
    if (byteAt(text, end) == '+' || byteAt(text, end) == '-') {
      ++end;
    }
    number = {classEnd(text, end, kDigit), LiteralKind::Float};
  }
  return number;
}

/// A text or name in quotes. Without the closing mark, `end` is the end of the text.
struct QuotedSpan {
  std::size_t end = 0;
  bool closed = false;
  bool doubled = false;  ///< the closing mark occurs inside, written twice
};

/// The quoted text whose opening mark is at `at`; `close` is the mark that ends it.
inline QuotedSpan scanQuoted(std::string_view text, std::size_t at, char close) {
  QuotedSpan span;
  std::size_t from = at + 1;
  while (true) {
    const std::size_t found = text.find(close, from);
    if (found == std::string_view::npos) {
      span.end = text.size();
      return span;
    }
    if (byteAt(text, found + 1) != close) {
      span.end = found + 1;
      span.closed = true;
      return span;
    }
    span.doubled = true;
    from = found + 2;
  }
}

/// Whether a comment (`--` or `/*`) starts at `at`.
constexpr bool startsComment(std::string_view text, std::size_t at) {
  const char first = byteAt(text, at);
  const char second = byteAt(text, at + 1);
  return (first == '-' && second == '-') || (first == '/' && second == '*');
}

/// A comment. Without its end mark, `end` is the end of the text.
struct CommentSpan {
  std::size_t end = 0;
  bool closed = true;
};

/// The comment that starts at `at`. A `--` comment ends before the line break; comments in
/// `/* */` nest.
inline CommentSpan scanComment(std::string_view text, std::size_t at) {
  if (text[at] == '-') {
    const std::size_t end = text.find_first_of("\r\n", at);
    return {end == std::string_view::npos ? text.size() : end, true};
  }
  std::size_t open = 1;
  at += 2;
  while (at < text.size()) {
    if (text[at] == '*' && byteAt(text, at + 1) == '/') {
      at += 2;
      if (--open == 0) {
        return {at, true};
      }
    } else if (text[at] == '/' && byteAt(text, at + 1) == '*') {
      at += 2;
      ++open;
    } else {
      ++at;
    }
  }
  return {text.size(), false};
}

/// Follows the tokens of a text and finds where a value of a VALUES row begins. The lexer and the
/// shape scanner feed it alike, so that both give the word NULL an ordinal in the same places.
class ValuesTracker {
 public:
  /// Whether the next token opens a value: it stands right after the opening parenthesis of a row
  /// or after a comma of the row itself.
  [[nodiscard]] bool atValue() const { return atValue_; }

  void onValuesWord() {
    onOther();
    expectsRow_ = depth_ == 0;
  }
  void onOpen() {
    atValue_ = depth_ == 0 && expectsRow_;
    if (depth_ > 0 || expectsRow_) {
      ++depth_;
    }
    expectsRow_ = endedRow_ = false;
  }
  void onClose() {
    atValue_ = expectsRow_ = false;
    endedRow_ = depth_ == 1;
    if (depth_ > 0) {
      --depth_;
    }
  }
  void onComma() {
    atValue_ = depth_ == 1;
    expectsRow_ = endedRow_;
    endedRow_ = false;
  }
  void onOther() { atValue_ = expectsRow_ = endedRow_ = false; }

 private:
  std::size_t depth_ = 0;
  bool expectsRow_ = false;
  bool endedRow_ = false;
  bool atValue_ = false;
};

}  // namespace azcoll::tsql
