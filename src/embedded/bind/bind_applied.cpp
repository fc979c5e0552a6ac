// Table-valued functions: their body is written out where they are called.

#include <utility>

#include "embedded/bind/ast_walk.h"
#include "embedded/bind/bound_query.h"
#include "embedded/bind/query_binder.h"
#include "embedded/bind/scope.h"
#include "embedded/bind/translation.h"
#include "embedded/values/conversions.h"
#include "embedded/values/sql_error.h"

namespace azcoll::embedded {

namespace {

// A function may call others; arguments are repeated wherever they are used, so that deep calls
// could grow without bound.
constexpr std::size_t kMaxFunctionDepth = 8;

class FunctionDepth {
 public:
  FunctionDepth(Translation& emission, std::string_view text, const tsql::Position& position)
      : translation_(emission) {
    if (emission.functionDepth >= kMaxFunctionDepth) {
      refuse(text, position, "functions nested this deep");
    }
    ++emission.functionDepth;
  }
  FunctionDepth(const FunctionDepth&) = delete;
  FunctionDepth(FunctionDepth&&) = delete;
  FunctionDepth& operator=(const FunctionDepth&) = delete;
  FunctionDepth& operator=(FunctionDepth&&) = delete;
  ~FunctionDepth() { --translation_.functionDepth; }

 private:
  Translation& translation_;
};

/// The SELECT of a body that can become part of a join: one table, perhaps a condition. Null
/// otherwise.
const tsql::QuerySpecification* simpleBody(const tsql::Query& body) {
  const auto* const select = std::get_if<tsql::QuerySpecification>(&body.body);
  if (select == nullptr || select->distinct || select->top || !select->groupBy.empty() ||
      select->having || select->from.size() != 1 || !body.orderBy.empty() ||
      !std::holds_alternative<tsql::NamedTable>(select->from.front()->node)) {
    return nullptr;
  }
  for (const tsql::SelectItem& item : select->items) {
    if (containsAggregate(*item.expression)) {
      return nullptr;
    }
  }
  return select;
}

}  // namespace

std::shared_ptr<const Routine> QueryBinder::findFunction(
    const tsql::FunctionTable& function) const {
  const std::string& name = objectName(function.name, context_.text);
  auto routine = context_.catalogue->findRoutine(name);
  if (!routine || !routine->isFunction) {
    const std::string schema = function.name.parts.size() > 1 ? function.name.parts[0] + "." : "";
    throw SqlError(208, "Invalid object name '" + schema + name + "'.");
  }
  return routine;
}

void QueryBinder::bindArguments(const Routine& routine, const tsql::FunctionTable& function,
                                const Scope& scope, QueryBinder& body) {
  if (function.arguments.size() != routine.parameters.size()) {
    const bool few = function.arguments.size() < routine.parameters.size();
    throw SqlError(
        few ? 313 : 8144,
        few ? "An insufficient number of arguments were supplied for the procedure or "
              "function " +
                  routine.name + "."
            : "Procedure or function " + routine.name + " has too many arguments specified.");
  }
  body.names_.enterFunction();
  for (std::size_t i = 0; i < function.arguments.size(); ++i) {
    const RoutineParameter& parameter = routine.parameters[i];
    const std::uint64_t touched = std::exchange(translation_.touchedLevels, 0);
    BoundExpression argument = expressions_.bind(*function.arguments[i], scope);
    const bool isOfRow = translation_.touchedLevels != 0;
    translation_.touchedLevels |= touched;
    BoundExpression value;
    value.isColumn = argument.isColumn;
    value.type = parameter.type;
    constants_.requireConvertible(argument.type, parameter.type, function.arguments[i]->position);
    value.sql = constants_.coerce(argument, parameter.type, Conversion::Cut);
    body.names_.addArgument(parameter.name, std::move(value), isOfRow);
  }
}

/// In a FROM clause: a derived table. Its arguments are constants, or come from an outer query.
std::string QueryBinder::bindFunctionTable(const tsql::FunctionTable& function,
                                           const std::string& alias, Scope& scope) {
  const FunctionDepth depth(translation_, context_.text, function.name.position);
  const auto routine = findFunction(function);
  BindContext context = context_;
  context.text = routine->source;
  context.constantsInside = true;
  QueryBinder body(context, translation_);
  const Scope nothing(scope.parent);
  bindArguments(*routine, function, nothing, body);
  // Names inside the body are never looked up outside of it.
  BoundQuery query = body.bindQuery(*routine->function().body, nullptr, {});
  body.fixTypes(query);
  Source source;
  source.hasAlias = !alias.empty();
  source.name = source.hasAlias ? alias : routine->name;
  source.sqlName = names_.newAlias();
  describeDerived(query, source);
  std::string sql = "(" + render(query) + ") AS " + source.sqlName;
  addSource(scope, std::move(source));
  return sql;
}

/// Behind APPLY: a join with the body's table, the body's condition as its ON.
std::string QueryBinder::inlineApplied(const tsql::FunctionTable& function,
                                       const std::string& alias, bool outer, Scope& scope) {
  const FunctionDepth depth(translation_, context_.text, function.name.position);
  const auto routine = findFunction(function);
  const tsql::QuerySpecification* const select = simpleBody(*routine->function().body);
  if (select == nullptr) {
    refuse(context_.text, function.name.position,
           "APPLY of a function whose body is not a SELECT over one table");
  }
  BindContext context = context_;
  context.text = routine->source;
  context.constantsInside = true;
  QueryBinder body(context, translation_);
  bindArguments(*routine, function, scope, body);
  Scope inner(nullptr);
  inner.level = scope.level;
  const std::string from = body.bindSources(select->from, inner);
  BoundQuery query;
  query.select = std::make_unique<BoundSelect>();
  body.bindItems(*select, inner, {}, *query.select);
  body.fixTypes(query);
  const std::string condition =
      select->where ? body.expressions_.bindCondition(*select->where, inner, true).sql : "1";
  Source source;
  source.hasAlias = !alias.empty();
  source.name = source.hasAlias ? alias : routine->name;
  source.sqlName = inner.sources.front().sqlName;
  describeDerived(query, source);
  for (std::size_t i = 0; i < source.columns.size(); ++i) {
    const OutputColumn& column = query.select->columns[i];
    source.columns[i].sql = column.sql;
    // Only the body's own columns are missing by themselves where no row matches.
    if (outer && !column.expression.origin) {
      const Table& table = *inner.sources.front().table;
      if (table.key.empty()) {
        refuse(context_.text, function.name.position,
               "OUTER APPLY of a computed column over a table without a key");
      }
      source.columns[i].sql = "(CASE WHEN " + inner.sources.front().column(table.key.front()).sql +
                              " IS NOT NULL THEN " + column.sql + " END)";
    }
  }
  addSource(scope, std::move(source));
  return (outer ? " LEFT JOIN " : " JOIN ") + from + " ON " + condition;
}

}  // namespace azcoll::embedded
