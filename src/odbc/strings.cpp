#include "odbc/strings.h"

#include <cstddef>
#include <cstdint>

#include "data/error.h"

namespace azcoll::odbc {
namespace {

constexpr std::uint32_t kReplacement = 0xFFFD;
constexpr std::uint32_t kFirstSurrogate = 0xD800;
constexpr std::uint32_t kFirstLowSurrogate = 0xDC00;
constexpr std::uint32_t kLastSurrogate = 0xDFFF;
constexpr std::uint32_t kFirstBeyondBmp = 0x10000;
constexpr std::uint32_t kLastCodePoint = 0x10FFFF;

struct CodePoint {
  std::uint32_t value = 0;
  std::size_t length = 0;  // 0: malformed
};

/// Bytes of the character that begins with `first`, 0 when none does.
constexpr std::size_t lengthOf(unsigned char first) {
  if (first < 0x80) {
    return 1;
  }
  if (first < 0xC2) {  // continuation bytes, and the leads of overlong forms
    return 0;
  }
  if (first < 0xE0) {
    return 2;
  }
  return first < 0xF0 ? 3 : (first < 0xF5 ? 4 : 0);
}

CodePoint decode(std::string_view text, std::size_t at) {
  const auto byteAt = [&](std::size_t index) { return static_cast<unsigned char>(text[index]); };
  const unsigned char first = byteAt(at);
  const std::size_t length = lengthOf(first);
  if (length == 0 || at + length > text.size()) {
    return {};
  }
  if (length == 1) {
    return {first, 1};
  }
  std::uint32_t value = first & (0xFFU >> (length + 1));
  for (std::size_t index = 1; index < length; ++index) {
    const unsigned char next = byteAt(at + index);
    if ((next & 0xC0U) != 0x80U) {
      return {};
    }
    value = (value << 6U) | (next & 0x3FU);
  }
  const bool overlong = (length == 3 && value < 0x800) || (length == 4 && value < kFirstBeyondBmp);
  const bool surrogate = value >= kFirstSurrogate && value <= kLastSurrogate;
  if (overlong || surrogate || value > kLastCodePoint) {
    return {};
  }
  return {value, length};
}

void appendUtf8(std::string& target, std::uint32_t value) {
  const auto append = [&](std::uint32_t byte) { target += static_cast<char>(byte); };
  if (value < 0x80) {
    append(value);
  } else if (value < 0x800) {
    append(0xC0U | (value >> 6U));
    append(0x80U | (value & 0x3FU));
  } else if (value < kFirstBeyondBmp) {
    append(0xE0U | (value >> 12U));
    append(0x80U | ((value >> 6U) & 0x3FU));
    append(0x80U | (value & 0x3FU));
  } else {
    append(0xF0U | (value >> 18U));
    append(0x80U | ((value >> 12U) & 0x3FU));
    append(0x80U | ((value >> 6U) & 0x3FU));
    append(0x80U | (value & 0x3FU));
  }
}

/// Appends `text` as UTF-8; a lone surrogate becomes `kReplacement` and makes the result false.
bool appendNarrow(std::string& target, std::u16string_view text) {
  bool wellFormed = true;
  target.reserve(target.size() + text.size());
  for (std::size_t at = 0; at < text.size(); ++at) {
    std::uint32_t value = text[at];
    if (value >= kFirstSurrogate && value <= kLastSurrogate) {
      const std::uint32_t next = at + 1 < text.size() ? text[at + 1] : 0U;
      if (value < kFirstLowSurrogate && next >= kFirstLowSurrogate && next <= kLastSurrogate) {
        value = kFirstBeyondBmp + ((value - kFirstSurrogate) << 10U) + (next - kFirstLowSurrogate);
        ++at;
      } else {
        value = kReplacement;
        wellFormed = false;
      }
    }
    appendUtf8(target, value);
  }
  return wellFormed;
}

}  // namespace

std::u16string wideOf(std::string_view text) {
  std::u16string wide;
  wide.reserve(text.size());
  for (std::size_t at = 0; at < text.size();) {
    const CodePoint point = decode(text, at);
    if (point.length == 0) {
      throw Error("Testo non valido: il byte " + std::to_string(at + 1) + " non è UTF-8");
    }
    if (point.value < kFirstBeyondBmp) {
      wide += static_cast<char16_t>(point.value);
    } else {
      const std::uint32_t offset = point.value - kFirstBeyondBmp;
      wide += static_cast<char16_t>(kFirstSurrogate + (offset >> 10U));
      wide += static_cast<char16_t>(kFirstLowSurrogate + (offset & 0x3FFU));
    }
    at += point.length;
  }
  return wide;
}

std::optional<std::string> narrowOf(std::u16string_view text) {
  std::string narrow;
  if (!appendNarrow(narrow, text)) {
    return std::nullopt;
  }
  return narrow;
}

std::string readableOf(std::u16string_view text) {
  std::string narrow;
  appendNarrow(narrow, text);
  return narrow;
}

}  // namespace azcoll::odbc
