#include "text/quoting.h"

#include <algorithm>

namespace azcoll {

std::string doubled(std::string_view text, char mark) {
  std::string result;
  result.reserve(text.size() + static_cast<std::size_t>(std::ranges::count(text, mark)));
  for (const char character : text) {
    result.append(character == mark ? 2 : 1, character);
  }
  return result;
}

std::string quoted(std::string_view text, char open) {
  const char close = open == '[' ? ']' : (open == '{' ? '}' : open);
  return open + doubled(text, close) + close;
}

std::string_view trim(std::string_view text) {
  const std::size_t first = text.find_first_not_of(' ');
  if (first == std::string_view::npos) {
    return {};
  }
  return text.substr(first, text.find_last_not_of(' ') - first + 1);
}

}  // namespace azcoll
