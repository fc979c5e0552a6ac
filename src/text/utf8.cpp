#include "text/utf8.h"

#include <algorithm>
#include <array>
#include <cstring>

namespace azcoll {
namespace {

constexpr std::uint32_t kFirstOfThreeBytes = 0x800;
constexpr std::uint32_t kFirstOfFourBytes = 0x10000;
constexpr std::uint32_t kLastCodePoint = 0x10FFFF;
constexpr std::uint32_t kFirstSurrogate = 0xD800;
constexpr std::uint32_t kLastSurrogate = 0xDFFF;

/// Bytes of the character that begins with `first`; 0 when none does.
constexpr std::size_t sequenceLength(unsigned char first) {
  if (first < 0x80) {
    return 1;
  }
  if (first < 0xC2) {  // continuation bytes, and the first bytes of overlong forms
    return 0;
  }
  if (first < 0xE0) {
    return 2;
  }
  return first < 0xF0 ? 3 : (first < 0xF5 ? 4 : 0);
}

/// Bytes of the character at `at`; 1 for a malformed byte.
std::size_t stepAt(std::string_view text, std::size_t at) {
  return std::max<std::size_t>(decodeUtf8(text, at).length, 1);
}

}  // namespace

CodePoint decodeUtf8(std::string_view text, std::size_t at) {
  const auto first = static_cast<unsigned char>(text[at]);
  const std::size_t length = sequenceLength(first);
  if (length == 1) {
    return {first, 1};
  }
  if (length == 0 || text.size() - at < length) {
    return {};
  }
  std::uint32_t value = first & (0xFFU >> (length + 1));
  for (std::size_t index = 1; index < length; ++index) {
    const char byte = text[at + index];
    if (!isContinuation(byte)) {
      return {};
    }
    value = (value << 6U) | (static_cast<unsigned char>(byte) & 0x3FU);
  }
  const bool overlong =
      (length == 3 && value < kFirstOfThreeBytes) || (length == 4 && value < kFirstOfFourBytes);
  const bool surrogate = value >= kFirstSurrogate && value <= kLastSurrogate;
  if (overlong || surrogate || value > kLastCodePoint) {
    return {};
  }
  return {value, length};
}

std::size_t findMalformedUtf8(std::string_view text) {
  constexpr std::uint64_t kHighBits = 0x8080808080808080U;
  std::size_t at = 0;
  while (at < text.size()) {
    if (text.size() - at >= sizeof(std::uint64_t)) {
      // Texts are nearly always ASCII: eight bytes at a time.
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

char* writeUtf8(char* target, std::uint32_t codePoint) {
  const auto put = [&](std::uint32_t byte) { *target++ = static_cast<char>(byte); };
  const auto putRest = [&](unsigned shift) { put(0x80U | ((codePoint >> shift) & 0x3FU)); };
  if (codePoint < 0x80) {
    put(codePoint);
  } else if (codePoint < kFirstOfThreeBytes) {
    put(0xC0U | (codePoint >> 6U));
    putRest(0);
  } else if (codePoint < kFirstOfFourBytes) {
    put(0xE0U | (codePoint >> 12U));
    putRest(6);
    putRest(0);
  } else {
    put(0xF0U | (codePoint >> 18U));
    putRest(12);
    putRest(6);
    putRest(0);
  }
  return target;
}

void appendUtf8(std::string& text, std::uint32_t codePoint) {
  std::array<char, kLongestUtf8> bytes{};
  text.append(bytes.data(), writeUtf8(bytes.data(), codePoint));
}

std::size_t characterCount(std::string_view text) {
  std::size_t count = 0;
  for (std::size_t at = 0; at < text.size(); ++count) {
    at += stepAt(text, at);
  }
  return count;
}

std::string_view leftCharacters(std::string_view text, std::size_t count) {
  std::size_t at = 0;
  for (; count > 0 && at < text.size(); --count) {
    at += stepAt(text, at);
  }
  return text.substr(0, at);
}

}  // namespace azcoll
