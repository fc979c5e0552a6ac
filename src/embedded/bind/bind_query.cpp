#include <algorithm>
#include <utility>

#include "data/decimal.h"
#include "embedded/bind/ast_walk.h"
#include "embedded/bind/bound_query.h"
#include "embedded/bind/in_rewrite.h"
#include "embedded/bind/query_binder.h"
#include "embedded/bind/scope.h"
#include "embedded/sqlite/sql_text.h"
#include "embedded/values/conversions.h"
#include "embedded/values/literals.h"
#include "embedded/values/sql_error.h"
#include "embedded/values/types.h"
#include "embedded/values/value.h"
#include "text/joining.h"
#include "text/letter_case.h"
#include "tsql/printer.h"

namespace azcoll::embedded {

namespace {

/// The parts of a condition that are joined by AND.
void splitConjuncts(const tsql::Expression& condition,
                    std::vector<const tsql::Expression*>& conjuncts) {
  const auto* const binary = std::get_if<tsql::Binary>(&condition.node);
  if (binary != nullptr && binary->op == tsql::BinaryOperator::And) {
    splitConjuncts(*binary->left, conjuncts);
    splitConjuncts(*binary->right, conjuncts);
  } else {
    conjuncts.push_back(&condition);
  }
}

bool selectsAggregate(const tsql::QuerySpecification& specification) {
  return std::any_of(
      specification.items.begin(), specification.items.end(),
      [](const tsql::SelectItem& item) { return containsAggregate(*item.expression); });
}

bool aggregates(const tsql::QuerySpecification& specification, const tsql::Query& query) {
  return selectsAggregate(specification) || specification.having != nullptr ||
         std::any_of(query.orderBy.begin(), query.orderBy.end(), [](const tsql::OrderItem& item) {
           return containsAggregate(*item.expression);
         });
}

}  // namespace

BoundQuery QueryBinder::bindQuery(const tsql::Query& query, const Clause* outer,
                                  const QueryUse& use) {
  // An UPDATE with a query inside is written in another way (updateByKey).
  ++translation_.queries;
  const auto* const specification = std::get_if<tsql::QuerySpecification>(&query.body);
  if (!query.orderBy.empty() && use.orderNeedsTop &&
      (specification == nullptr || !specification->top)) {
    throw SqlError(1033,
                   "The ORDER BY clause is invalid in views, inline functions, derived "
                   "tables, subqueries, and common table expressions, unless TOP, OFFSET or "
                   "FOR XML is also specified.");
  }
  if (specification == nullptr) {
    return bindSetOperation(std::get<tsql::SetOperation>(query.body), query, outer);
  }
  BoundQuery bound;
  bound.select = std::make_unique<BoundSelect>();
  bindSpecification(*specification, query, outer, use, *bound.select);
  return bound;
}

BoundQuery QueryBinder::bindSetOperation(const tsql::SetOperation& operation,
                                         const tsql::Query& query, const Clause* outer) {
  BoundQuery bound;
  bound.op = operation.op;
  bound.left = std::make_unique<BoundQuery>(bindQuery(*operation.left, outer, {}));
  bound.right = std::make_unique<BoundQuery>(bindQuery(*operation.right, outer, {}));
  if (bound.left->columns().size() != bound.right->columns().size()) {
    throw SqlError(205,
                   "All queries combined using a UNION, INTERSECT or EXCEPT operator must have "
                   "an equal number of expressions in their target lists.");
  }
  orderSetOperation(query, bound);
  return bound;
}

void QueryBinder::bindSpecification(const tsql::QuerySpecification& specification,
                                    const tsql::Query& query, const Clause* outer,
                                    const QueryUse& use, BoundSelect& select) {
  // FROM first: all other clauses look their names up in its sources.
  Scope scope(outer);
  select.distinct = specification.distinct;
  BoundSources sources = bindSources(specification.from, scope);
  select.from = std::move(sources.sql);
  select.reach = sources.reach;
  const bool grouped = !specification.groupBy.empty() || aggregates(specification, query);
  // A condition taken out of WHERE would change the rows that groups, TOP and DISTINCT work on.
  const bool plain = !grouped && !specification.top && !specification.distinct;
  if (specification.where) {
    bindWhere(*specification.where, scope, plain ? use : QueryUse{}, select);
  }
  Grouping grouping;
  bindGroupBy(specification, Clause{scope}, grouping, select);
  select.grouped = grouped;
  // HAVING alone makes one group, which SQLite sees only where the list has an aggregate.
  select.oneGroup = grouped && specification.groupBy.empty() && !selectsAggregate(specification);
  Clause clause{scope};
  clause.grouping = grouped ? &grouping : nullptr;
  clause.aggregates = grouped;
  bindItems(specification, clause, use, select);
  if (specification.having) {
    // Each clause has a number of its own for a column that is neither grouped nor aggregated.
    clause.number = 8121;
    clause.name = "HAVING clause";
    BoundCondition having =
        expressions_.bindCondition(*specification.having, clause, Unknown::AsFalse);
    select.reach |= having.reach;
    select.having = std::move(having.sql);
  }
  if (specification.top) {
    bindTop(*specification.top, select);
  }
  clause.number = 8127;
  clause.name = "ORDER BY clause";
  bindOrderBy(query, clause, select);
  // Such a query needs no check that it gives a single value (512).
  const bool oneRow = specification.from.empty() || (grouped && specification.groupBy.empty());
  select.atMostOneRow = select.atMostOneRow || oneRow;
  // Only now is it known whether anything but the equations taken out refers to the queries around.
  const std::uint64_t outside = select.reach.levels & outerLevels(scope.level);
  select.correlated = outside != 0;
  InRewrite::putBack(select);
  InRewrite::addConstantFilters(outer, select);
  select.reach.levels = outside | select.correlationLevels;
}

// ---------------------------------------------------------------- the select list

void QueryBinder::bindItems(const tsql::QuerySpecification& specification, const Clause& clause,
                            const QueryUse& use, BoundSelect& select) {
  for (const tsql::SelectItem& item : specification.items) {
    // Either all items assign or none does.
    if (item.assignTo.empty() == use.assigns) {
      throw SqlError(141,
                     "A SELECT statement that assigns a value to a variable must not be "
                     "combined with data-retrieval operations.");
    }
    if (const auto* const star = std::get_if<tsql::Star>(&item.expression->node)) {
      expandStar(*star, clause, select);
      continue;
    }
    OutputColumn column;
    column.expression = expressions_.bind(*item.expression, clause);
    select.reach |= column.expression.reach;
    column.position = item.position;
    const auto* const reference = std::get_if<tsql::ColumnReference>(&item.expression->node);
    column.named = item.hasAlias || reference != nullptr;
    if (item.hasAlias) {
      column.name = item.alias;
    } else if (reference != nullptr) {
      column.name = reference->name.parts.back();
    }
    column.printed = foldCase(tsql::print(*item.expression));
    if (use.assigns) {
      select.assigned.push_back(names_.variableIndex(item.assignTo));
    }
    select.columns.push_back(std::move(column));
  }
}

void QueryBinder::expandStar(const tsql::Star& star, const Clause& clause, BoundSelect& select) {
  const std::string wanted =
      star.qualifier.parts.empty() ? "" : foldCase(star.qualifier.parts.back());
  bool found = false;
  // Written out: SQLite's star would also give the column that holds the rowid of a table without a
  // key.
  for (const Source& source : clause.scope.sources) {
    if (!wanted.empty() && source.folded != wanted) {
      continue;
    }
    found = true;
    for (std::size_t i = 0; i < source.columnCount(); ++i) {
      OutputColumn column;
      column.expression = names_.columnOf(source, i, clause);
      select.reach |= column.expression.reach;
      column.name = source.columnName(i);
      column.named = true;
      column.printed = source.folded + "." + foldCase(column.name);
      select.columns.push_back(std::move(column));
    }
  }
  if (!found && wanted.empty()) {
    throw SqlError(263, "Must specify table to select from.");
  }
  if (!found) {
    throw SqlError(107, "The column prefix '" + star.qualifier.parts.back() +
                            "' does not match with a table name or alias name used in the query.");
  }
}

// ---------------------------------------------------------------- conditions and groups

void QueryBinder::bindWhere(const tsql::Expression& condition, Scope& scope, const QueryUse& use,
                            BoundSelect& select) {
  std::vector<const tsql::Expression*> conjuncts;
  splitConjuncts(condition, conjuncts);
  const Clause clause{scope};
  InRewrite rewrite(names_, expressions_);
  for (const tsql::Expression* const conjunct : conjuncts) {
    if (use.in == nullptr || !rewrite.take(*conjunct, clause, select)) {
      const BoundCondition bound = expressions_.bindCondition(*conjunct, clause, Unknown::AsFalse);
      InRewrite::noteConstantFilter(*conjunct, bound, scope);
      select.reach |= bound.reach;
      select.where += (select.where.empty() ? "" : " AND ") + bound.sql;
    }
  }
}

/// What a query groups or orders by. SQLite looks for the columns of it in the query itself, never
/// in those around it.
BoundExpression QueryBinder::bindKey(const tsql::Expression& key, const Clause& clause, KeyOf use) {
  BoundExpression bound = expressions_.bind(key, clause);
  const std::size_t level = clause.scope.level;
  if (use == KeyOf::GroupBy && (bound.reach.levels & levelBit(level)) == 0) {
    throw SqlError(164,
                   "Each GROUP BY expression must contain at least one column that is not an "
                   "outer reference.");
  }
  if ((bound.reach.levels & outerLevels(level)) != 0 || bound.reach.argument) {
    refuse(context_.text, key.position,
           std::string(use == KeyOf::GroupBy ? "GROUP BY" : "ORDER BY") +
               " with a column of an outer query");
  }
  return bound;
}

void QueryBinder::bindGroupBy(const tsql::QuerySpecification& specification, const Clause& clause,
                              Grouping& grouping, BoundSelect& select) {
  select.groupBy = joinAll(specification.groupBy, ",", [&](const tsql::ExpressionPtr& key) {
    BoundExpression bound = bindKey(*key, clause, KeyOf::GroupBy);
    std::string sql = constants_.inOwnType(bound);
    if (bound.isColumn) {
      grouping.columns.insert(sql);
    } else {
      // The list repeats an expression by its text.
      grouping.printed.insert(foldCase(tsql::print(*key)));
      // Groups are formed by the collation, which an expression has lost.
      if (bound.type.isText()) {
        sql += kCollateClause;
      }
    }
    return sql;
  });
}

void QueryBinder::bindTop(const tsql::Top& top, BoundSelect& select) {
  const auto* const literal = std::get_if<tsql::Literal>(&top.count->node);
  if (literal != nullptr && literal->kind == tsql::LiteralKind::Integer) {
    // One row at most is a property of the plan, so the number is part of it.
    constants_.guardText(*literal);
    const Type type = literalType(literal->kind, literal->text);
    const Value count = literalValue(literal->kind, literal->text, type);
    const Value rows = convert(count, type, kBigInt, Conversion::Cut);
    select.limit = sqliteConstant(rows);
    select.atMostOneRow = rows.integer <= 1;
    return;
  }
  const Scope nothing(nullptr);
  BoundExpression count = expressions_.bind(*top.count, Clause{nothing});
  select.reach |= count.reach;
  constants_.requireConvertible(count.type, kBigInt, top.count->position);
  // Checked when it runs: SQLite takes a negative LIMIT for none.
  select.limit = "ts_top(" + constants_.coerce(count, kBigInt, Conversion::Cut) + ")";
}

// ---------------------------------------------------------------- order

/// The output column that an item of ORDER BY names by its position or by its name.
std::optional<std::size_t> QueryBinder::outputPosition(const tsql::Expression& expression,
                                                       const std::vector<OutputColumn>& columns) {
  if (const auto* const literal = std::get_if<tsql::Literal>(&expression.node)) {
    if (literal->kind != tsql::LiteralKind::Integer) {
      throw SqlError(408,
                     "A constant expression was encountered in the ORDER BY list, position 1.");
    }
    // The plan holds for this position only.
    constants_.guardText(*literal);
    const auto number = Decimal::parse(literal->text);
    const auto position = number ? number->toInteger() : std::nullopt;
    if (!position || *position < 1 || *position > static_cast<std::int64_t>(columns.size())) {
      throw SqlError(108, "The ORDER BY position number " + literal->text +
                              " is out of range of the number of items in the select list.");
    }
    return static_cast<std::size_t>(*position - 1);
  }
  const auto* const reference = std::get_if<tsql::ColumnReference>(&expression.node);
  if (reference == nullptr || reference->name.parts.size() != 1) {
    return std::nullopt;
  }
  const std::string wanted = foldCase(reference->name.parts.front());
  std::optional<std::size_t> found;
  for (std::size_t i = 0; i < columns.size(); ++i) {
    if (columns[i].named && foldCase(columns[i].name) == wanted) {
      const bool same = found && columns[i].expression.isColumn &&
                        columns[*found].expression.sql == columns[i].expression.sql;
      if (found && !same) {
        throw SqlError(209, "Ambiguous column name '" + reference->name.parts.front() + "'.");
      }
      found = found ? found : i;
    }
  }
  return found;
}

std::string QueryBinder::bindOrderItem(const tsql::OrderItem& item, const Clause& clause,
                                       BoundSelect& select) {
  // By its number: in SQLite's text the columns have other names (c1, c2 …).
  if (const auto position = outputPosition(*item.expression, select.columns)) {
    return std::to_string(*position + 1);
  }
  const bool checks = select.distinct;
  const std::string printed = checks ? foldCase(tsql::print(*item.expression)) : "";
  BoundExpression bound = bindKey(*item.expression, clause, KeyOf::OrderBy);
  // SQLite would sort by the constant, that is not at all.
  if (bound.pending) {
    throw SqlError(408, "A constant expression was encountered in the ORDER BY list, position 1.");
  }
  if (checks) {
    for (std::size_t i = 0; i < select.columns.size(); ++i) {
      const OutputColumn& column = select.columns[i];
      if (column.printed == printed ||
          (bound.isColumn && column.expression.isColumn && column.expression.sql == bound.sql)) {
        return std::to_string(i + 1);
      }
    }
    throw SqlError(145,
                   "ORDER BY items must appear in the select list if SELECT DISTINCT is "
                   "specified.");
  }
  std::string sql = constants_.inOwnType(bound);
  if (bound.type.isText() && !bound.isColumn) {
    sql += kCollateClause;
  }
  // A bare number would be taken for a position.
  return bound.isColumn ? sql : "(" + sql + ")";
}

void QueryBinder::bindOrderBy(const tsql::Query& query, const Clause& clause, BoundSelect& select) {
  select.orderBy = joinAll(query.orderBy, ",", [&](const tsql::OrderItem& item) {
    return bindOrderItem(item, clause, select) + (item.descending ? " DESC" : "");
  });
}

void QueryBinder::orderSetOperation(const tsql::Query& query, BoundQuery& bound) {
  bound.orderBy = joinAll(query.orderBy, ",", [&](const tsql::OrderItem& item) {
    const auto position = outputPosition(*item.expression, bound.columns());
    if (!position) {
      throw SqlError(104,
                     "ORDER BY items must appear in the select list if the statement contains a "
                     "UNION, INTERSECT or EXCEPT operator.");
    }
    return std::to_string(*position + 1) + (item.descending ? " DESC" : "");
  });
}

}  // namespace azcoll::embedded
