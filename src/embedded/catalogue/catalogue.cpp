#include "embedded/catalogue/catalogue.h"

#include <algorithm>
#include <utility>

#include "embedded/sqlite/sql_text.h"
#include "embedded/values/sql_error.h"
#include "text/letter_case.h"
#include "tsql/parser.h"

namespace azcoll::embedded {

namespace {

std::size_t columnOf(const Table& table, const std::string& name) {
  const auto found = table.find(name);
  if (!found) {
    throw SqlError(1911, "Column name '" + name + "' does not exist in the target table or view.");
  }
  return *found;
}

std::string defaultConstraintName(const Table& table, const Constraint& constraint) {
  constexpr std::string_view kPrefixes[]{"PK", "UQ", "FK", "CK"};
  std::string name(kPrefixes[static_cast<std::size_t>(constraint.kind)]);
  name += "__" + table.name;
  for (const std::size_t column : constraint.columns) {
    name += "__" + table.columns[column].name;
  }
  return name;
}

/// SQLite's name of a table. It keeps some names for itself, and one is that of the catalogue.
std::string storeNameOf(const std::string& name) {
  const std::string folded = foldCase(name);
  const bool reserved = folded.starts_with("sqlite_") || folded.starts_with("azcoll_catalogue");
  return reserved ? "~" + name : name;
}

class TableDescriber {
 public:
  TableDescriber(std::shared_ptr<const tsql::CreateTableStatement> definition,
                 std::string_view text)
      : text_(text), definition_(*definition) {
    table_->definition = std::move(definition);
  }

  std::shared_ptr<Table> describe() {
    table_->name = objectName(definition_.name, text_);
    if (table_->name.starts_with('#')) {
      refuse(text_, definition_.name.position, "temporary tables (use a table variable)");
    }
    table_->storeName = storeNameOf(table_->name);
    table_->sqlName = quoteName(table_->storeName);
    table_->isVariable = table_->name.starts_with('@');
    for (const tsql::ColumnDefinition& column : definition_.columns) {
      addColumn(column);
    }
    for (const tsql::ConstraintDefinition& constraint : definition_.constraints) {
      addConstraint(constraint);
    }
    finishKey();
    return table_;
  }

 private:
  void addColumn(const tsql::ColumnDefinition& definition) {
    Column column;
    column.name = definition.name;
    column.type = declaredType(definition.type, text_, table_->columns.size() + 1);
    column.nullable = definition.nullable.value_or(true);
    column.identity = definition.identity;
    column.defaultValue = definition.defaultValue.get();
    // The one collation that there is, and the name by which a column says that it has no other.
    if (!definition.collation.empty() &&
        !ascii::equalsIgnoringCase(definition.collation, "LATIN1_GENERAL_CI_AS") &&
        !ascii::equalsIgnoringCase(definition.collation, "DATABASE_DEFAULT")) {
      refuse(text_, definition.position, "the collation " + definition.collation);
    }
    if (definition.identity) {
      checkIdentity(definition, column);
      table_->identity = table_->columns.size();
    }
    if (!table_->byName.emplace(foldCase(column.name), table_->columns.size()).second) {
      throw SqlError(2705, "Column names in each table must be unique. Column name '" +
                               column.name + "' in table '" + table_->name +
                               "' is specified more than once.");
    }
    table_->columns.push_back(std::move(column));
  }

  void checkIdentity(const tsql::ColumnDefinition& definition, Column& column) const {
    if (table_->identity) {
      throw SqlError(2744, "Multiple identity columns specified for table '" + table_->name +
                               "'. Only one identity column per table is allowed.");
    }
    const bool whole = column.type.isInteger() && column.type.kind != TypeKind::Bit;
    if (!whole || definition.nullable.value_or(false)) {
      throw SqlError(2749, "Identity column '" + definition.name +
                               "' must be of data type int, bigint, smallint, tinyint, or decimal "
                               "or numeric with a scale of 0, unencrypted, and constrained to be "
                               "nonnullable.");
    }
    // SQLite's own counting goes by 1.
    if (definition.identityIncrement != 1) {
      refuse(text_, definition.position, "an identity that does not count by 1");
    }
    column.nullable = false;
  }

  void addConstraint(const tsql::ConstraintDefinition& definition) {
    Constraint constraint;
    constraint.kind = definition.kind;
    for (const std::string& name : definition.columns) {
      constraint.columns.push_back(columnOf(*table_, name));
    }
    // Its columns are looked up when it is made: the other table may be this one, not described to
    // its end.
    if (definition.kind == tsql::ConstraintKind::ForeignKey) {
      constraint.referencedTable = objectName(definition.referencedTable, text_);
      constraint.referencedColumns = definition.referencedColumns;
    }
    if (definition.kind == tsql::ConstraintKind::PrimaryKey) {
      if (!table_->key.empty()) {
        throw SqlError(
            8110, "Cannot add multiple PRIMARY KEY constraints to table '" + table_->name + "'.");
      }
      addKey(constraint);
    }
    constraint.name =
        definition.name.empty() ? defaultConstraintName(*table_, constraint) : definition.name;
    table_->constraints.push_back(std::move(constraint));
  }

  void addKey(const Constraint& constraint) {
    table_->key = constraint.columns;
    for (const std::size_t index : constraint.columns) {
      Column& column = table_->columns[index];
      // A key's columns are NOT NULL without saying so; saying NULL contradicts it.
      if (definition_.columns[index].nullable.value_or(false)) {
        throw SqlError(8111, "Cannot define PRIMARY KEY constraint on nullable column in table '" +
                                 table_->name + "'.");
      }
      column.nullable = false;
      column.inKey = true;
    }
  }

  void finishKey() {
    // A table is stored by its primary key, as a clustered one is; only an identity is a rowid.
    table_->hasRowid = table_->key.empty() || table_->identity.has_value();
    if (table_->identity) {
      table_->rowColumn = table_->columns[*table_->identity].name;
    } else if (table_->key.empty()) {
      table_->rowColumn = "row";
      // A name that no column has.
      while (table_->byName.contains(table_->rowColumn)) {
        table_->rowColumn += "_";
      }
    }
  }

  std::string_view text_;
  const tsql::CreateTableStatement& definition_;
  std::shared_ptr<Table> table_ = std::make_shared<Table>();
};

}  // namespace

std::optional<std::size_t> Table::find(std::string_view column) const {
  const auto found = byName.find(foldCase(column));
  return found == byName.end() ? std::nullopt : std::optional(found->second);
}

Catalogue::TablePtr Catalogue::findTable(std::string_view name) const {
  const auto found = tables_.find(foldCase(name));
  return found == tables_.end() ? nullptr : found->second;
}

Catalogue::RoutinePtr Catalogue::findRoutine(std::string_view name) const {
  const auto found = routines_.find(foldCase(name));
  return found == routines_.end() ? nullptr : found->second;
}

void Catalogue::add(TablePtr table) { tables_[foldCase(table->name)] = std::move(table); }

void Catalogue::add(RoutinePtr routine) { routines_[foldCase(routine->name)] = std::move(routine); }

void Catalogue::addIndex(std::string_view table, Index index) {
  // Plans share the tables: a changed one is a new one.
  TablePtr& place = tables_.at(foldCase(table));
  auto changed = std::make_shared<Table>(*place);
  changed->indexes.push_back(std::move(index));
  place = std::move(changed);
}

void Catalogue::removeIndex(std::string_view table, std::string_view index) {
  TablePtr& place = tables_.at(foldCase(table));
  auto changed = std::make_shared<Table>(*place);
  std::erase_if(changed->indexes,
                [&](const Index& each) { return foldCase(each.name) == foldCase(index); });
  place = std::move(changed);
}

void Catalogue::removeTable(std::string_view name) { tables_.erase(foldCase(name)); }

void Catalogue::removeRoutine(std::string_view name) { routines_.erase(foldCase(name)); }

void Catalogue::clear() {
  tables_.clear();
  routines_.clear();
}

std::shared_ptr<Table> describeTable(std::shared_ptr<const tsql::CreateTableStatement> definition,
                                     std::string_view text) {
  return TableDescriber(std::move(definition), text).describe();
}

Index describeIndex(const tsql::CreateIndexStatement& definition, const Table& table) {
  Index index;
  index.name = definition.name;
  index.unique = definition.unique;
  index.descending = definition.descending;
  for (const std::string& column : definition.columns) {
    index.columns.push_back(columnOf(table, column));
  }
  return index;
}

std::shared_ptr<const Routine> describeRoutine(std::string source) {
  auto routine = std::make_shared<Routine>();
  routine->source = std::move(source);
  // From the routine's own copy of the text, to which places in messages refer.
  routine->tree = std::make_shared<const tsql::Batch>(tsql::parse(routine->source));
  const auto& node = routine->tree->statements.front()->node;
  routine->isFunction = std::holds_alternative<tsql::CreateFunctionStatement>(node);
  const auto take = [&](const tsql::ObjectName& name,
                        const std::vector<tsql::ParameterDefinition>& parameters) {
    routine->name = objectName(name, routine->source);
    for (const tsql::ParameterDefinition& parameter : parameters) {
      routine->parameters.push_back(
          {parameter.name,
           declaredType(parameter.type, routine->source, routine->parameters.size() + 1),
           parameter.output, parameter.defaultValue.get()});
    }
  };
  if (routine->isFunction) {
    take(routine->function().name, routine->function().parameters);
  } else {
    take(routine->procedure().name, routine->procedure().parameters);
  }
  return routine;
}

const std::string& objectName(const tsql::ObjectName& name, std::string_view text) {
  const std::size_t parts = name.parts.size();
  if (parts > 2) {
    refuse(text, name.position, "names with a database or a server");
  }
  // Every object is in dbo, so in another schema there is none of that name.
  if (parts == 2 && !ascii::equalsIgnoringCase(name.parts[0], "DBO")) {
    throw SqlError(208, "Invalid object name '" + name.parts[0] + "." + name.parts[1] + "'.");
  }
  return name.parts.back();
}

namespace {

[[noreturn]] void refuseType(const tsql::TypeName& name, std::string_view text) {
  std::string written = name.name;
  if (name.length) {
    written += "(" + std::to_string(*name.length) + ")";
  }
  refuse(text, name.position, "the data type " + written);
}

}  // namespace

Type declaredType(const tsql::TypeName& name, std::string_view text, std::size_t ordinal) {
  if (const std::optional<Type> type = typeFromName(name, 1)) {
    return *type;
  }
  // A type that T-SQL has is refused by name, one that it has not is T-SQL's own error.
  if (isSystemType(name.name)) {
    refuseType(name, text);
  }
  throw SqlError(2715, "Column, parameter, or variable #" + std::to_string(ordinal) +
                           ": Cannot find data type " + name.name + ".");
}

Type castType(const tsql::TypeName& name, std::string_view text) {
  // CAST(… AS VARCHAR) without a length; in a declaration it would be 1.
  constexpr std::int32_t kDefaultLength = 30;
  if (const std::optional<Type> type = typeFromName(name, kDefaultLength)) {
    return *type;
  }
  if (isSystemType(name.name)) {
    refuseType(name, text);
  }
  throw SqlError(243, "Type " + name.name + " is not a defined system type.");
}

}  // namespace azcoll::embedded
