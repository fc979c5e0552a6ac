#pragma once

#include <functional>
#include <optional>
#include <random>
#include <string>
#include <vector>

#include "data/decimal.h"

/// Random conditions as T-SQL text together with what they mean, evaluated here and not by a
/// database.
namespace azcoll::test {

/// One row of the table `T (ID INT, I INT, N DECIMAL(9, 2), V VARCHAR(10))`.
struct SampleRow {
  int id = 0;
  std::optional<Decimal> i;  ///< a whole number
  std::optional<Decimal> n;
  std::optional<std::string> v;
};

/// True, false or unknown.
using Truth = std::optional<bool>;

/// A condition over the row of alias A and, inside a subquery, that of alias B.
struct Condition {
  std::string text;
  std::function<Truth(const SampleRow& a, const SampleRow* b)> meaning;
};

class PredicateGenerator {
 public:
  PredicateGenerator(std::vector<SampleRow> rows, unsigned seed)
      : rows_{std::move(rows)}, random_{seed} {}

  /// A random condition; `inner` when the alias B can be used, `depth` bounds its height.
  Condition condition(int depth, bool inner);

 private:
  using Number = std::optional<Decimal>;
  using Text = std::optional<std::string>;
  struct NumberTerm {
    std::string text;
    std::function<Number(const SampleRow&, const SampleRow*)> value;
  };
  struct TextTerm {
    std::string text;
    std::function<Text(const SampleRow&, const SampleRow*)> value;
  };

  std::size_t below(std::size_t bound) { return random_() % bound; }
  NumberTerm number(bool inner);
  TextTerm text(bool inner);
  Condition leaf(bool inner);
  Condition compareNumbers(bool inner);
  Condition compareTexts(bool inner);
  Condition between(bool inner);
  Condition numberList(bool inner);
  Condition textList(bool inner);
  Condition isNull(bool inner);
  Condition exists(int depth);
  Condition inQuery(int depth);
  Condition count(int depth);
  Condition greatest(int depth);

  std::vector<SampleRow> rows_;
  std::mt19937 random_;
};

/// Rows with every mixture of missing, equal and almost equal values.
[[nodiscard]] std::vector<SampleRow> sampleRows();

/// The INSERT statements of rows.
[[nodiscard]] std::string insertText(const std::vector<SampleRow>& rows);

}  // namespace azcoll::test
