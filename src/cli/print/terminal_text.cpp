#include "cli/print/terminal_text.h"

#include <algorithm>

#include "tsql/utf8.h"

namespace azcoll::cli {
namespace {

constexpr char32_t kReplacement = 0xFFFD;

}  // namespace

std::u32string decodeUtf8(std::string_view text) {
  std::u32string result;
  result.reserve(text.size());
  std::size_t i = 0;
  while (i < text.size()) {
    const tsql::CodePoint point = tsql::decodeUtf8(text, i);
    result += point.length == 0 ? kReplacement : static_cast<char32_t>(point.value);
    i += std::max<std::size_t>(point.length, 1);
  }
  return result;
}

std::string encodeUtf8(std::u32string_view text) {
  std::string result;
  result.reserve(text.size());
  const auto put = [&result](char32_t byte) { result += static_cast<char>(byte); };
  for (const char32_t c : text) {
    if (c < 0x80) {
      put(c);
    } else if (c < 0x800) {
      put(0xC0U | (c >> 6U));
      put(0x80U | (c & 0x3FU));
    } else if (c < 0x10000) {
      put(0xE0U | (c >> 12U));
      put(0x80U | ((c >> 6U) & 0x3FU));
      put(0x80U | (c & 0x3FU));
    } else {
      put(0xF0U | (c >> 18U));
      put(0x80U | ((c >> 12U) & 0x3FU));
      put(0x80U | ((c >> 6U) & 0x3FU));
      put(0x80U | (c & 0x3FU));
    }
  }
  return result;
}

std::size_t columnWidth(std::string_view text) {
  const std::u32string characters = decodeUtf8(text);
  return static_cast<std::size_t>(std::count_if(characters.begin(), characters.end(),
                                                [](char32_t c) { return !isCombining(c); }));
}

std::string visible(std::string_view text) {
  constexpr char32_t controlPictures = 0x2400;
  constexpr char32_t deletePicture = 0x2421;
  std::u32string characters = decodeUtf8(text);
  for (char32_t& c : characters) {
    if (c < 0x20) {
      c += controlPictures;
    } else if (c == 0x7F) {
      c = deletePicture;
    } else if (c > 0x7F && c < 0xA0) {
      c = kReplacement;
    }
  }
  return encodeUtf8(characters);
}

}  // namespace azcoll::cli
