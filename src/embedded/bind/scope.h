#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <unordered_map>
#include <utility>
#include <vector>

#include "embedded/catalogue/catalogue.h"
#include "embedded/plan/slots.h"
#include "embedded/values/types.h"

namespace azcoll::embedded {

/// What a bound text takes from the queries around it. Texts are put together from texts, and their
/// reaches are joined on the way up.
struct Reach {
  std::uint64_t levels = 0;  ///< the scopes that its columns were found in, a bit each
  bool argument = false;     ///< a parameter of a function that stands for a column is in it
};
[[nodiscard]] inline Reach operator|(const Reach& left, const Reach& right) {
  return {left.levels | right.levels, left.argument || right.argument};
}
inline Reach& operator|=(Reach& reach, const Reach& more) { return reach = reach | more; }

/// The column of a table that a value comes from unchanged.
struct Origin {
  std::shared_ptr<const Table> table;
  std::size_t column = 0;
};

/// A bound expression. As long as `pending` is set it is a constant, variable or marker that has no
/// text yet: what it meets decides the type to which it is converted when it is bound.
struct BoundExpression {
  std::string sql;
  Type type;
  std::optional<Slot> pending;
  const tsql::Literal* literal = nullptr;  ///< of a pending constant
  bool isColumn = false;                   ///< a plain column: it brings its collation along
  std::optional<Origin> origin;
  Reach reach;
};

/// An expression that SQLite evaluates; `reach` is that of its operands.
[[nodiscard]] inline BoundExpression computed(std::string sql, const Type& type,
                                              const Reach& reach) {
  BoundExpression bound;
  bound.sql = std::move(sql);
  bound.type = type;
  bound.reach = reach;
  return bound;
}

/// A bound condition.
struct BoundCondition {
  std::string sql;
  Reach reach;
  std::optional<bool> constant{};  ///< the outcome of comparing two constants
  /// Of `(column …)` with a bare column: the column's text, and what follows it up to the bracket.
  std::string column{};
  std::string test{};
};

/// The text of a FROM clause, or of a part of one.
struct BoundSources {
  std::string sql;
  Reach reach;
};

/// A column of a derived table, of an inlined function or of another source that is not a table.
struct SourceColumn {
  std::string name;
  std::string sql;
  Type type;
  std::optional<Origin> origin;
};

/// One source of a FROM clause.
struct Source {
  std::string name;                    ///< exposed name, as written
  std::string folded;                  ///< the same, folded
  bool hasAlias = false;               ///< whether the exposed name is an alias
  std::string sqlName;                 ///< its name in the SQLite text
  std::shared_ptr<const Table> table;  ///< of a table; null for everything else
  std::vector<SourceColumn> columns;   ///< of everything else
  std::unordered_map<std::string, std::size_t> byName;

  [[nodiscard]] std::size_t columnCount() const {
    return table ? table->columns.size() : columns.size();
  }
  [[nodiscard]] const std::string& columnName(std::size_t index) const {
    return table ? table->columns[index].name : columns[index].name;
  }
  [[nodiscard]] std::optional<std::size_t> find(const std::string& foldedName) const;
  /// The column as an expression.
  [[nodiscard]] BoundExpression column(std::size_t index) const;
};

/// The keys of a grouped query.
struct Grouping {
  std::set<std::string> columns;  ///< SQLite texts of the columns that are keys
  std::set<std::string> printed;  ///< T-SQL texts of the others
};

struct Scope;

/// Where in a query an expression stands; it decides what may stand there.
struct Clause {
  const Scope& scope;
  const Grouping* grouping = nullptr;  ///< a column that is none of its keys must be aggregated
  bool aggregates = false;             ///< aggregates may stand here
  int number = 8120;                   ///< the message about a column that is not a key
  std::string_view name = "select list";
};

/// Scopes beyond the last bit of a set of scopes share that bit.
inline constexpr std::size_t kLastLevelBit = 63;

/// The bit of a scope in a set of scopes.
[[nodiscard]] constexpr std::uint64_t levelBit(std::size_t level) {
  return std::uint64_t{1} << (level < kLastLevelBit ? level : kLastLevelBit);
}

/// The bits of all scopes outside of `level`; all bits where they share one.
[[nodiscard]] constexpr std::uint64_t outerLevels(std::size_t level) {
  return level >= kLastLevelBit ? ~std::uint64_t{0} : levelBit(level) - 1;
}

/// The sources of a query, in which names are looked up, and then in those around it.
struct Scope {
  const Clause* parent = nullptr;  ///< where the query itself stands
  std::size_t level = 0;
  std::vector<Source> sources;
  std::size_t visibleFrom = 0;  ///< an ON clause sees the sources of its own join only
  /// What WHERE demands of a column by constants alone: `test` of a condition by its `column`.
  std::unordered_multimap<std::string, std::string> constantFilters;

  explicit Scope(const Clause* outer)
      : parent(outer), level(outer == nullptr ? 0 : outer->scope.level + 1) {}
};

}  // namespace azcoll::embedded
