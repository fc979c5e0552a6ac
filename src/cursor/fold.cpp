#include "cursor/fold.h"

#include <algorithm>
#include <cstddef>

namespace azcoll::cursor {
namespace {

constexpr bool within(unsigned char byte, unsigned char lowest, unsigned char highest) {
  return byte >= lowest && byte <= highest;
}

/// Small form of the second byte of a two-byte character. In the ranges below a capital and its
/// small letter share the first byte.
constexpr unsigned char foldSecond(unsigned char first, unsigned char byte) {
  const bool even = byte % 2 == 0;
  switch (first) {
    case 0xC3:  // U+00C0…U+00FF: all but the multiplication sign
      return static_cast<unsigned char>(within(byte, 0x80, 0x9E) && byte != 0x97 ? byte + 0x20
                                                                                 : byte);
    case 0xC4:  // U+0100…U+013F: pairs begin even, from U+0139 on odd; the two Turkish i are none
      return static_cast<unsigned char>((even && within(byte, 0x80, 0xB6) && byte != 0xB0) ||
                                                (!even && within(byte, 0xB9, 0xBD))
                                            ? byte + 1
                                            : byte);
    case 0xC5:  // U+0140…U+017F: odd, even from U+014A, odd again from U+0179
      return static_cast<unsigned char>((!even && within(byte, 0x81, 0x87)) ||
                                                (even && within(byte, 0x8A, 0xB6)) ||
                                                (!even && within(byte, 0xB9, 0xBD))
                                            ? byte + 1
                                            : byte);
    default:
      return byte;
  }
}

constexpr unsigned char foldByte(unsigned char before, unsigned char byte) {
  if (byte < 0x80) {
    return static_cast<unsigned char>(within(byte, 'A', 'Z') ? byte + ('a' - 'A') : byte);
  }
  return foldSecond(before, byte);
}

/// Reads the folded bytes of a text one after the other.
class FoldedReader {
 public:
  explicit FoldedReader(std::string_view text) : text_{text} {}

  [[nodiscard]] bool done() const { return index_ == text_.size(); }

  unsigned char next() {
    const auto byte = static_cast<unsigned char>(text_[index_++]);
    const unsigned char result = foldByte(before_, byte);
    before_ = byte;
    return result;
  }

 private:
  std::string_view text_;
  std::size_t index_ = 0;
  unsigned char before_ = 0;
};

}  // namespace

std::string folded(std::string_view text) {
  std::string result;
  result.reserve(text.size());
  for (FoldedReader reader{text}; !reader.done();) {
    result += static_cast<char>(reader.next());
  }
  return result;
}

std::strong_ordering compareFolded(std::string_view left, std::string_view right) {
  FoldedReader leftReader{left};
  FoldedReader rightReader{right};
  while (!leftReader.done() && !rightReader.done()) {
    const std::strong_ordering order = leftReader.next() <=> rightReader.next();
    if (order != std::strong_ordering::equal) {
      return order;
    }
  }
  return left.size() <=> right.size();
}

bool sameName(std::string_view left, std::string_view right) {
  return left.size() == right.size() &&
         (left == right || compareFolded(left, right) == std::strong_ordering::equal);
}

}  // namespace azcoll::cursor
