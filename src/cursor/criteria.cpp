#include "cursor/criteria.h"

#include <algorithm>
#include <compare>

#include "data/error.h"
#include "data/messages.h"
#include "data/text.h"
#include "text/letter_case.h"

namespace azcoll::cursor {
namespace {

using Kind = Variant::Kind;

/// The two sides compared in the column's type; empty when the literal has no value of that type.
std::optional<std::partial_ordering> compare(const Variant& value, const Literal& literal) {
  switch (value.kind()) {
    case Kind::Boolean:
      if (literal.truth) {
        return *value.get<bool>() <=> *literal.truth;
      }
      return std::nullopt;
    case Kind::Int16:
    case Kind::Int32:
    case Kind::Int64:
    case Kind::Decimal:
      if (literal.number) {
        return value.toDecimal() <=> *literal.number;
      }
      return std::nullopt;
    // A double is compared as one: as a decimal it would rarely equal what is written.
    case Kind::Double:
      if (literal.number) {
        return *value.get<double>() <=> literal.number->toDouble();
      }
      return std::nullopt;
    case Kind::Date:
      if (literal.date) {
        return *value.get<Date>() <=> *literal.date;
      }
      return std::nullopt;
    case Kind::Text:
      if (literal.kind != Literal::Kind::Date) {
        return compareIgnoringCase(*value.get<std::string>(), literal.text);
      }
      return std::nullopt;
    default:
      return std::nullopt;
  }
}

bool satisfies(std::partial_ordering order, Comparator comparator) {
  switch (comparator) {
    case Comparator::Equal:
      return std::is_eq(order);
    case Comparator::NotEqual:
      return std::is_neq(order);
    case Comparator::Less:
      return std::is_lt(order);
    case Comparator::LessOrEqual:
      return std::is_lteq(order);
    case Comparator::Greater:
      return std::is_gt(order);
    default:
      return std::is_gteq(order);
  }
}

constexpr bool isWildcard(char character) { return character == '*' || character == '%'; }

/// Whether the whole text fits a pattern. After a wildcard the shortest stretch is tried first and
/// only the last wildcard is ever extended: at most text times pattern steps.
bool fitsPattern(std::string_view text, std::string_view pattern) {
  std::size_t textIndex = 0;
  std::size_t patternIndex = 0;
  std::optional<std::size_t> afterWildcard;
  std::size_t stretchEnd = 0;
  while (textIndex < text.size()) {
    const bool more = patternIndex < pattern.size();
    if (more && isWildcard(pattern[patternIndex])) {
      afterWildcard = ++patternIndex;
      stretchEnd = textIndex;
    } else if (more && pattern[patternIndex] == text[textIndex]) {
      ++patternIndex;
      ++textIndex;
    } else if (afterWildcard) {
      patternIndex = *afterWildcard;
      textIndex = ++stretchEnd;
    } else {
      return false;
    }
  }
  return std::all_of(pattern.begin() + static_cast<std::ptrdiff_t>(patternIndex), pattern.end(),
                     isWildcard);
}

bool holds(const Comparison& comparison, const Variant& value) {
  const Literal& literal = comparison.literal;
  const bool missing = value.isNull() || value.isEmpty();
  if (literal.kind == Literal::Kind::Null) {
    return missing == (comparison.comparator == Comparator::Equal);
  }
  // A missing value satisfies no comparison but the one with NULL.
  if (missing) {
    return false;
  }
  if (comparison.comparator == Comparator::Like) {
    return fitsPattern(foldCase(value.text()), literal.text);
  }
  const std::optional<std::partial_ordering> order = compare(value, literal);
  if (!order) {
    // An error instead of a row passed over: the criteria do not fit the column.
    throw Error(join(messages::kCriteriaType, comparison.columnName));
  }
  return satisfies(*order, comparison.comparator);
}

}  // namespace

bool Criteria::matches(std::span<const Variant> row) const {
  return std::any_of(groups_.begin(), groups_.end(), [&](const Group& group) {
    return std::all_of(group.begin(), group.end(), [&](const Comparison& comparison) {
      return holds(comparison, row[comparison.column]);
    });
  });
}

}  // namespace azcoll::cursor
