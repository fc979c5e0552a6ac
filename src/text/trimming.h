#pragma once

#include <string_view>

/// Text without the blanks (U+0020) around it.
namespace azcoll {

/// `text` without the blanks at its start.
[[nodiscard]] std::string_view trimStart(std::string_view text);

/// `text` without the blanks at its end.
[[nodiscard]] std::string_view trimEnd(std::string_view text);

/// `text` without the blanks at its start and end.
[[nodiscard]] std::string_view trim(std::string_view text);

}  // namespace azcoll
