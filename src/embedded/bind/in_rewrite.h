#pragma once

#include "embedded/bind/bound_query.h"
#include "embedded/bind/expression_binder.h"
#include "embedded/bind/names.h"
#include "embedded/bind/scope.h"
#include "tsql/ast.h"

namespace azcoll::embedded {

/// Turns the correlated query of an IN into one that SQLite answers once: its equalities with the
/// query around it become parts of a row value,
/// `A IN (SELECT B FROM T WHERE K = outer.K)` → `(A, outer.K) IN (SELECT B, K FROM T)`.
class InRewrite {
 public:
  InRewrite(const Names& names, ExpressionBinder& expressions)
      : names_(names), expressions_(expressions) {}

  /// Takes a part of the query's WHERE out of it where that is possible; otherwise nothing is
  /// bound.
  bool take(const tsql::Expression& conjunct, const Clause& clause, BoundSelect& select) {
    return takeCorrelation(conjunct, clause, select) || takeAlternatives(conjunct, clause, select);
  }

  /// When the whole query is bound: what cannot stay out of the condition goes back into it.
  static void putBack(BoundSelect& select);

  /// Records, in the scope of any query, what a part of its WHERE demands of a column.
  static void noteConstantFilter(const tsql::Expression& conjunct, const BoundCondition& condition,
                                 Scope& scope);
  /// Passes to an inner query the constant conditions on the outer columns it is equated with.
  static void addConstantFilters(const Clause* outer, BoundSelect& select);

 private:
  bool takeCorrelation(const tsql::Expression& conjunct, const Clause& clause, BoundSelect& select);
  bool takeAlternatives(const tsql::Expression& conjunct, const Clause& clause,
                        BoundSelect& select);

  const Names& names_;
  ExpressionBinder& expressions_;
};

}  // namespace azcoll::embedded
