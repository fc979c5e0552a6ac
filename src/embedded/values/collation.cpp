#include "embedded/values/collation.h"

#include <algorithm>
#include <array>
#include <string_view>

#include "text/letter_case.h"
#include "text/utf8.h"

namespace azcoll::embedded {

namespace {

constexpr bool isWithin(std::uint32_t value, std::uint32_t low, std::uint32_t high) {
  return value >= low && value <= high;
}

// Plain letters of U+00C0…U+00FF and U+0100…U+017F; a blank where a letter has no plain one.
constexpr std::string_view kPlainLatin1 =
    "aaaaaa ceeeeiiii nooooo ouuuuy  aaaaaa ceeeeiiii nooooo ouuuuy y";
constexpr std::string_view kPlainExtendedA =
    "aaaaaaccccccccddddeeeeeeeeeegggggggghhhhiiiiiiiiii  jjkk llllllllllnnnnnn   oooooo  rrrrrrss"
    "ssssssttttttuuuuuuuuuuuuwwyyyzzzzzzs";

/// The plain letter under an accented one; the code point itself when it has none.
constexpr std::uint32_t plainLetter(std::uint32_t folded) {
  std::uint32_t plain = ' ';
  if (isWithin(folded, 0xC0, 0xFF)) {
    plain = static_cast<unsigned char>(kPlainLatin1[folded - 0xC0]);
  } else if (isWithin(folded, 0x100, 0x17F)) {
    const std::size_t at = folded - 0x100;
    plain = at < kPlainExtendedA.size() ? static_cast<unsigned char>(kPlainExtendedA[at]) : ' ';
  }
  return plain == ' ' ? folded : plain;
}

/// Place of a code point without case and accents: control characters, blanks, punctuation,
/// digits, letters, everything beyond.
constexpr std::uint32_t primaryWeight(std::uint32_t folded) {
  constexpr std::uint32_t kDigits = 0x200;
  constexpr std::uint32_t kLetters = 0x300;
  constexpr std::uint32_t kBeyond = 0x1000;
  const std::uint32_t plain = plainLetter(folded);
  if (isWithin(plain, '0', '9')) {
    return kDigits + plain;
  }
  if (isWithin(plain, 'a', 'z')) {
    // Two apart: a letter of its own finds a place after the one it looks like.
    return kLetters + plain * 2;
  }
  switch (plain) {  // letters of their own, after the letter that they look like
    case 0xDF:      // sharp s
      return kLetters + 's' * 2 + 1;
    case 0xE6:  // ae
      return kLetters + 'a' * 2 + 1;
    case 0xF0:  // eth
      return kLetters + 'd' * 2 + 1;
    case 0xFE:  // thorn
      return kLetters + 't' * 2 + 1;
    case 0x153:  // oe
      return kLetters + 'o' * 2 + 1;
    default:
      return plain < 0x100 ? plain : kBeyond + plain;
  }
}

constexpr std::array<std::uint16_t, 128> makeAsciiWeights() {
  std::array<std::uint16_t, 128> weights{};
  for (std::uint32_t c = 0; c < 128; ++c) {
    weights[c] =
        static_cast<std::uint16_t>(primaryWeight(isWithin(c, 'A', 'Z') ? c + ('a' - 'A') : c));
  }
  return weights;
}

constexpr std::array<std::uint16_t, 128> kAsciiWeights = makeAsciiWeights();
constexpr std::uint32_t kBlankWeight = kAsciiWeights[' '];

bool isAscii(char c) { return static_cast<unsigned char>(c) < 0x80; }

/// Walks a text character by character; after its end come blanks.
class WeightReader {
 public:
  explicit WeightReader(std::string_view text) : text_(text) {}

  [[nodiscard]] bool atEnd() const { return at_ >= text_.size(); }

  std::uint32_t next() {
    if (atEnd()) {
      return ' ';
    }
    const DecodedCharacter character = characterAt(text_, at_);
    at_ += character.length;
    return foldCase(character.codePoint);
  }

 private:
  std::string_view text_;
  std::size_t at_ = 0;
};

/// Letters first; the first difference of accents decides between texts of the same letters.
int compareAccented(std::string_view left, std::string_view right) {
  WeightReader a(left);
  WeightReader b(right);
  int accents = 0;
  while (!a.atEnd() || !b.atEnd()) {
    const std::uint32_t x = a.next();
    const std::uint32_t y = b.next();
    if (x == y) {
      continue;
    }
    const std::uint32_t wx = primaryWeight(x);
    const std::uint32_t wy = primaryWeight(y);
    if (wx != wy) {
      return wx < wy ? -1 : 1;
    }
    if (accents == 0) {
      accents = x < y ? -1 : 1;
    }
  }
  return accents;
}

}  // namespace

int compareText(std::string_view left, std::string_view right) {
  const std::size_t shorter = std::min(left.size(), right.size());
  std::size_t at = 0;
  for (; at < shorter; ++at) {
    const char x = left[at];
    const char y = right[at];
    if (!isAscii(x) || !isAscii(y)) {
      // What lies in front is equal, whatever follows.
      return compareAccented(left.substr(at), right.substr(at));
    }
    const auto wx = kAsciiWeights[static_cast<unsigned char>(x)];
    const auto wy = kAsciiWeights[static_cast<unsigned char>(y)];
    if (wx != wy) {
      return wx < wy ? -1 : 1;
    }
  }
  // The rest of the longer text meets blanks.
  const bool leftIsLonger = left.size() > right.size();
  for (const char c : (leftIsLonger ? left : right).substr(at)) {
    if (!isAscii(c)) {
      return compareAccented(left.substr(at), right.substr(at));
    }
    const std::uint32_t weight = kAsciiWeights[static_cast<unsigned char>(c)];
    if (weight != kBlankWeight) {
      return (weight < kBlankWeight) == leftIsLonger ? -1 : 1;
    }
  }
  return 0;
}

DecodedCharacter characterAt(std::string_view text, std::size_t at) {
  const auto byte = static_cast<unsigned char>(text[at]);
  if (byte < 0x80) {
    return {byte, 1};
  }
  const CodePoint decoded = decodeUtf8(text, at);
  return decoded.length == 0 ? DecodedCharacter{byte, 1}
                             : DecodedCharacter{decoded.value, decoded.length};
}

std::string upperText(std::string_view text) {
  std::string result;
  result.reserve(text.size());
  for (std::size_t at = 0; at < text.size();) {
    const DecodedCharacter character = characterAt(text, at);
    const std::uint32_t c = character.codePoint;
    std::uint32_t upper = c;
    // An upper-case letter lies at one of these distances below the lower-case one.
    constexpr std::array<std::uint32_t, 3> kDistances{0x20, 1, 0x50};
    for (const std::uint32_t distance : kDistances) {
      if (c >= distance && c - distance != c && foldCase(c - distance) == c && foldCase(c) == c) {
        upper = c - distance;
        break;
      }
    }
    // The capital of y with diaeresis lies in another block.
    appendUtf8(result, c == 0xFF ? 0x178 : upper);
    at += character.length;
  }
  return result;
}

std::size_t utf16Length(std::string_view text) {
  std::size_t units = 0;
  for (const char c : text) {
    units += isContinuation(c) ? 0U : 1U;
    units += static_cast<unsigned char>(c) >= 0xF0U ? 1U : 0U;  // a pair beyond the basic plane
  }
  return units;
}

}  // namespace azcoll::embedded
