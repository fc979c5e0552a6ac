#pragma once

#include <cstddef>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

#include "tsql/ast.h"

namespace azcoll::tsql {

/// Deepest nesting of parentheses, subqueries, CASE and blocks that the parser follows; the message
/// beyond it is SQL Server's number 191.
inline constexpr std::size_t kMaxNesting = 200;

/// Longest chain of operators, joins or set operators within one expression or query; the message
/// beyond it is number 191 too. Together with the nesting it bounds the height of every tree, so
/// that a tree can be walked and destroyed by recursion.
inline constexpr std::size_t kMaxChain = 1000;

/// A text that is not understood. `number` is SQL Server's message number (102, 105, 156, 191 …),
/// or 0 for T-SQL that is valid but outside what this system runs, and for a text that is not
/// UTF-8. `what()` is the message alone, in SQL Server's wording for the numbered ones; `located()`
/// adds line, column and the marked fragment.
class SyntaxError : public std::runtime_error {
 public:
  SyntaxError(int number, const std::string& message, Position position, std::string fragment);

  [[nodiscard]] int number() const { return number_; }
  [[nodiscard]] const Position& position() const { return position_; }
  /// The line of the text around the place, the offending token between `»` and `«`.
  [[nodiscard]] const std::string& fragment() const { return fragment_; }
  [[nodiscard]] std::string located() const;

 private:
  int number_;
  Position position_;
  std::string fragment_;
};

/// Parses one batch (no GO lines). Throws `SyntaxError`.
[[nodiscard]] Batch parse(std::string_view text);

/// One batch of a script and the line on which it starts in the script.
struct ScriptBatch {
  std::string text;
  std::uint32_t firstLine = 1;
};

/// Splits a script at its lines that hold nothing but GO (any letter case, blanks around it);
/// batches without a statement are left out. A GO inside a comment or a quoted text does not count.
/// A mark of the byte order at the start is dropped.
[[nodiscard]] std::vector<ScriptBatch> splitScript(std::string_view script);

/// One constant of a batch as the scanner sees it, in textual order: the values for the `Literal`
/// nodes of a tree parsed from another text of the same shape.
struct LiteralToken {
  LiteralKind kind = LiteralKind::Null;
  std::string_view raw;  ///< text between the quotes, or a number as written; of NULL empty
  bool hasDoubledQuotes = false;  ///< `raw` still holds apostrophes written twice
};

/// The shape of a text: the text with every constant replaced by a byte for its class, and
/// the constants taken out. Two texts with equal shapes have equal trees but for their constants.
///
/// Constants are all numbers, quoted texts and binary constants, wherever they stand (lengths of
/// types and aliases in quotes too), and the word NULL where it opens a value of a VALUES row:
/// right after the row's opening parenthesis or one of the row's own commas. The n-th of them is
/// `literals[n]` here and has the ordinal n in the tree; other words NULL are part of the shape.
///
/// Classes: integer, decimal, float, text (with or without N), binary, NULL. A constant that is a
/// value of a VALUES row all by itself has one class whatever it is, so that an INSERT has one
/// shape whatever its missing values.
///
/// Malformed texts have a shape too (the parser then refuses them). Not cacheable, which means that
/// the key says nothing, are texts with comments, with an open quote, with bytes that are not UTF-8
/// (in constants too), or with the control characters that mark the classes.
struct Shape {
  std::string key;
  std::vector<LiteralToken> literals;
  bool cacheable = true;
};

/// Computes the shape of `text` into `shape`, whose buffers are reused. Linear in the text.
void scanShape(std::string_view text, Shape& shape);

}  // namespace azcoll::tsql
