#include "embedded/bind/names.h"

#include <utility>

#include "embedded/plan/slots.h"
#include "embedded/sqlite/sql_text.h"
#include "embedded/values/sql_error.h"
#include "text/joining.h"
#include "text/letter_case.h"

namespace azcoll::embedded {

namespace {

/// Whether `qualifier` (the parts before the column) names the source.
bool isNamedBy(const Source& source, const std::vector<std::string>& qualifier) {
  if (qualifier.size() == 2 &&
      (source.hasAlias || !ascii::equalsIgnoringCase(qualifier.front(), "DBO"))) {
    return false;
  }
  return qualifier.size() <= 2 && source.folded == foldCase(qualifier.back());
}

}  // namespace

std::optional<std::size_t> Source::find(const std::string& foldedName) const {
  const auto& names = table ? table->byName : byName;
  const auto found = names.find(foldedName);
  return found == names.end() ? std::nullopt : std::optional(found->second);
}

BoundExpression Source::column(std::size_t index) const {
  BoundExpression bound;
  bound.isColumn = true;
  if (table) {
    bound.type = table->columns[index].type;
    bound.sql = sqlName + (sqlName.empty() ? "" : ".") + quoteName(table->columns[index].name);
    bound.origin = Origin{table, index};
  } else {
    bound.type = columns[index].type;
    bound.sql = columns[index].sql;
    bound.origin = columns[index].origin;
  }
  return bound;
}

BoundExpression Names::columnOf(const Source& source, std::size_t column,
                                const Clause& clause) const {
  BoundExpression bound = source.column(column);
  bound.reach.levels = levelBit(clause.scope.level);
  if (clause.grouping != nullptr && !clause.grouping->columns.contains(bound.sql)) {
    const std::string name = source.name + "." + source.columnName(column);
    // The message of ORDER BY quotes the name otherwise than the others.
    const std::string quoted = clause.number == 8127 ? '"' + name + '"' : "'" + name + "'";
    throw SqlError(clause.number,
                   "Column " + quoted + " is invalid in the " + std::string(clause.name) +
                       " because it is not contained in either an aggregate function or the GROUP "
                       "BY clause.");
  }
  return bound;
}

BoundExpression Names::resolve(const tsql::ColumnReference& reference, const Clause& clause) const {
  return reference.name.parts.size() == 1 ? resolveBare(reference.name.parts.front(), clause)
                                          : resolveQualified(reference.name, clause);
}

BoundExpression Names::resolveBare(const std::string& name, const Clause& clause) const {
  const std::string folded = foldCase(name);
  for (const Clause* at = &clause; at != nullptr; at = at->scope.parent) {
    const Source* found = nullptr;
    std::size_t column = 0;
    for (std::size_t i = at->scope.visibleFrom; i < at->scope.sources.size(); ++i) {
      if (const auto match = at->scope.sources[i].find(folded)) {
        if (found != nullptr) {
          throw SqlError(209, "Ambiguous column name '" + name + "'.");
        }
        found = &at->scope.sources[i];
        column = *match;
      }
    }
    if (found != nullptr) {
      return columnOf(*found, column, *at);
    }
  }
  throw SqlError(207, "Invalid column name '" + name + "'.");
}

BoundExpression Names::resolveQualified(const tsql::ObjectName& name, const Clause& clause) const {
  const std::vector<std::string> qualifier(name.parts.begin(), name.parts.end() - 1);
  const std::string& column = name.parts.back();
  for (const Clause* at = &clause; at != nullptr; at = at->scope.parent) {
    for (std::size_t i = at->scope.visibleFrom; i < at->scope.sources.size(); ++i) {
      if (!isNamedBy(at->scope.sources[i], qualifier)) {
        continue;
      }
      // The first source of that name decides: one further out is hidden.
      const auto match = at->scope.sources[i].find(foldCase(column));
      if (!match) {
        throw SqlError(207, "Invalid column name '" + column + "'.");
      }
      return columnOf(at->scope.sources[i], *match, *at);
    }
  }
  throw SqlError(
      4104, "The multi-part identifier \"" + joinAll(name.parts, ".") + "\" could not be bound.");
}

std::size_t Names::variableIndex(const std::string& name) const {
  if (context_.variables != nullptr && !inFunction_) {
    const auto found = context_.variables->scalarByName.find(foldCase(name));
    if (found != context_.variables->scalarByName.end()) {
      return found->second;
    }
  }
  throw SqlError(137, "Must declare the scalar variable \"" + name + "\".");
}

BoundExpression Names::bindVariable(const tsql::Variable& variable) const {
  if (inFunction_) {
    const auto found = arguments_.find(foldCase(variable.name));
    if (found != arguments_.end()) {
      return found->second;
    }
  }
  BoundExpression bound;
  bound.pending.emplace();
  if (ascii::equalsIgnoringCase(variable.name, "@@ROWCOUNT")) {
    bound.pending->source = SlotSource::RowCount;
    bound.type = kInt;
  } else if (ascii::equalsIgnoringCase(variable.name, "@@TRANCOUNT")) {
    bound.pending->source = SlotSource::TransactionCount;
    bound.type = kInt;
  } else if (ascii::equalsIgnoringCase(variable.name, "@@IDENTITY")) {
    bound.pending->source = SlotSource::Identity;
    bound.type = decimalType(38, 0);
  } else {
    const std::size_t index = variableIndex(variable.name);
    bound.pending->source = SlotSource::Variable;
    bound.pending->index = static_cast<std::uint32_t>(index);
    bound.type = context_.variables->scalars[index].type;
    // A slot would hold the value from before the first row.
    if (liveVariables_.contains(index)) {
      bound.pending.reset();
      bound.sql = "ts_var(" + std::to_string(index) + ")";
    }
  }
  return bound;
}

void Names::addArgument(const std::string& name, BoundExpression value) {
  arguments_[foldCase(name)] = std::move(value);
}

std::shared_ptr<const Table> Names::findTable(const tsql::ObjectName& name) const {
  if (name.parts.back().starts_with('@')) {
    if (context_.variables != nullptr) {
      const auto found = context_.variables->tables.find(foldCase(name.parts.back()));
      if (found != context_.variables->tables.end()) {
        return found->second;
      }
    }
    throw SqlError(1087, "Must declare the table variable \"" + name.parts.back() + "\".");
  }
  if (auto table = context_.catalogue->findTable(objectName(name, context_.text))) {
    return table;
  }
  throw SqlError(208, "Invalid object name '" + joinAll(name.parts, ".") + "'.");
}

std::string Names::newAlias() { return "t" + std::to_string(translation_.nextAlias++); }

}  // namespace azcoll::embedded
