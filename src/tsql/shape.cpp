#include "tsql/shape.h"

#include <algorithm>
#include <array>
#include <cstring>

#include "text/letter_case.h"
#include "text/utf8.h"
#include "tsql/characters.h"

namespace azcoll::tsql {

namespace {

/// The bytes that stand for constants in a key. A text that holds one of them itself, outside its
/// quoted texts, is not cached.
enum ClassByte : char {
  kInteger = 1,
  kDecimal = 2,
  kFloat = 3,
  kText = 4,
  kBinary = 5,
  kNull = 6,
  kValue = 7,  ///< alone as a value of a VALUES row, of whatever kind
};

bool isClassByte(char c) { return static_cast<unsigned char>(c) <= kValue; }

ClassByte classOf(LiteralKind kind) {
  switch (kind) {
    case LiteralKind::Integer:
      return kInteger;
    case LiteralKind::Decimal:
      return kDecimal;
    case LiteralKind::Float:
      return kFloat;
    case LiteralKind::Binary:
      return kBinary;
    case LiteralKind::Null:
      return kNull;
    default:
      return kText;
  }
}

/// One pass over a text: what is not a constant is copied to the key span by span.
class ShapeScanner {
 public:
  ShapeScanner(std::string_view text, Shape& shape) : text_(text), shape_(shape) {}

  void run() {
    shape_.literals.clear();
    // Bytes that are not UTF-8 must reach the parser, which refuses them, in a constant too.
    shape_.cacheable = findMalformedUtf8(text_) == std::string_view::npos;
    // A constant takes one byte of the key and at least one of the text.
    shape_.key.resize(text_.size());
    while (at_ < text_.size()) {
      step();
    }
    copyUpTo(at_);
    shape_.key.resize(keySize_);
  }

 private:
  void step() {
    const char c = text_[at_];
    if (hasClass(c, kBlank)) {
      ++at_;
    } else if (hasClass(c, kWordStart)) {
      word();
    } else if (startsNumber(text_, at_)) {
      const NumberSpan number = scanNumber(text_, at_);
      literal(number.kind, text_.substr(at_, number.end - at_), number.end);
    } else {
      mark(c);
    }
  }

  void word() {
    if (ascii::upper(text_[at_]) == 'N' && byteAt(text_, at_ + 1) == '\'') {
      quotedText(LiteralKind::NationalText, at_ + 1);
      return;
    }
    const std::size_t end = wordEnd(text_, at_);
    const std::string_view found = text_.substr(at_, end - at_);
    if (values_.atValue() && ascii::equalsIgnoringCase(found, "NULL")) {
      literal(LiteralKind::Null, {}, end);
      return;
    }
    if (ascii::equalsIgnoringCase(found, "VALUES")) {
      values_.onValuesWord();
    } else {
      values_.onOther();
    }
    at_ = end;
  }

  void mark(char c) {
    switch (c) {
      case '\'':
        quotedText(LiteralKind::Text, at_);
        return;
      case '[':
        quotedName(']');
        return;
      case '"':
        quotedName('"');
        return;
      // A digit in a variable's name is not a number.
      case '@':
      case '$':
        at_ = wordEnd(text_, at_);
        values_.onOther();
        return;
      case '(':
        values_.onOpen();
        break;
      case ')':
        values_.onClose();
        break;
      case ',':
        values_.onComma();
        break;
      case '-':
      case '/':
        if (startsComment(text_, at_)) {
          at_ = scanComment(text_, at_).end;
          shape_.cacheable = false;
          return;
        }
        [[fallthrough]];
      default:
        values_.onOther();
        shape_.cacheable = shape_.cacheable && !isClassByte(c);
        break;
    }
    ++at_;
  }

  void quotedText(LiteralKind kind, std::size_t open) {
    const QuotedSpan span = scanQuoted(text_, open, '\'');
    if (!span.closed) {
      shape_.cacheable = false;
      at_ = span.end;
      return;
    }
    literal(kind, text_.substr(open + 1, span.end - open - 2), span.end, span.doubled);
  }

  void quotedName(char close) {
    const QuotedSpan span = scanQuoted(text_, at_, close);
    const std::string_view name = text_.substr(at_, span.end - at_);
    shape_.cacheable =
        shape_.cacheable && span.closed && std::none_of(name.begin(), name.end(), isClassByte);
    values_.onOther();
    at_ = span.end;
  }

  /// Takes out the constant from the current place to `end`.
  void literal(LiteralKind kind, std::string_view raw, std::size_t end, bool doubled = false) {
    copyUpTo(at_);
    ClassByte byte = classOf(kind);
    if (values_.atValue()) {
      // The constant must be the whole value: `1 + 2` is no single one.
      const char behind = byteAt(text_, classEnd(text_, end, kBlank));
      if (behind == ',' || behind == ')') {
        byte = kValue;
      }
    }
    shape_.key[keySize_++] = byte;
    shape_.literals.push_back({kind, raw, doubled});
    values_.onOther();
    at_ = copied_ = end;
  }

  void copyUpTo(std::size_t end) {
    if (end > copied_) {
      std::memcpy(shape_.key.data() + keySize_, text_.data() + copied_, end - copied_);
      keySize_ += end - copied_;
    }
  }

  std::string_view text_;
  Shape& shape_;
  std::size_t at_ = 0;
  std::size_t copied_ = 0;   // the key holds the text up to here
  std::size_t keySize_ = 0;  // bytes of the key written so far
  ValuesTracker values_;
};

}  // namespace

void scanShape(std::string_view text, Shape& shape) { ShapeScanner(text, shape).run(); }

}  // namespace azcoll::tsql
