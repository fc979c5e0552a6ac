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

}  // namespace azcoll
