#include "embedded/bind/binder.h"

#include <algorithm>
#include <map>
#include <set>
#include <string>

#include "embedded/bind/ast_walk.h"
#include "embedded/bind/bound_query.h"
#include "embedded/bind/query_binder.h"
#include "embedded/bind/scope.h"
#include "embedded/plan/result_column.h"
#include "embedded/plan/slots.h"
#include "embedded/values/conversions.h"
#include "embedded/values/sql_error.h"
#include "embedded/values/types.h"
#include "text/letter_case.h"

namespace azcoll::embedded {

namespace {

using TableCounts = std::map<std::string, int>;

void countTables(const tsql::Query& query, TableCounts& counts);

/// Counts how often each table stands in FROM, queries inside FROM included.
void countTables(const tsql::TableSource& source, TableCounts& counts) {
  if (const auto* const named = std::get_if<tsql::NamedTable>(&source.node)) {
    ++counts[foldCase(named->name.parts.back())];
  } else if (const auto* const derived = std::get_if<tsql::DerivedTable>(&source.node)) {
    countTables(*derived->query, counts);
  } else if (const auto* const join = std::get_if<tsql::Join>(&source.node)) {
    countTables(*join->left, counts);
    countTables(*join->right, counts);
  }
}

void countTables(const tsql::Query& query, TableCounts& counts) {
  if (const auto* const specification = std::get_if<tsql::QuerySpecification>(&query.body)) {
    for (const tsql::TableSourcePtr& source : specification->from) {
      countTables(*source, counts);
    }
  }
}

/// The table and column that a change of the value would go to; nothing when that is not certain.
void describeBase(const OutputColumn& column, const TableCounts& counts, ColumnInfo& info) {
  const auto& origin = column.expression.origin;
  if (!origin || origin->table->isVariable) {
    return;
  }
  const auto found = counts.find(foldCase(origin->table->name));
  if (found == counts.end() || found->second != 1) {
    return;  // of a table that stands there twice it is not known which row is meant
  }
  const Column& base = origin->table->columns[origin->column];
  info.baseTable = origin->table->name;
  info.baseColumn = base.name;
  info.isKey = base.inKey;
  info.isIdentity = base.identity;
}

/// A key that is only partly in the result does not identify a row.
void dropPartialKeys(const std::vector<OutputColumn>& outputs, std::vector<ResultColumn>& columns) {
  for (std::size_t i = 0; i < outputs.size(); ++i) {
    if (columns[i].info.baseTable.empty()) {
      continue;
    }
    const auto& key = outputs[i].expression.origin->table->key;
    columns[i].info.isKey =
        columns[i].info.isKey && std::all_of(key.begin(), key.end(), [&](std::size_t part) {
          return std::any_of(outputs.begin(), outputs.end(), [&](const OutputColumn& other) {
            const auto& origin = other.expression.origin;
            return origin && origin->table == outputs[i].expression.origin->table &&
                   origin->column == part;
          });
        });
  }
}

}  // namespace

std::string Binder::bindSelect(const tsql::Query& query, std::vector<ResultColumn>& columns) {
  QueryBinder queries(context_, translation_);
  QueryUse use;
  use.orderNeedsTop = false;
  BoundQuery bound = queries.bindQuery(query, nullptr, use);
  queries.fixTypes(bound);
  TableCounts counts;
  // Rows of groups, of a DISTINCT and of set operations are not those of a table.
  if (bound.select && !bound.select->grouped && !bound.select->distinct) {
    countTables(query, counts);
  }
  for (const OutputColumn& column : bound.columns()) {
    ResultColumn& result = columns.emplace_back();
    result.info.name = column.name;
    result.type = column.type;
    describeBase(column, counts, result.info);
  }
  dropPartialKeys(bound.columns(), columns);
  return render(bound);
}

std::string Binder::bindAssignments(const tsql::Query& query, std::vector<AssignTarget>& targets) {
  QueryBinder queries(context_, translation_);
  const auto& specification = std::get<tsql::QuerySpecification>(query.body);
  // A variable that is read in the list while the list changes it is read again for every row.
  bool accumulates = false;
  for (std::size_t i = 0; i < specification.items.size(); ++i) {
    if (specification.items[i].assignTo.empty()) {
      continue;
    }
    const std::string name = foldCase(specification.items[i].assignTo);
    for (std::size_t j = 0; j < specification.items.size(); ++j) {
      if (mentionsVariable(*specification.items[j].expression, name)) {
        if (j > i) {
          refuse(context_.text, specification.items[j].position,
                 "a variable that the same SELECT has given a value before");
        }
        if (!specification.from.empty() &&
            queryInsideMentions(*specification.items[j].expression, name)) {
          // SQLite runs a query that no column correlates once, with the value of the first row.
          refuse(context_.text, specification.items[j].position,
                 "a query that reads the variable which is built up row by row");
        }
        accumulates = true;
        queries.names().readForEachRow(
            queries.names().variableIndex(specification.items[i].assignTo));
      }
    }
  }
  const bool grouped = !specification.groupBy.empty();
  bool aggregated = false;
  for (const tsql::SelectItem& item : specification.items) {
    aggregated = aggregated || containsAggregate(*item.expression);
  }
  if (accumulates && !specification.from.empty() && !(aggregated && !grouped) &&
      (grouped || specification.distinct || specification.top || !query.orderBy.empty())) {
    refuse(context_.text, query.position,
           "a variable that is built up row by row in an order that is not defined");
  }
  QueryUse use;
  use.orderNeedsTop = false;
  use.assigns = true;
  BoundQuery bound = queries.bindQuery(query, nullptr, use);
  for (std::size_t i = 0; i < bound.columns().size(); ++i) {
    OutputColumn& column = bound.columns()[i];
    const std::size_t variable = bound.select->assigned[i];
    const Type& type = context_.variables->scalars[variable].type;
    queries.constants().requireConvertible(column.expression.type, type, column.position);
    // A variable cuts what is too long for it and reports nothing.
    column.sql = queries.constants().coerce(column.expression, type, Conversion::Cut);
    targets.push_back({variable, type});
  }
  return render(bound);
}

std::string Binder::bindValue(const tsql::Expression& expression, const Type& type) {
  QueryBinder queries(context_, translation_);
  const Scope nothing(nullptr);
  BoundExpression value = queries.expressions().bind(expression, Clause{nothing});
  queries.constants().requireConvertible(value.type, type, expression.position);
  return "SELECT " + queries.constants().coerce(value, type, Conversion::Cut);
}

std::string Binder::bindTest(const tsql::Expression& condition) {
  QueryBinder queries(context_, translation_);
  const Scope nothing(nullptr);
  return "SELECT " +
         queries.expressions().bindCondition(condition, Clause{nothing}, Unknown::AsFalse).sql;
}

BoundChange Binder::bindInsert(const tsql::InsertStatement& statement) {
  return ChangeBinder(context_, translation_).bindInsert(statement);
}

BoundChange Binder::bindUpdate(const tsql::UpdateStatement& statement) {
  return ChangeBinder(context_, translation_).bindUpdate(statement);
}

BoundChange Binder::bindDelete(const tsql::DeleteStatement& statement) {
  return ChangeBinder(context_, translation_).bindDelete(statement);
}

void Binder::checkFunction(const Routine& routine) {
  QueryBinder queries(context_, translation_);
  queries.names().enterFunction();
  for (const RoutineParameter& parameter : routine.parameters) {
    BoundExpression nothing;
    // What stands for a parameter does not matter to the check, its type does.
    nothing.sql = "NULL";
    nothing.type = parameter.type;
    queries.names().addArgument(parameter.name, std::move(nothing));
  }
  BoundQuery query = queries.bindQuery(*routine.function().body, nullptr, {});
  queries.fixTypes(query);
  std::set<std::string> names;
  std::size_t number = 0;
  for (const OutputColumn& column : query.columns()) {
    ++number;
    if (!column.named) {
      throw SqlError(4514,
                     "CREATE FUNCTION failed because a column name is not specified for "
                     "column " +
                         std::to_string(number) + ".");
    }
    if (!names.insert(foldCase(column.name)).second) {
      throw SqlError(4506, "Column names in each view or function must be unique. Column name '" +
                               column.name + "' in view or function '" + routine.name +
                               "' is specified more than once.");
    }
  }
}

std::string Binder::bindCheck(const tsql::Expression& condition, const Table& table) {
  QueryBinder queries(context_, translation_);
  Scope scope(nullptr);
  Source source;
  source.table = std::make_shared<const Table>(table);
  source.name = table.name;
  // It has no name in the SQLite text: a CHECK names its columns bare.
  source.folded = foldCase(table.name);
  scope.sources.push_back(std::move(source));
  std::string sql =
      queries.expressions().bindCondition(condition, Clause{scope}, Unknown::Kept).sql;
  // A slot would stand for a moment or a count of rows: SQLite keeps a CHECK as a text.
  if (!translation_.slots.empty()) {
    refuse(context_.text, condition.position, "a CHECK over what changes by itself");
  }
  return sql;
}

}  // namespace azcoll::embedded
