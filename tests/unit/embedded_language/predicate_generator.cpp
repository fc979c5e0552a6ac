#include "unit/embedded_language/predicate_generator.h"

#include <array>
#include <cctype>
#include <utility>

namespace azcoll::test {
namespace {

Decimal decimal(const char* text) { return *Decimal::parse(text); }

/// The text as far as comparisons see it; letters of the ASCII range and è only.
std::string folded(std::string text) {
  while (!text.empty() && text.back() == ' ') {
    text.pop_back();
  }
  for (std::size_t i = 0; i < text.size(); ++i) {
    text[i] = static_cast<char>(std::toupper(static_cast<unsigned char>(text[i])));
    if (text[i] == '\xC3' && i + 1 < text.size() && text[i + 1] == '\xA8') {
      text[i + 1] = '\x88';  // è and È
    }
  }
  return text;
}

constexpr std::array<const char*, 6> kOperators = {" = ", " <> ", " < ", " > ", " <= ", " >= "};

bool holds(std::size_t op, std::strong_ordering order) {
  switch (op) {
    case 0:
      return order == 0;
    case 1:
      return order != 0;
    case 2:
      return order < 0;
    case 3:
      return order > 0;
    case 4:
      return order <= 0;
    default:
      return order >= 0;
  }
}

Truth both(Truth left, Truth right) {
  if (left == false || right == false) {
    return false;
  }
  return left && right ? Truth{true} : std::nullopt;
}

Truth opposite(Truth truth) { return truth ? Truth{!*truth} : std::nullopt; }

Truth either(Truth left, Truth right) { return opposite(both(opposite(left), opposite(right))); }

template <typename Value>
Truth compared(std::size_t op, const std::optional<Value>& left,
               const std::optional<Value>& right) {
  if (!left || !right) {
    return std::nullopt;
  }
  if constexpr (std::is_same_v<Value, std::string>) {
    return holds(op, folded(*left) <=> folded(*right));
  } else {
    return holds(op, *left <=> *right);
  }
}

/// `value IN (list)`, list as truths of the single comparisons.
Truth inList(const std::vector<Truth>& comparisons) {
  Truth result = false;
  for (const Truth& comparison : comparisons) {
    result = either(result, comparison);
  }
  return result;
}

Condition negatedAtTimes(Condition condition, bool negated) {
  if (!negated) {
    return condition;
  }
  return {"NOT (" + condition.text + ")",
          [meaning = std::move(condition.meaning)](const SampleRow& a, const SampleRow* b) {
            return opposite(meaning(a, b));
          }};
}

}  // namespace

PredicateGenerator::NumberTerm PredicateGenerator::number(bool inner) {
  static const std::array<const char*, 6> kNumbers = {"0", "1", "2", "2.0", "2.50", "-1"};
  const bool useInner = inner && below(2) == 0;
  const std::string alias = useInner ? "B." : "A.";
  switch (below(5)) {
    case 0:
      return {alias + "I",
              [useInner](const SampleRow& a, const SampleRow* b) { return useInner ? b->i : a.i; }};
    case 1:
      return {alias + "N",
              [useInner](const SampleRow& a, const SampleRow* b) { return useInner ? b->n : a.n; }};
    case 2:
      return {"ISNULL(" + alias + "I, 1)", [useInner](const SampleRow& a, const SampleRow* b) {
                return (useInner ? b->i : a.i).value_or(Decimal::fromInteger(1));
              }};
    case 3:
      return {alias + "I + 1", [useInner](const SampleRow& a, const SampleRow* b) -> Number {
                const Number& value = useInner ? b->i : a.i;
                return value ? value->plus(Decimal::fromInteger(1)) : std::nullopt;
              }};
    default: {
      const std::string text = kNumbers.at(below(kNumbers.size()));
      return {text, [value = decimal(text.c_str())](const SampleRow&, const SampleRow*) {
                return Number{value};
              }};
    }
  }
}

PredicateGenerator::TextTerm PredicateGenerator::text(bool inner) {
  static const std::array<const char*, 7> kTexts = {"a", "A ", "b", "", " a", "è", "È  "};
  const bool useInner = inner && below(2) == 0;
  const std::string alias = useInner ? "B." : "A.";
  const auto column = [useInner](const SampleRow& a, const SampleRow* b) -> const Text& {
    return useInner ? b->v : a.v;
  };
  switch (below(4)) {
    case 0:
      return {alias + "V", column};
    case 1:
      return {"ISNULL(" + alias + "V, 'a')",
              [column](const SampleRow& a, const SampleRow* b) -> Text {
                return column(a, b).value_or("a");
              }};
    case 2:
      return {alias + "V + 'b'", [column](const SampleRow& a, const SampleRow* b) -> Text {
                const Text& value = column(a, b);
                return value ? Text{*value + "b"} : std::nullopt;
              }};
    default: {
      const std::string value = kTexts.at(below(kTexts.size()));
      return {"'" + value + "'",
              [value](const SampleRow&, const SampleRow*) { return Text{value}; }};
    }
  }
}

Condition PredicateGenerator::compareNumbers(bool inner) {
  NumberTerm left = number(inner);
  NumberTerm right = number(inner);
  const std::size_t op = below(kOperators.size());
  return {left.text + kOperators.at(op) + right.text,
          [left, right, op](const SampleRow& a, const SampleRow* b) {
            return compared(op, left.value(a, b), right.value(a, b));
          }};
}

Condition PredicateGenerator::compareTexts(bool inner) {
  TextTerm left = text(inner);
  TextTerm right = text(inner);
  const std::size_t op = below(2);  // the order of texts is tested elsewhere
  return {left.text + kOperators.at(op) + right.text,
          [left, right, op](const SampleRow& a, const SampleRow* b) {
            return compared(op, left.value(a, b), right.value(a, b));
          }};
}

Condition PredicateGenerator::between(bool inner) {
  NumberTerm value = number(inner);
  NumberTerm low = number(inner);
  NumberTerm high = number(inner);
  const bool negated = below(2) == 0;
  return {value.text + (negated ? " NOT" : "") + " BETWEEN " + low.text + " AND " + high.text,
          [value, low, high, negated](const SampleRow& a, const SampleRow* b) {
            const Number number = value.value(a, b);
            const Truth truth =
                both(compared(5, number, low.value(a, b)), compared(4, number, high.value(a, b)));
            return negated ? opposite(truth) : truth;
          }};
}

Condition PredicateGenerator::numberList(bool inner) {
  NumberTerm value = number(inner);
  std::vector<NumberTerm> items{number(inner), number(inner)};
  const bool negated = below(2) == 0;
  return {
      value.text + (negated ? " NOT" : "") + " IN (" + items[0].text + ", " + items[1].text + ")",
      [value, items, negated](const SampleRow& a, const SampleRow* b) {
        const Number number = value.value(a, b);
        const Truth truth = either(compared(0, number, items[0].value(a, b)),
                                   compared(0, number, items[1].value(a, b)));
        return negated ? opposite(truth) : truth;
      }};
}

Condition PredicateGenerator::textList(bool inner) {
  TextTerm value = text(inner);
  std::vector<TextTerm> items{text(inner), text(inner)};
  const bool negated = below(2) == 0;
  return {
      value.text + (negated ? " NOT" : "") + " IN (" + items[0].text + ", " + items[1].text + ")",
      [value, items, negated](const SampleRow& a, const SampleRow* b) {
        const Text text = value.value(a, b);
        const Truth truth = either(compared(0, text, items[0].value(a, b)),
                                   compared(0, text, items[1].value(a, b)));
        return negated ? opposite(truth) : truth;
      }};
}

Condition PredicateGenerator::isNull(bool inner) {
  const bool negated = below(2) == 0;
  const std::string tail = negated ? " IS NOT NULL" : " IS NULL";
  if (below(2) == 0) {
    NumberTerm value = number(inner);
    return {value.text + tail, [value, negated](const SampleRow& a, const SampleRow* b) {
              return Truth{value.value(a, b).has_value() == negated};
            }};
  }
  TextTerm value = text(inner);
  return {value.text + tail, [value, negated](const SampleRow& a, const SampleRow* b) {
            return Truth{value.value(a, b).has_value() == negated};
          }};
}

Condition PredicateGenerator::exists(int depth) {
  Condition condition = this->condition(depth, true);
  const bool negated = below(2) == 0;
  return {std::string{negated ? "NOT " : ""} + "EXISTS (SELECT 1 FROM T AS B WHERE " +
              condition.text + ")",
          [this, condition, negated](const SampleRow& a, const SampleRow*) {
            for (const SampleRow& row : rows_) {
              if (condition.meaning(a, &row) == true) {
                return Truth{!negated};
              }
            }
            return Truth{negated};
          }};
}

Condition PredicateGenerator::inQuery(int depth) {
  Condition condition = this->condition(depth, true);
  const bool negated = below(2) == 0;
  const std::string tail = std::string{negated ? " NOT" : ""} + " IN (SELECT ";
  const std::string from = " FROM T AS B WHERE " + condition.text + ")";
  std::function<Truth(const SampleRow&, const SampleRow&)> equal;
  std::string text;
  if (below(2) == 0) {
    NumberTerm value = number(false);
    const bool decimals = below(2) == 0;
    text = value.text + tail + (decimals ? "B.N" : "B.I") + from;
    equal = [value, decimals](const SampleRow& a, const SampleRow& b) {
      return compared(0, value.value(a, nullptr), decimals ? b.n : b.i);
    };
  } else {
    TextTerm value = this->text(false);
    text = value.text + tail + "B.V" + from;
    equal = [value](const SampleRow& a, const SampleRow& b) {
      return compared(0, value.value(a, nullptr), b.v);
    };
  }
  return {text, [this, condition, negated, equal](const SampleRow& a, const SampleRow*) {
            std::vector<Truth> comparisons;
            for (const SampleRow& row : rows_) {
              if (condition.meaning(a, &row) == true) {
                comparisons.push_back(equal(a, row));
              }
            }
            const Truth truth = inList(comparisons);
            return negated ? opposite(truth) : truth;
          }};
}

Condition PredicateGenerator::count(int depth) {
  Condition condition = this->condition(depth, true);
  const auto limit = static_cast<std::int64_t>(below(4));
  return {"(SELECT COUNT(*) FROM T AS B WHERE " + condition.text + ") > " + std::to_string(limit),
          [this, condition, limit](const SampleRow& a, const SampleRow*) {
            std::int64_t rows = 0;
            for (const SampleRow& row : rows_) {
              rows += condition.meaning(a, &row) == true ? 1 : 0;
            }
            return Truth{rows > limit};
          }};
}

Condition PredicateGenerator::greatest(int depth) {
  Condition condition = this->condition(depth, true);
  NumberTerm value = number(false);
  const std::size_t op = below(kOperators.size());
  return {
      value.text + kOperators.at(op) + "(SELECT MAX(B.N) FROM T AS B WHERE " + condition.text + ")",
      [this, condition, value, op](const SampleRow& a, const SampleRow*) {
        Number greatest;
        for (const SampleRow& row : rows_) {
          if (condition.meaning(a, &row) == true && row.n && (!greatest || *row.n > *greatest)) {
            greatest = row.n;
          }
        }
        return compared(op, value.value(a, nullptr), greatest);
      }};
}

Condition PredicateGenerator::leaf(bool inner) {
  switch (below(6)) {
    case 0:
      return compareNumbers(inner);
    case 1:
      return compareTexts(inner);
    case 2:
      return between(inner);
    case 3:
      return numberList(inner);
    case 4:
      return textList(inner);
    default:
      return isNull(inner);
  }
}

Condition PredicateGenerator::condition(int depth, bool inner) {
  if (depth == 0 || below(4) == 0) {
    return negatedAtTimes(leaf(inner), below(4) == 0);
  }
  if (!inner && below(2) == 0) {  // one level of subqueries
    switch (below(4)) {
      case 0:
        return exists(depth - 1);
      case 1:
        return count(depth - 1);
      case 2:
        return greatest(depth - 1);
      default:
        return inQuery(depth - 1);
    }
  }
  Condition left = condition(depth - 1, inner);
  Condition right = condition(depth - 1, inner);
  const bool isAnd = below(2) == 0;
  return negatedAtTimes({"(" + left.text + (isAnd ? " AND " : " OR ") + right.text + ")",
                         [left, right, isAnd](const SampleRow& a, const SampleRow* b) {
                           const Truth first = left.meaning(a, b);
                           const Truth second = right.meaning(a, b);
                           return isAnd ? both(first, second) : either(first, second);
                         }},
                        below(4) == 0);
}

std::vector<SampleRow> sampleRows() {
  const std::array<Decimal, 4> numbers = {decimal("0"), decimal("1"), decimal("2"), decimal("3")};
  const std::array<Decimal, 4> amounts = {decimal("1"), decimal("2"), decimal("2.5"),
                                          decimal("-1")};
  const std::array<const char*, 7> texts = {"a", "A", "a  ", "b", "", "è", "AB"};
  std::vector<SampleRow> rows;
  std::mt19937 random{7};
  for (int id = 1; id <= 12; ++id) {
    SampleRow row{id, std::nullopt, std::nullopt, std::nullopt};
    if (random() % 4 != 0) {
      row.i = numbers.at(random() % numbers.size());
    }
    if (random() % 4 != 0) {
      row.n = amounts.at(random() % amounts.size());
    }
    if (random() % 4 != 0) {
      row.v = texts.at(random() % texts.size());
    }
    rows.push_back(row);
  }
  return rows;
}

std::string insertText(const std::vector<SampleRow>& rows) {
  std::string text;
  for (const SampleRow& row : rows) {
    text += "INSERT INTO T (ID, I, N, V) VALUES (" + std::to_string(row.id) + ", " +
            (row.i ? row.i->text() : "NULL") + ", " + (row.n ? row.n->text() : "NULL") + ", " +
            (row.v ? "'" + *row.v + "'" : "NULL") + ")\n";
  }
  return text;
}

}  // namespace azcoll::test
