#include "text/letter_case.h"

#include <algorithm>
#include <cstddef>

namespace azcoll {
namespace {

constexpr bool isWithin(std::uint32_t value, std::uint32_t low, std::uint32_t high) {
  return value >= low && value <= high;
}

constexpr std::uint32_t foldLatin(std::uint32_t c) {
  if (isWithin(c, 0xC0, 0xDE) && c != 0xD7) {
    return c + 0x20;
  }
  if (c == 0x178) {
    return 0xFF;
  }
  const bool evenUpper = isWithin(c, 0x100, 0x137) || isWithin(c, 0x14A, 0x177);
  const bool oddUpper = isWithin(c, 0x139, 0x148) || isWithin(c, 0x179, 0x17E);
  if (c == 0x130 || c == 0x131 || c == 0x138) {
    return c;  // Turkish dotted and dotless i, kra: no other case
  }
  return (evenUpper && c % 2 == 0) || (oddUpper && c % 2 == 1) ? c + 1 : c;
}

constexpr std::uint32_t foldBeyondLatin(std::uint32_t c) {
  if ((isWithin(c, 0x391, 0x3A9) && c != 0x3A2) || isWithin(c, 0x410, 0x42F)) {
    return c + 0x20;
  }
  return isWithin(c, 0x400, 0x40F) ? c + 0x50 : c;
}

/// Behind every code point: what stands for a malformed byte, so that it is like no character.
constexpr std::uint32_t kMalformed = 0x110000;

/// Reads a text folded, code point by code point.
class FoldedReader {
 public:
  explicit FoldedReader(std::string_view text) : text_{text} {}

  [[nodiscard]] bool done() const { return at_ == text_.size(); }

  CodePoint next() {
    const auto first = static_cast<unsigned char>(text_[at_]);
    CodePoint point{kMalformed + first, 1};
    if (first < 0x80) {
      point.value = static_cast<unsigned char>(ascii::lower(text_[at_]));
    } else if (const CodePoint decoded = decodeUtf8(text_, at_); decoded.length > 0) {
      point = {foldCase(decoded.value), decoded.length};
    }
    at_ += point.length;
    return point;
  }

 private:
  std::string_view text_;
  std::size_t at_ = 0;
};

}  // namespace

std::string ascii::upper(std::string_view text) {
  std::string capitals{text};
  for (char& letter : capitals) {
    letter = upper(letter);
  }
  return capitals;
}

std::uint32_t foldCase(std::uint32_t codePoint) {
  if (codePoint < 0x80) {
    return isWithin(codePoint, 'A', 'Z') ? codePoint + ('a' - 'A') : codePoint;
  }
  return codePoint < 0x180 ? foldLatin(codePoint) : foldBeyondLatin(codePoint);
}

std::string foldCase(std::string_view text) {
  std::string folded{text};
  for (std::size_t at = 0; at < text.size();) {
    if (static_cast<unsigned char>(text[at]) < 0x80) {
      folded[at] = ascii::lower(text[at]);
      ++at;
      continue;
    }
    const CodePoint point = decodeUtf8(text, at);
    if (point.length > 0) {
      writeUtf8(folded.data() + at, foldCase(point.value));
    }
    at += std::max<std::size_t>(point.length, 1);
  }
  return folded;
}

std::strong_ordering compareIgnoringCase(std::string_view left, std::string_view right) {
  FoldedReader leftReader{left};
  FoldedReader rightReader{right};
  while (!leftReader.done() && !rightReader.done()) {
    const std::strong_ordering order = leftReader.next().value <=> rightReader.next().value;
    if (order != std::strong_ordering::equal) {
      return order;
    }
  }
  return rightReader.done() <=> leftReader.done();
}

bool equalsIgnoringCase(std::string_view left, std::string_view right) {
  return left.size() == right.size() &&
         (left == right || compareIgnoringCase(left, right) == std::strong_ordering::equal);
}

}  // namespace azcoll
