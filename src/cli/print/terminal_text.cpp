#include "cli/print/terminal_text.h"

#include <algorithm>

#include "text/utf8.h"

namespace azcoll::cli {
namespace {

constexpr char32_t kReplacement = 0xFFFD;

}  // namespace

std::u32string decodeUtf8(std::string_view text) {
  std::u32string result;
  result.reserve(text.size());
  std::size_t i = 0;
  while (i < text.size()) {
    const CodePoint point = azcoll::decodeUtf8(text, i);
    result += point.length == 0 ? kReplacement : static_cast<char32_t>(point.value);
    i += std::max<std::size_t>(point.length, 1);
  }
  return result;
}

std::string encodeUtf8(std::u32string_view text) {
  std::string result;
  result.reserve(text.size());
  for (const char32_t c : text) {
    appendUtf8(result, c);
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
