#include "data/text.h"

#include <algorithm>
#include <cstdint>

namespace azcoll {
namespace {

constexpr bool isContinuation(unsigned char byte) { return (byte & 0xC0U) == 0x80U; }

/// What the lead byte promises: the length of the sequence and the limits of its second byte, which
/// shut out overlong forms, surrogates and values beyond Unicode. Length 1 also for a stray byte.
struct Lead {
  std::size_t length = 1;
  unsigned char lowest = 0x80;
  unsigned char highest = 0xBF;
};

constexpr Lead leadOf(unsigned char byte) {
  if (byte >= 0xC2 && byte <= 0xDF) {
    return {.length = 2};
  }
  if (byte >= 0xE0 && byte <= 0xEF) {
    return {.length = 3,
            .lowest = static_cast<unsigned char>(byte == 0xE0 ? 0xA0 : 0x80),
            .highest = static_cast<unsigned char>(byte == 0xED ? 0x9F : 0xBF)};
  }
  if (byte >= 0xF0 && byte <= 0xF4) {
    return {.length = 4,
            .lowest = static_cast<unsigned char>(byte == 0xF0 ? 0x90 : 0x80),
            .highest = static_cast<unsigned char>(byte == 0xF4 ? 0x8F : 0xBF)};
  }
  return {};
}

/// Bytes of the character at the start of `text` (not empty); 1 for a malformed byte.
std::size_t characterLength(std::string_view text) {
  const auto byteAt = [&](std::size_t index) { return static_cast<unsigned char>(text[index]); };
  const Lead lead = leadOf(byteAt(0));
  if (lead.length == 1 || text.size() < lead.length || byteAt(1) < lead.lowest ||
      byteAt(1) > lead.highest) {
    return 1;
  }
  for (std::size_t index = 2; index < lead.length; ++index) {
    if (!isContinuation(byteAt(index))) {
      return 1;
    }
  }
  return lead.length;
}

}  // namespace

std::string doubleApostrophes(std::string_view text) {
  std::string result;
  result.reserve(text.size() +
                 static_cast<std::size_t>(std::count(text.begin(), text.end(), '\'')));
  for (const char character : text) {
    result.append(character == '\'' ? 2 : 1, character);
  }
  return result;
}

std::string_view trim(std::string_view text) {
  const std::size_t first = text.find_first_not_of(' ');
  if (first == std::string_view::npos) {
    return {};
  }
  return text.substr(first, text.find_last_not_of(' ') - first + 1);
}

std::size_t characterCount(std::string_view text) {
  std::size_t count = 0;
  for (std::size_t index = 0; index < text.size(); ++count) {
    index += characterLength(text.substr(index));
  }
  return count;
}

std::string_view leftCharacters(std::string_view text, std::size_t count) {
  std::size_t index = 0;
  for (; count > 0 && index < text.size(); --count) {
    index += characterLength(text.substr(index));
  }
  return text.substr(0, index);
}

}  // namespace azcoll
