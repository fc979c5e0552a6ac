#include "odbc/select_shape.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <iterator>
#include <span>
#include <utility>

#include "odbc/sql_words.h"
#include "text/letter_case.h"

namespace azcoll::odbc {
namespace {

using Words = std::span<const SqlWord>;

template <std::size_t N>
bool isAnyOf(const SqlWord& word, const std::array<std::string_view, N>& keywords) {
  return std::any_of(keywords.begin(), keywords.end(),
                     [&](std::string_view keyword) { return word.is(keyword); });
}

// A query with one of these is not a plain one; so is a second SELECT of the same depth.
constexpr std::array<std::string_view, 12> kNotPlain{"UNION",   "EXCEPT",   "INTERSECT", "INTO",
                                                     "GROUP",   "DISTINCT", "FOR",       "PIVOT",
                                                     "UNPIVOT", "OPENXML",  "OPTION",    "COMPUTE"};
constexpr std::array<std::string_view, 3> kAfterFrom{"WHERE", "ORDER", "HAVING"};
// Between two sources, and before a condition.
constexpr std::array<std::string_view, 10> kJoinWords{"INNER", "LEFT", "RIGHT", "FULL", "OUTER",
                                                      "CROSS", "JOIN", "APPLY", "HASH", "LOOP"};

/// The words of depth 0 that `part` holds, the contents of parentheses left out.
std::vector<SqlWord> outermost(Words part) {
  std::vector<SqlWord> words;
  std::copy_if(part.begin(), part.end(), std::back_inserter(words),
               [](const SqlWord& word) { return word.depth == 0; });
  return words;
}

template <typename Test>
std::vector<Words> splitAt(Words words, Test separates) {
  std::vector<Words> parts;
  std::size_t start = 0;
  for (std::size_t at = 0; at < words.size(); ++at) {
    if (words[at].depth == 0 && separates(words[at])) {
      parts.push_back(words.subspan(start, at - start));
      start = at + 1;
    }
  }
  parts.push_back(words.subspan(start));
  return parts;
}

SelectItem itemOf(Words words) {
  SelectItem item;
  if (words.size() == 1 && words[0].isSign('*')) {
    item.kind = SelectItem::Kind::AllColumns;
    return item;
  }
  const bool qualified = words.size() >= 3 && words[0].isName() && words[1].isSign('.');
  if (qualified && words.size() == 3 && words[2].isSign('*')) {
    item.kind = SelectItem::Kind::AllColumns;
    item.qualifier = words[0].text;
    return item;
  }
  // A name of its own for the column, with AS or without, changes nothing of where it comes from.
  Words rest = qualified ? words.subspan(2) : words;
  const bool named = rest.size() == 1 || (rest.size() == 2 && rest[1].isName()) ||
                     (rest.size() == 3 && rest[1].is("AS"));
  const bool isColumn = !rest.empty() && rest[0].isName() && !rest[0].text.starts_with('@') &&
                        !rest[0].is("NULL") && !rest[0].is("CASE");
  if (named && isColumn) {
    item.kind = SelectItem::Kind::Column;
    item.qualifier = qualified ? words[0].text : std::string{};
    item.column = rest[0].text;
  }
  return item;
}

/// A source up to its join condition. A name followed by a parenthesis is a function, unless it is
/// the hint of a table.
SelectSource sourceOf(Words words) {
  SelectSource source;
  Words rest = words;
  const bool table = !rest.empty() && rest[0].isName();
  if (table) {
    rest = rest.subspan(1);
  }
  const bool plain = table && (rest.empty() || (!rest[0].isSign('.') && !rest[0].isSign('(')));
  if (plain) {
    source.name = words[0].text;
    source.alias = source.name;
    if (!rest.empty() && rest[0].is("AS")) {
      rest = rest.subspan(1);
    }
    if (!rest.empty() && rest[0].isName() && !rest[0].is("WITH") && !rest[0].is("ON")) {
      source.alias = rest[0].text;
    }
  }
  return source;
}

bool beginsSource(const SqlWord& word) {
  return word.isSign(',') || word.is("JOIN") || word.is("APPLY");
}

std::vector<SelectSource> sourcesOf(Words words) {
  std::vector<SelectSource> sources;
  for (const Words part : splitAt(words, beginsSource)) {
    // Commas of a condition stand in parentheses; the words of the next join end this source.
    const auto end = std::find_if(part.begin(), part.end(),
                                  [](const SqlWord& word) { return isAnyOf(word, kJoinWords); });
    sources.push_back(
        sourceOf(part.subspan(0, static_cast<std::size_t>(std::distance(part.begin(), end)))));
  }
  return sources;
}

std::optional<SelectShape> shapeOf(Words words) {
  const std::vector<SqlWord> outer = outermost(words);
  if (outer.empty() || !outer.front().is("SELECT")) {
    return std::nullopt;
  }
  std::vector<SqlWord> rest(outer.begin() + 1, outer.end());
  const auto notPlain = [](const SqlWord& word) {
    return word.is("SELECT") || isAnyOf(word, kNotPlain);
  };
  if (std::any_of(rest.begin(), rest.end(), notPlain)) {
    return std::nullopt;
  }
  if (!rest.empty() && rest.front().is("TOP")) {
    // TOP 1, or TOP ( … ) of which the parentheses are left
    const std::size_t length = rest.size() > 2 && rest[1].isSign('(') ? 3 : 2;
    rest.erase(rest.begin(),
               rest.begin() + static_cast<std::ptrdiff_t>(std::min(length, rest.size())));
  }
  const Words all{rest};
  const auto positionOf = [&](auto test) {
    const auto found = std::find_if(all.begin(), all.end(), test);
    return static_cast<std::size_t>(std::distance(all.begin(), found));
  };
  const std::size_t from = positionOf([](const SqlWord& word) { return word.is("FROM"); });
  if (from == all.size()) {
    return std::nullopt;
  }
  const std::size_t end = positionOf([](const SqlWord& word) { return isAnyOf(word, kAfterFrom); });
  if (end < from) {
    return std::nullopt;
  }
  SelectShape shape;
  for (const Words item :
       splitAt(all.first(from), [](const SqlWord& word) { return word.isSign(','); })) {
    shape.items.push_back(itemOf(item));
  }
  shape.sources = sourcesOf(all.subspan(from + 1, end - from - 1));
  return shape;
}

}  // namespace

std::vector<SelectShape> selectShapes(std::string_view batch) {
  const std::vector<SqlWord> words = wordsOf(batch);
  std::vector<SelectShape> shapes;
  for (const Words query :
       splitAt(Words{words}, [](const SqlWord& word) { return word.isSign(';'); })) {
    if (query.empty()) {
      continue;
    }
    std::optional<SelectShape> shape = shapeOf(query);
    if (!shape) {
      return {};
    }
    shapes.push_back(std::move(*shape));
  }
  return shapes;
}

bool onlyReads(std::string_view batch) {
  // Everything that begins a statement with an effect, and what a query can do beside reading.
  static constexpr std::array<std::string_view, 47> kEffects{
      "INTO",      "NEXT",        "OPENQUERY",  "OPENROWSET", "OPENDATASOURCE", "INSERT",
      "UPDATE",    "DELETE",      "MERGE",      "TRUNCATE",   "CREATE",         "ALTER",
      "DROP",      "EXEC",        "EXECUTE",    "SET",        "DECLARE",        "BEGIN",
      "COMMIT",    "ROLLBACK",    "SAVE",       "USE",        "BULK",           "GRANT",
      "REVOKE",    "DENY",        "BACKUP",     "RESTORE",    "KILL",           "DBCC",
      "RECEIVE",   "SEND",        "MOVE",       "WRITETEXT",  "UPDATETEXT",     "PRINT",
      "RAISERROR", "THROW",       "WAITFOR",    "FETCH",      "OPEN",           "CLOSE",
      "SHUTDOWN",  "RECONFIGURE", "CHECKPOINT", "ENABLE",     "DISABLE"};
  constexpr std::string_view kBlanks = " \t\r\n";
  const std::size_t start = batch.find_first_not_of(kBlanks);
  if (start == std::string_view::npos || !equalsIgnoringCase(batch.substr(start, 6), "SELECT")) {
    return false;  // most others, without a look at all their words
  }
  const std::vector<SqlWord> words = wordsOf(batch);
  return !words.empty() && words.front().is("SELECT") &&
         std::none_of(words.begin(), words.end(),
                      [](const SqlWord& word) { return isAnyOf(word, kEffects); });
}

bool leavesTablesAlone(std::string_view batch) {
  static constexpr std::array<std::string_view, 9> kChanging{
      "CREATE", "ALTER", "DROP", "EXEC", "EXECUTE", "INTO", "SP_RENAME", "TRUNCATE", "USE"};
  const std::vector<SqlWord> words = wordsOf(batch);
  for (std::size_t at = 0; at < words.size(); ++at) {
    const bool insertInto = words[at].is("INTO") && at > 0 && words[at - 1].is("INSERT");
    if (!insertInto && isAnyOf(words[at], kChanging)) {
      return false;
    }
  }
  // A batch may also begin with the name of a procedure.
  static constexpr std::array<std::string_view, 8> kKnown{"SELECT",  "INSERT", "UPDATE", "DELETE",
                                                          "DECLARE", "IF",     "SET",    "WITH"};
  return words.empty() || isAnyOf(words.front(), kKnown);
}

}  // namespace azcoll::odbc
