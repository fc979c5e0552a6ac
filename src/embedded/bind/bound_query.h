#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "embedded/bind/scope.h"
#include "embedded/values/types.h"
#include "tsql/ast.h"

namespace azcoll::embedded {

/// A column of a query's result.
struct OutputColumn {
  std::string name;
  bool named = false;
  BoundExpression expression;
  std::string printed;  ///< the item as T-SQL, where ORDER BY may repeat it
  tsql::Position position;
  std::string sql;  ///< final text, once the types are fixed
  Type type;        ///< final type
};

/// An equality between the query and those around it, taken out of its condition.
struct Correlation {
  std::string inner;
  std::string outer;
};

/// One SELECT, in parts.
struct BoundSelect {
  bool distinct = false;
  std::vector<OutputColumn> columns;
  std::string from;
  std::string where;
  /// Conditions of which one must hold with `where`: apart, each is found by its own index.
  std::vector<std::string> alternatives;
  std::string groupBy;
  std::string having;
  std::string orderBy;
  std::string limit;
  bool grouped = false;
  bool oneGroup = false;  ///< one row over all rows, although no column has an aggregate
  bool atMostOneRow = false;
  bool correlated = false;  ///< what is left depends on the queries around it
  std::vector<Correlation> correlations;
  std::uint64_t correlationLevels = 0;  ///< scopes that the correlations refer to, a bit each
  std::vector<std::size_t> assigned;    ///< variables of SELECT @v = …, one for each column
  Reach reach;                          ///< beyond the SELECT itself
};

/// A query: one SELECT, or a set operation of two queries.
struct BoundQuery {
  std::unique_ptr<BoundSelect> select;
  tsql::SetOperator op = tsql::SetOperator::Union;
  std::unique_ptr<BoundQuery> left;
  std::unique_ptr<BoundQuery> right;
  std::string orderBy;  ///< of a set operation

  /// The result's columns; of a set operation those of its first SELECT.
  [[nodiscard]] std::vector<OutputColumn>& columns() {
    return select ? select->columns : left->columns();
  }
  /// Beyond the query itself.
  [[nodiscard]] Reach reach() const {
    return select ? select->reach : left->reach() | right->reach();
  }
  [[nodiscard]] bool atMostOneRow() const { return select && select->atMostOneRow; }
};

/// Adds a source to a FROM clause. Throws `SqlError` 1011 or 1013 for a name that is there already.
void addSource(Scope& scope, Source source);
/// Gives a source the columns of a query. Throws `SqlError` 8155 or 8156 for their names.
void describeDerived(BoundQuery& query, Source& source);

/// The SQLite text of a query whose types are fixed; its columns are called c1, c2 …
[[nodiscard]] std::string render(const BoundQuery& query);
[[nodiscard]] std::string render(const BoundSelect& select);

/// The SELECT without its column list, from FROM on.
[[nodiscard]] std::string renderTail(const BoundSelect& select);

}  // namespace azcoll::embedded
