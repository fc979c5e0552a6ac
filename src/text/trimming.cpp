#include "text/trimming.h"

#include <algorithm>
#include <cstddef>

namespace azcoll {

std::string_view trimStart(std::string_view text) {
  return text.substr(std::min(text.find_first_not_of(' '), text.size()));
}

std::string_view trimEnd(std::string_view text) {
  // Of blanks alone nothing is found, and npos + 1 is 0.
  return text.substr(0, text.find_last_not_of(' ') + 1);
}

std::string_view trim(std::string_view text) { return trimStart(trimEnd(text)); }

}  // namespace azcoll
