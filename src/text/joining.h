#pragma once

#include <string>
#include <string_view>

namespace azcoll {

/// The elements of `range` as one text, with `separator` between them. `toText` makes a text of
/// each; without it the elements are texts.
template <typename Range, typename ToText>
[[nodiscard]] std::string joinAll(const Range& range, std::string_view separator,
                                  const ToText& toText) {
  std::string result;
  bool first = true;
  for (const auto& element : range) {
    if (!first) {
      result += separator;
    }
    first = false;
    result += toText(element);
  }
  return result;
}
template <typename Range>
[[nodiscard]] std::string joinAll(const Range& range, std::string_view separator) {
  return joinAll(range, separator, [](std::string_view text) { return text; });
}

}  // namespace azcoll
