#include "odbc/strings.h"

#include <cstddef>
#include <cstdint>
#include <cstring>

#include "data/error.h"
#include "text/utf8.h"

namespace azcoll::odbc {
namespace {

constexpr std::uint32_t kReplacement = 0xFFFD;
constexpr std::uint32_t kFirstSurrogate = 0xD800;
constexpr std::uint32_t kFirstLowSurrogate = 0xDC00;
constexpr std::uint32_t kLastSurrogate = 0xDFFF;
constexpr std::uint32_t kFirstBeyondBmp = 0x10000;

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
    const CodePoint point = decodeUtf8(text, at);
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
    out = writeUtf8(out, *point);
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
    out = writeUtf8(out, point);
  }
  narrow.resize(static_cast<std::size_t>(out - narrow.data()));
  return narrow;
}

}  // namespace azcoll::odbc
