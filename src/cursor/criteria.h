#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "data/date.h"
#include "data/decimal.h"
#include "data/variant.h"

namespace azcoll::cursor {

/// Position of a column by name; throws `Error` when there is no such column.
using ColumnFinder = std::function<std::size_t(std::string_view name)>;

/// The value that a comparison names, with everything that it can be compared as.
struct Literal {
  enum class Kind : std::uint8_t { Null, Number, Text, Date };

  Kind kind = Kind::Null;
  std::string text{};                       ///< of a number, as written
  std::optional<azcoll::Decimal> number{};  ///< also of a text that reads as one
  std::optional<azcoll::Date> date{};       ///< also of a text that reads as one
  std::optional<bool> truth{};              ///< of a number, or of a text True or False
};

enum class Comparator : std::uint8_t {
  Equal,
  NotEqual,
  Less,
  LessOrEqual,
  Greater,
  GreaterOrEqual,
  Like
};

/// One comparison of a column with a literal.
struct Comparison {
  std::size_t column = 0;
  std::string columnName{};
  Comparator comparator = Comparator::Equal;
  Literal literal{};
};

/// Criteria of `Filter` and `Find`.
///
/// Grammar: `column comparator value`, comparisons joined by AND, optionally in parentheses; or
/// groups in parentheses joined by OR. Nothing else: AND and OR have no precedence, so they are not
/// mixed at one level. Comparators: = <> < <= > >= LIKE (with `*` and `%` for any characters).
/// Values: '…' with doubled apostrophes, #…# with a date that `Date::parse` reads, decimal numbers,
/// NULL after = and <>. Column names may stand in square brackets.
///
/// The literal takes the column's type; one that has no such value is an error. Texts are compared
/// without regard to letter case. A Null satisfies `= NULL` only.
class Criteria {
 public:
  /// Criteria of a filter; throws `Error` with the position of the first mistake.
  static Criteria filter(std::string_view text, const ColumnFinder& columns);
  /// Criteria of a search, which are one comparison.
  static Criteria search(std::string_view text, const ColumnFinder& columns);

  /// Whether a row satisfies them; throws `Error` when a literal does not fit its column.
  [[nodiscard]] bool matches(std::span<const Variant> row) const;

 private:
  friend class CriteriaParser;
  using Group = std::vector<Comparison>;  // all of them

  std::vector<Group> groups_;  // any of them
};

}  // namespace azcoll::cursor
