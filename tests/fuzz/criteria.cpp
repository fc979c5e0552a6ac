// Criteria of Filter and Find. Input: the criteria on the first line, values on the others.
//
// Whatever the criteria: a recordset shows and finds exactly the rows that satisfy them, one after
// the other, and writing them differently changes nothing. Whatever the value: the comparisons with
// it fit together, and LIKE agrees with a matcher of a few lines.

#include "cursor/criteria.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "cursor/client_cursor.h"
#include "data/error.h"
#include "data/variant.h"
#include "fuzz/check.h"
#include "fuzz/targets.h"
#include "text/letter_case.h"
#include "text/quoting.h"

namespace azcoll::fuzz {
namespace {

using cursor::Criteria;

enum class Verdict : std::uint8_t { Satisfied, NotSatisfied, DoesNotFit };
using Verdicts = std::vector<Verdict>;
using Row = std::vector<Variant>;

constexpr std::array<const char*, 9> kColumns{"ID", "S", "I", "L", "D", "F", "A", "B", "due [T]"};
constexpr std::size_t kTextColumn = 8;
constexpr std::size_t kMostValues = 2;

/// What the conversion gives, Null where there is none.
template <typename Conversion>
Variant orNull(Conversion conversion) {
  try {
    return conversion();
  } catch (const Error&) {
    return kNull;
  }
}

/// A row that holds a text in every kind that it converts to.
Row rowOf(std::int32_t id, const std::string& text) {
  const Variant value(text);
  return {id,
          orNull([&] { return Variant(value.toInt16()); }),
          orNull([&] { return Variant(value.toInt32()); }),
          orNull([&] { return Variant(value.toInt64()); }),
          orNull([&] { return Variant(value.toDecimal()); }),
          orNull([&] { return Variant(value.toDecimal().toDouble()); }),
          orNull([&] { return Variant(value.toDate()); }),
          orNull([&] { return Variant(value.toBool()); }),
          value};
}

std::vector<Row> rowsOf(const std::vector<std::string>& values) {
  std::vector<Row> rows{Row(kColumns.size(), Variant(kNull))};
  rows.front().front() = std::int32_t{0};
  std::int32_t id = 0;
  for (const char* text : {"0", "-1.50", "caff\xC3\xA8", "29/02/2024", "True", ""}) {
    rows.push_back(rowOf(++id, text));
  }
  for (const std::string& value : values) {
    rows.push_back(rowOf(++id, value));
  }
  return rows;
}

std::size_t columnNamed(std::string_view name) {
  for (std::size_t i = 0; i < kColumns.size(); ++i) {
    if (equalsIgnoringCase(kColumns[i], name)) {
      return i;
    }
  }
  throw Error("no such column");
}

std::shared_ptr<Recordset> openRows(const std::vector<Row>& rows) {
  ResultSet set;
  for (const char* name : kColumns) {
    set.columns.push_back({.name = name});
  }
  for (const Row& row : rows) {
    set.values.insert(set.values.end(), row.begin(), row.end());
  }
  ExecutionResult result;
  result.results.push_back(std::move(set));
  return openClientCursor(std::move(result), nullptr);
}

std::int32_t currentId(Recordset& recordset) {
  return *recordset.fields().item(std::size_t{0}).value().get<std::int32_t>();
}

Verdicts outcomesOf(const Criteria& criteria, const std::vector<Row>& rows) {
  Verdicts outcomes;
  for (const Row& row : rows) {
    try {
      outcomes.push_back(criteria.matches(row) ? Verdict::Satisfied : Verdict::NotSatisfied);
    } catch (const Error&) {
      outcomes.push_back(Verdict::DoesNotFit);
    }
  }
  return outcomes;
}

/// The outcome for every row; nothing when the text is refused.
std::optional<Verdicts> filtered(const std::string& text, const std::vector<Row>& rows) {
  try {
    return outcomesOf(Criteria::filter(text, columnNamed), rows);
  } catch (const Error& error) {
    require(!error.description().empty() && !error.fromProvider(), "a refusal says why", text);
    return std::nullopt;
  }
}

std::optional<Verdicts> searched(const std::string& text, const std::vector<Row>& rows) {
  try {
    return outcomesOf(Criteria::search(text, columnNamed), rows);
  } catch (const Error&) {
    return std::nullopt;
  }
}

bool fits(const Verdicts& outcomes) {
  return std::find(outcomes.begin(), outcomes.end(), Verdict::DoesNotFit) == outcomes.end();
}

std::vector<std::int32_t> satisfying(const Verdicts& outcomes) {
  std::vector<std::int32_t> ids;
  for (std::size_t i = 0; i < outcomes.size(); ++i) {
    if (outcomes[i] == Verdict::Satisfied) {
      ids.push_back(static_cast<std::int32_t>(i));
    }
  }
  return ids;
}

bool isBlank(const std::string& text) {
  return text.find_first_not_of(" \t\r\n") == std::string::npos;
}

/// Filter shows the rows that satisfy the criteria, or throws and leaves the rows as they were.
void checkFilter(const std::string& text, const std::optional<Verdicts>& outcomes,
                 Recordset& recordset) {
  const std::int64_t before = recordset.recordCount();
  try {
    recordset.setFilter(text);
  } catch (const Error&) {
    require(!isBlank(text) && (!outcomes || !fits(*outcomes)), "a good filter is taken", text);
    require(recordset.recordCount() == before, "a refused filter changes nothing", text);
    return;
  }
  require(isBlank(text) || (outcomes && fits(*outcomes)), "a bad filter is refused", text);
  std::vector<std::int32_t> shown;
  for (; !recordset.atEnd(); recordset.moveNext()) {
    shown.push_back(currentId(recordset));
  }
  require(isBlank(text) || shown == satisfying(*outcomes), "a filter shows the rows it means",
          text);
  recordset.setFilter("");
  require(recordset.recordCount() == before, "no filter shows all rows", text);
}

/// Find meets the rows that satisfy the comparison one after the other, in both directions.
void checkFind(const std::string& text, const Verdicts& outcomes, Recordset& recordset) {
  for (const auto direction : {SearchDirection::Forward, SearchDirection::Backward}) {
    const bool forward = direction == SearchDirection::Forward;
    std::vector<std::int32_t> found;
    try {
      recordset.find(text, 0, direction, forward ? Bookmark::First : Bookmark::Last);
      while (!recordset.atEnd() && !recordset.atStart()) {
        found.push_back(currentId(recordset));
        recordset.find(text, 1, direction, Bookmark::Current);
      }
    } catch (const Error&) {
      require(!fits(outcomes), "a search that fits does not fail", text);
      continue;
    }
    if (!forward) {
      std::reverse(found.begin(), found.end());
    }
    require(found == satisfying(outcomes), "a search meets the rows it means", text);
  }
}

void checkCriteria(const std::string& text, const std::vector<Row>& rows) {
  const std::shared_ptr<Recordset> recordset = openRows(rows);
  const std::optional<Verdicts> filter = filtered(text, rows);
  checkFilter(text, filter, *recordset);
  const std::optional<Verdicts> search = searched(text, rows);
  if (!search) {
    return;
  }
  require(filter == search, "a search is a filter of one comparison", text);
  checkFind(text, *search, *recordset);
  for (const std::string& other :
       {"(" + text + ")", text + " AND " + text, "(" + text + ") OR (" + text + ")",
        "(" + text + ") AND (" + text + ")"}) {
    require(filtered(other, rows) == filter, "the same criteria in other words", other);
  }
}

/// LIKE by trying everything, without regard to time.
bool fitsPattern(std::string_view text, std::string_view pattern) {
  std::vector<bool> fits(text.size() + 1, false);  // of the pattern so far, by the text's length
  fits[0] = true;
  for (const char step : pattern) {
    std::vector<bool> next(text.size() + 1, false);
    const bool wildcard = step == '*' || step == '%';
    for (std::size_t i = 0; i <= text.size(); ++i) {
      next[i] = wildcard ? fits[i] || (i > 0 && next[i - 1])
                         : i > 0 && fits[i - 1] && text[i - 1] == step;
    }
    fits = std::move(next);
  }
  return fits.back();
}

Verdicts compared(std::size_t column, const char* comparator, const std::string& literal,
                  const std::vector<Row>& rows) {
  std::string name = kColumns[column];
  for (std::size_t at = name.find(']'); at != std::string::npos; at = name.find(']', at + 2)) {
    name.insert(at, 1, ']');
  }
  const std::string text = "[" + name + "] " + comparator + " " + literal;
  const std::optional<Verdicts> outcomes = searched(text, rows);
  require(outcomes.has_value(), "a comparison with a text is understood", text);
  return *outcomes;
}

/// The comparisons of a column with a value fit together.
void checkComparisons(std::size_t column, const std::string& value, const std::vector<Row>& rows) {
  const std::string literal = "'" + doubled(value, '\'') + "'";
  const Verdicts less = compared(column, "<", literal, rows);
  const Verdicts equal = compared(column, "=", literal, rows);
  const Verdicts greater = compared(column, ">", literal, rows);
  const Verdicts notEqual = compared(column, "<>", literal, rows);
  const Verdicts lessOrEqual = compared(column, "<=", literal, rows);
  const Verdicts greaterOrEqual = compared(column, ">=", literal, rows);
  const Verdicts like = compared(column, "LIKE", literal, rows);
  for (std::size_t i = 0; i < rows.size(); ++i) {
    const Variant& cell = rows[i][column];
    if (cell.isNull()) {
      for (const Verdicts& outcomes :
           {less, equal, greater, notEqual, lessOrEqual, greaterOrEqual, like}) {
        require(outcomes[i] == Verdict::NotSatisfied, "Null satisfies no comparison", value);
      }
      continue;
    }
    const auto is = [i](const Verdicts& outcomes) { return outcomes[i] == Verdict::Satisfied; };
    const std::string pattern = foldCase(value);
    require(is(like) == fitsPattern(foldCase(cell.text()), pattern), "LIKE fits", value);
    if (less[i] == Verdict::DoesNotFit) {
      for (const Verdicts& outcomes : {equal, greater, notEqual, lessOrEqual, greaterOrEqual}) {
        require(outcomes[i] == Verdict::DoesNotFit, "all comparisons fit or none", value);
      }
      continue;
    }
    require(is(less) + is(equal) + is(greater) == 1, "one of <, =, > holds", value);
    require(is(notEqual) != is(equal), "<> is the opposite of =", value);
    require(is(lessOrEqual) == (is(less) || is(equal)), "<= is < or =", value);
    require(is(greaterOrEqual) == (is(greater) || is(equal)), ">= is > or =", value);
  }
}

/// The lines of a text, the last one without line break.
std::vector<std::string> linesOf(std::string_view text) {
  std::vector<std::string> lines;
  for (std::size_t at = 0; at <= text.size();) {
    const std::size_t end = std::min(text.find('\n', at), text.size());
    lines.emplace_back(text.substr(at, end - at));
    at = end + 1;
  }
  return lines;
}

}  // namespace

void criteria(std::string_view input) {
  std::vector<std::string> values = linesOf(input);
  const std::string text = values.front();
  values.erase(values.begin());
  values.resize(std::min(values.size(), kMostValues));
  const std::vector<Row> rows = rowsOf(values);
  checkCriteria(text, rows);
  for (std::size_t v = 0; v < values.size(); ++v) {
    for (std::size_t column = 0; column < kColumns.size(); ++column) {
      checkComparisons(column, values[v], rows);
    }
    const std::string literal = "'" + doubled(values[v], '\'') + "'";
    const std::size_t own = rows.size() - values.size() + v;
    require(compared(kTextColumn, "=", literal, rows)[own] == Verdict::Satisfied,
            "a text equals itself", values[v]);
  }
}

}  // namespace azcoll::fuzz
