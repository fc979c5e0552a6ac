#pragma once

#include <cstddef>
#include <stdexcept>
#include <string>
#include <string_view>

#include "tsql/ast.h"

namespace azcoll::tsql {

/// A text that is not understood. `number` is SQL Server's message number (102, 105, 156, 191 …),
/// or 0 for T-SQL that is valid but outside what this system runs, and for a text that is not
/// UTF-8. `what()` is the message alone, in SQL Server's wording for the numbered ones.
class SyntaxError : public std::runtime_error {
 public:
  /// `fragment` shows the place, as `markedFragment` makes it.
  SyntaxError(int number, const std::string& message, Position position, std::string fragment);

  [[nodiscard]] int number() const { return number_; }
  [[nodiscard]] const Position& position() const { return position_; }
  /// The line of the text around the place, the offending token between `»` and `«`.
  [[nodiscard]] const std::string& fragment() const { return fragment_; }
  /// The message with line, column and the marked fragment.
  [[nodiscard]] std::string located() const;

 private:
  int number_;
  Position position_;
  std::string fragment_;
};

/// The line of `text` around the `length` bytes at `offset`, these between `»` and `«`. Long lines
/// are cut on both sides (`…`), so that the result stays near 120 characters; what cannot be shown
/// (control characters, bytes that are not UTF-8) is replaced.
[[nodiscard]] std::string markedFragment(std::string_view text, std::size_t offset,
                                         std::size_t length);

}  // namespace azcoll::tsql
