#include "odbc/strings.h"

#include <cstddef>
#include <cstdint>
#include <cstring>

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

/// Writes a character; returns the place behind it.
char* putUtf8(char* target, std::uint32_t value) {
  const auto put = [&](std::uint32_t byte) { *target++ = static_cast<char>(byte); };
  if (value < 0x80) {
    put(value);
  } else if (value < 0x800) {
    put(0xC0U | (value >> 6U));
    put(0x80U | (value & 0x3FU));
  } else if (value < kFirstBeyondBmp) {
    put(0xE0U | (value >> 12U));
    put(0x80U | ((value >> 6U) & 0x3FU));
    put(0x80U | (value & 0x3FU));
  } else {
    put(0xF0U | (value >> 18U));
    put(0x80U | ((value >> 12U) & 0x3FU));
    put(0x80U | ((value >> 6U) & 0x3FU));
    put(0x80U | (value & 0x3FU));
  }
  return target;
}

/// The character that begins with `unit`; empty for a surrogate that stands alone.
std::optional<std::uint32_t> pointAt(char16_t unit, char16_t next) {
  if (unit < kFirstSurrogate || unit > kLastSurrogate) {
    return unit;
  }
  if (unit >= kFirstLowSurrogate || next < kFirstLowSurrogate || next > kLastSurrogate) {
    return std::nullopt;
  }
  return kFirstBeyondBmp + ((unit - kFirstSurrogate) << 10U) + (next - kFirstLowSurrogate);
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

std::optional<std::size_t> narrowTo(char* target, const std::byte* text, std::size_t units) {
  const auto unitAt = [&](std::size_t index) {
    char16_t unit{};
    std::memcpy(&unit, text + index * sizeof unit, sizeof unit);
    return unit;
  };
  char* out = target;
  for (std::size_t at = 0; at < units; ++at) {
    const char16_t unit = unitAt(at);
    if (unit < 0x80) {
      *out++ = static_cast<char>(unit);
      continue;
    }
    const std::optional<std::uint32_t> point =
        pointAt(unit, at + 1 < units ? unitAt(at + 1) : char16_t{0});
    if (!point) {
      return std::nullopt;
    }
    at += *point >= kFirstBeyondBmp ? 1U : 0U;
    out = putUtf8(out, *point);
  }
  return static_cast<std::size_t>(out - target);
}

std::optional<std::string> narrowOf(std::u16string_view text) {
  std::string narrow(mostNarrowBytes(text.size()), '\0');
  const std::optional<std::size_t> size =
      narrowTo(narrow.data(), reinterpret_cast<const std::byte*>(text.data()), text.size());
  if (!size) {
    return std::nullopt;
  }
  narrow.resize(*size);
  return narrow;
}

std::string readableOf(std::u16string_view text) {
  std::string narrow(mostNarrowBytes(text.size()), '\0');
  char* out = narrow.data();
  for (std::size_t at = 0; at < text.size(); ++at) {
    const std::uint32_t point =
        pointAt(text[at], at + 1 < text.size() ? text[at + 1] : u'\0').value_or(kReplacement);
    at += point >= kFirstBeyondBmp ? 1U : 0U;
    out = putUtf8(out, point);
  }
  narrow.resize(static_cast<std::size_t>(out - narrow.data()));
  return narrow;
}

}  // namespace azcoll::odbc
