#include "embedded/bind/bound_query.h"
#include "embedded/bind/query_binder.h"
#include "embedded/bind/scope.h"
#include "embedded/values/sql_error.h"
#include "text/letter_case.h"

namespace azcoll::embedded {

namespace {

/// Restricts what an ON clause sees to the sources of its own join.
class VisibleSources {
 public:
  VisibleSources(Scope& scope, std::size_t from) : scope_(scope), before_(scope.visibleFrom) {
    scope.visibleFrom = from;
  }
  VisibleSources(const VisibleSources&) = delete;
  VisibleSources(VisibleSources&&) = delete;
  VisibleSources& operator=(const VisibleSources&) = delete;
  VisibleSources& operator=(VisibleSources&&) = delete;
  ~VisibleSources() { scope_.visibleFrom = before_; }

 private:
  Scope& scope_;
  std::size_t before_;
};

bool isJoin(const tsql::TableSource& source) {
  return std::holds_alternative<tsql::Join>(source.node);
}

}  // namespace

void addSource(Scope& scope, Source source) {
  source.folded = foldCase(source.name);
  for (const Source& other : scope.sources) {
    if (other.folded == source.folded && other.hasAlias && source.hasAlias) {
      throw SqlError(1011, "The correlation name '" + source.name +
                               "' is specified multiple times in a FROM clause.");
    }
    if (other.folded == source.folded) {
      throw SqlError(1013, "The objects \"" + other.name + "\" and \"" + source.name +
                               "\" in the FROM clause have the same exposed names. Use correlation "
                               "names to distinguish them.");
    }
  }
  scope.sources.push_back(std::move(source));
}

void describeDerived(BoundQuery& query, Source& source) {
  std::size_t number = 0;
  for (OutputColumn& column : query.columns()) {
    ++number;
    if (!column.named) {
      throw SqlError(8155, "No column name was specified for column " + std::to_string(number) +
                               " of '" + source.name + "'.");
    }
    if (!source.byName.emplace(foldCase(column.name), number - 1).second) {
      throw SqlError(8156, "The column '" + column.name + "' was specified multiple times for '" +
                               source.name + "'.");
    }
    // A value of a group, or of several equal rows, is not that of one row.
    const bool plain = query.select && !query.select->grouped && !query.select->distinct;
    source.columns.push_back({column.name, source.sqlName + ".c" + std::to_string(number),
                              column.type,
                              plain ? column.expression.origin : std::optional<Origin>{}});
  }
}

BoundSources QueryBinder::bindSources(const std::vector<tsql::TableSourcePtr>& sources,
                                      Scope& scope) {
  BoundSources all;
  for (const tsql::TableSourcePtr& source : sources) {
    const std::size_t first = scope.sources.size();
    const VisibleSources visible(scope, first);
    const BoundSources bound = bindSource(*source, scope);
    // A comma becomes a JOIN without a condition. It binds less tightly than JOIN, so a later
    // source that is a join stands in parentheses.
    if (all.sql.empty()) {
      all.sql = bound.sql;
    } else {
      all.sql += isJoin(*source) ? " JOIN (" + bound.sql + ")" : " JOIN " + bound.sql;
    }
    all.reach |= bound.reach;
  }
  return all;
}

BoundSources QueryBinder::bindSource(const tsql::TableSource& source, Scope& scope) {
  if (const auto* const table = std::get_if<tsql::NamedTable>(&source.node)) {
    return {bindTable(*table, source.alias, scope), {}};
  }
  if (const auto* const derived = std::get_if<tsql::DerivedTable>(&source.node)) {
    return bindDerived(*derived, source.alias, scope);
  }
  if (const auto* const function = std::get_if<tsql::FunctionTable>(&source.node)) {
    return bindFunctionTable(*function, source.alias, scope);
  }
  return bindJoin(std::get<tsql::Join>(source.node), scope);
}

std::string QueryBinder::bindTable(const tsql::NamedTable& table, const std::string& alias,
                                   Scope& scope) {
  Source source;
  source.table = names_.findTable(table.name);
  source.hasAlias = !alias.empty();
  source.name = source.hasAlias ? alias : source.table->name;
  source.sqlName = names_.newAlias();
  std::string sql = source.table->sqlName + " AS " + source.sqlName;
  addSource(scope, std::move(source));
  return sql;
}

BoundSources QueryBinder::bindDerived(const tsql::DerivedTable& derived, const std::string& alias,
                                      Scope& scope) {
  // Neither the other sources of the clause nor what they bring is visible inside.
  BoundQuery query = bindQuery(*derived.query, scope.parent, {});
  fixTypes(query);
  Source source;
  source.name = alias;
  source.hasAlias = true;
  source.sqlName = names_.newAlias();
  describeDerived(query, source);
  std::string sql = "(" + render(query) + ") AS " + source.sqlName;
  addSource(scope, std::move(source));
  return {std::move(sql), query.reach()};
}

BoundSources QueryBinder::bindJoin(const tsql::Join& join, Scope& scope) {
  if (join.kind == tsql::JoinKind::CrossApply || join.kind == tsql::JoinKind::OuterApply) {
    return bindApply(join, scope);
  }
  const std::size_t first = scope.sources.size();
  BoundSources joined = bindSource(*join.left, scope);
  const std::string left = std::move(joined.sql);
  const std::size_t middle = scope.sources.size();
  std::string right;
  {
    // A join on the right sees its own sources only.
    const VisibleSources visible(scope, middle);
    BoundSources bound = bindSource(*join.right, scope);
    right = isJoin(*join.right) ? "(" + bound.sql + ")" : std::move(bound.sql);
    joined.reach |= bound.reach;
  }
  if (join.kind == tsql::JoinKind::Cross) {
    // SQLite's CROSS JOIN would also fix the order in which the tables are read.
    joined.sql = left + " JOIN " + right;
    return joined;
  }
  const VisibleSources visible(scope, std::max(first, scope.visibleFrom));
  const BoundCondition condition =
      expressions_.bindCondition(*join.on, Clause{scope}, Unknown::AsFalse);
  joined.reach |= condition.reach;
  const std::string on = " ON " + condition.sql;
  switch (join.kind) {
    case tsql::JoinKind::Inner:
      joined.sql = left + " JOIN " + right + on;
      break;
    case tsql::JoinKind::Left:
      if (condition.constant == false &&
          std::holds_alternative<tsql::NamedTable>(join.right->node)) {
        // A join that never matches must not read its table once for every row.
        const Source& source = scope.sources.back();
        right = "(SELECT * FROM " + source.table->sqlName + " LIMIT 0) AS " + source.sqlName;
      }
      joined.sql = left + " LEFT JOIN " + right + on;
      break;
    case tsql::JoinKind::Right:
      // The same join the other way round; the order of the columns is not SQLite's matter.
      joined.sql = right + " LEFT JOIN " + (isJoin(*join.left) ? "(" + left + ")" : left) + on;
      break;
    default:
      joined.sql = left + " FULL JOIN " + right + on;
      break;
  }
  return joined;
}

BoundSources QueryBinder::bindApply(const tsql::Join& join, Scope& scope) {
  const bool outer = join.kind == tsql::JoinKind::OuterApply;
  BoundSources joined = bindSource(*join.left, scope);
  // SQLite has no LATERAL: only what can be written out as a join is taken.
  const auto* const function = std::get_if<tsql::FunctionTable>(&join.right->node);
  if (function == nullptr) {
    refuse(context_.text, join.right->position, "APPLY of anything but a function");
  }
  const BoundSources applied = inlineApplied(*function, join.right->alias, outer, scope);
  joined.sql += applied.sql;
  joined.reach |= applied.reach;
  return joined;
}

}  // namespace azcoll::embedded
