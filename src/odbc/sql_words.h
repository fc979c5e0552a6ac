#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace azcoll::odbc {

/// A word of T-SQL text with its depth in parentheses.
struct SqlWord {
  enum class Kind : std::uint8_t { Name, QuotedName, Literal, Sign };

  Kind kind = Kind::Sign;
  std::string text{};  ///< of a quoted name, what stands between the quotes
  int depth = 0;       ///< of a parenthesis: that of what is outside it

  /// Whether it is this keyword (letter case ignored); a quoted name never is one.
  [[nodiscard]] bool is(std::string_view keyword) const;
  [[nodiscard]] bool isSign(char sign) const {
    return kind == Kind::Sign && text.size() == 1 && text.front() == sign;
  }
  [[nodiscard]] bool isName() const { return kind == Kind::Name || kind == Kind::QuotedName; }
};

/// The words of a text, comments left out. An open quote reaches to the end; a text that is not
/// UTF-8 has none.
[[nodiscard]] std::vector<SqlWord> wordsOf(std::string_view text);

}  // namespace azcoll::odbc
