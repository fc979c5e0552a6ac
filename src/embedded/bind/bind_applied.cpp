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
  FunctionDepth(Translation& translation, std::string_view text, const tsql::Position& position)
      : translation_(translation) {
    if (translation.functionDepth >= kMaxFunctionDepth) {
      refuse(text, position, "functions nested this deep");
    }
    ++translation.functionDepth;
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

/// Gives the body its arguments; returns what they take from the queries around the function.
Reach QueryBinder::bindArguments(const Routine& routine, const tsql::FunctionTable& function,
                                 const Clause& clause, QueryBinder& body) {
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
  Reach reach;
  for (std::size_t i = 0; i < function.arguments.size(); ++i) {
    const RoutineParameter& parameter = routine.parameters[i];
    BoundExpression argument = expressions_.bind(*function.arguments[i], clause);
    reach |= argument.reach;
    BoundExpression value;
    // The body numbers its scopes by itself.
    value.reach.argument = argument.reach.levels != 0;
    value.isColumn = argument.isColumn;
    value.type = parameter.type;
    constants_.requireConvertible(argument.type, parameter.type, function.arguments[i]->position);
    value.sql = constants_.coerce(argument, parameter.type, Conversion::Cut);
    body.names_.addArgument(parameter.name, std::move(value));
  }
  return reach;
}

/// In a FROM clause: a derived table. Its arguments are constants, or come from an outer query.
BoundSources QueryBinder::bindFunctionTable(const tsql::FunctionTable& function,
                                            const std::string& alias, Scope& scope) {
  const FunctionDepth depth(translation_, context_.text, function.name.position);
  const auto routine = findFunction(function);
  BindContext context = context_;
  context.text = routine->source;
  context.constantsInside = true;
  QueryBinder body(context, translation_);
  const Scope nothing(scope.parent);
  const Reach reach = bindArguments(*routine, function, Clause{nothing}, body);
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
  return {std::move(sql), reach | query.reach()};
}

/// Behind APPLY: a join with the body's table, the body's condition as its ON.
BoundSources QueryBinder::inlineApplied(const tsql::FunctionTable& function,
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
  Reach reach = bindArguments(*routine, function, Clause{scope}, body);
  Scope inner(nullptr);
  // The body's table joins the sources around it: it is of their query.
  inner.level = scope.level;
  const Clause insideBody{inner};
  const BoundSources from = body.bindSources(select->from, inner);
  BoundQuery query;
  query.select = std::make_unique<BoundSelect>();
  body.bindItems(*select, insideBody, {}, *query.select);
  body.fixTypes(query);
  BoundCondition condition{"1", {}};
  if (select->where) {
    condition = body.expressions_.bindCondition(*select->where, insideBody, Unknown::AsFalse);
  }
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
  reach |= from.reach | query.select->reach | condition.reach;
  return {(outer ? " LEFT JOIN " : " JOIN ") + from.sql + " ON " + condition.sql, reach};
}

}  // namespace azcoll::embedded
