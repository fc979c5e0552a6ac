#include "tsql/utf8.h"

#include <array>
#include <cstring>

namespace azcoll::tsql {

namespace {

std::size_t sequenceLength(unsigned char lead) {
  if (lead < 0x80) {
    return 1;
  }
  if (lead >= 0xC2 && lead <= 0xDF) {
    return 2;
  }
  if (lead >= 0xE0 && lead <= 0xEF) {
    return 3;
  }
  return lead >= 0xF0 && lead <= 0xF4 ? 4 : 0;
}

}  // namespace

CodePoint decodeUtf8(std::string_view text, std::size_t at) {
  const auto lead = static_cast<unsigned char>(text[at]);
  const std::size_t length = sequenceLength(lead);
  if (length == 1) {
    return {lead, 1};
  }
  if (length == 0 || text.size() - at < length) {
    return {};
  }
  std::uint32_t value = lead & (0xFFU >> (length + 1));
  for (std::size_t i = 1; i < length; ++i) {
    const char byte = text[at + i];
    if (!isContinuation(byte)) {
      return {};
    }
    value = (value << 6U) | (static_cast<unsigned char>(byte) & 0x3FU);
  }
  const bool overlong = (length == 3 && value < 0x800) || (length == 4 && value < 0x10000);
  const bool surrogate = value >= 0xD800 && value <= 0xDFFF;
  if (overlong || surrogate || value > 0x10FFFF) {
    return {};
  }
  return {value, length};
}

std::size_t findMalformedUtf8(std::string_view text) {
  constexpr std::uint64_t kHighBits = 0x8080808080808080U;
  std::size_t at = 0;
  while (at < text.size()) {
    if (text.size() - at >= sizeof(std::uint64_t)) {
      // Statements are nearly always ASCII: eight bytes at a time.
      std::uint64_t word = 0;
      std::memcpy(&word, text.data() + at, sizeof word);
      if ((word & kHighBits) == 0) {
        at += sizeof word;
        continue;
      }
    }
    const CodePoint point = decodeUtf8(text, at);
    if (point.length == 0) {
      return at;
    }
    at += point.length;
  }
  return std::string_view::npos;
}

bool isLetterBeyondAscii(std::uint32_t codePoint) {
  struct Range {
    std::uint32_t first;
    std::uint32_t last;
  };
  // The blocks of letters; between them stand blanks, punctuation, arrows and other symbols.
  static constexpr std::array<Range, 18> kLetters = {{{0xAA, 0xAA},
                                                      {0xB5, 0xB5},
                                                      {0xBA, 0xBA},
                                                      {0xC0, 0xD6},
                                                      {0xD8, 0xF6},
                                                      {0xF8, 0x2C1},
                                                      {0x300, 0x36F},
                                                      {0x370, 0x37D},
                                                      {0x37F, 0x386},
                                                      {0x388, 0x481},
                                                      {0x48A, 0x167F},
                                                      {0x1681, 0x180D},
                                                      {0x180F, 0x1FFF},
                                                      {0x2C00, 0x2DFF},
                                                      {0x3041, 0xA48C},
                                                      {0xA500, 0xD7A3},
                                                      {0xF900, 0xFDCF},
                                                      {0xFF21, 0xFF3A}}};
  for (const Range& range : kLetters) {
    if (codePoint >= range.first && codePoint <= range.last) {
      return true;
    }
  }
  return false;
}

std::string_view firstCharacters(std::string_view text, std::size_t characters) {
  std::size_t at = 0;
  while (at < text.size()) {
    if (!isContinuation(text[at])) {
      if (characters == 0) {
        return text.substr(0, at);
      }
      --characters;
    }
    ++at;
  }
  return text;
}

}  // namespace azcoll::tsql
