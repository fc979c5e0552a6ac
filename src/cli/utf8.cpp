#include "cli/utf8.h"

#include <algorithm>
#include <array>
#include <cstdint>

namespace azcoll::cli {
namespace {

constexpr char32_t kReplacement = 0xFFFD;

struct Lead {
  std::size_t continuations = 0;
  char32_t bits = 0;
  bool valid = false;
};

Lead leadOf(unsigned char byte) {
  if (byte < 0x80) {
    return {0, byte, true};
  }
  if (byte >= 0xC2 && byte < 0xE0) {
    return {1, byte & 0x1FU, true};
  }
  if (byte >= 0xE0 && byte < 0xF0) {
    return {2, byte & 0x0FU, true};
  }
  if (byte >= 0xF0 && byte < 0xF5) {
    return {3, byte & 0x07U, true};
  }
  return {};
}

// Neither written longer than needed, nor a half of a UTF-16 pair, nor beyond Unicode.
bool isScalar(char32_t c, std::size_t continuations) {
  constexpr std::array<char32_t, 4> lowest{0, 0x80, 0x800, 0x10000};
  return c >= lowest[continuations] && c <= 0x10FFFF && !(c >= 0xD800 && c <= 0xDFFF);
}

}  // namespace

std::u32string decodeUtf8(std::string_view text) {
  std::u32string result;
  result.reserve(text.size());
  std::size_t i = 0;
  while (i < text.size()) {
    const Lead lead = leadOf(static_cast<unsigned char>(text[i]));
    char32_t c = lead.bits;
    bool valid = lead.valid && i + lead.continuations < text.size();
    for (std::size_t k = 1; valid && k <= lead.continuations; ++k) {
      const auto byte = static_cast<unsigned char>(text[i + k]);
      valid = (byte & 0xC0U) == 0x80U;
      c = (c << 6U) | (byte & 0x3FU);
    }
    valid = valid && isScalar(c, lead.continuations);
    result += valid ? c : kReplacement;
    i += valid ? lead.continuations + 1 : 1;
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
