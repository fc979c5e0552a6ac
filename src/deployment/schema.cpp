#include "deployment/schema.h"

#include <algorithm>
#include <fmt/format.h>
#include <variant>

#include "deployment/scripts.h"
#include "text/letter_case.h"
#include "tsql/lexer.h"
#include "tsql/parser.h"
#include "tsql/printer.h"
#include "tsql/script.h"

namespace azcoll::deployment {
namespace {

ColumnType typeOf(const tsql::TypeName& written) {
  const std::string& name = written.name;
  ColumnType type{.name = name == "NUMERIC" ? "DECIMAL" : name};
  if (type.name == "DECIMAL") {
    constexpr int kUsualDigits = 18;
    type.length = written.length.value_or(kUsualDigits);
    type.scale = written.scale.value_or(0);
  } else if (name.ends_with("CHAR") || name.ends_with("BINARY")) {
    type.length = written.length.value_or(1);
  }
  return type;
}

SchemaColumn columnOf(const tsql::ColumnDefinition& written,
                      const tsql::CreateTableStatement& table) {
  const bool inKey = std::ranges::any_of(table.constraints, [&](const auto& constraint) {
    return constraint.kind == tsql::ConstraintKind::PrimaryKey &&
           std::ranges::any_of(constraint.columns, [&](const std::string& column) {
             return equalsIgnoringCase(column, written.name);
           });
  });
  SchemaColumn column{.name = written.name,
                      .type = typeOf(written.type),
                      .nullable = written.nullable.value_or(!inKey),
                      .identity = written.identity,
                      .hasDefault = written.defaultValue != nullptr};
  if (written.defaultValue) {
    column.defaultClause = fmt::format("DEFAULT ({})", tsql::print(*written.defaultValue));
    if (!written.defaultName.empty()) {
      column.defaultClause =
          fmt::format("CONSTRAINT {} {}", written.defaultName, column.defaultClause);
    }
  }
  return column;
}

std::vector<SchemaParameter> parametersOf(const std::vector<tsql::ParameterDefinition>& written) {
  std::vector<SchemaParameter> parameters;
  parameters.reserve(written.size());
  for (const tsql::ParameterDefinition& parameter : written) {
    parameters.push_back({parameter.name, typeOf(parameter.type), parameter.output});
  }
  return parameters;
}

/// Name of a select item as the result gives it.
std::string itemName(const tsql::SelectItem& item) {
  if (item.hasAlias) {
    return item.alias;
  }
  const auto* const column = std::get_if<tsql::ColumnReference>(&item.expression->node);
  return column == nullptr ? std::string{} : column->name.parts.back();
}

std::vector<SchemaColumn> columnsOf(const tsql::Query& query) {
  std::vector<SchemaColumn> columns;
  if (const auto* const select = std::get_if<tsql::QuerySpecification>(&query.body)) {
    for (const tsql::SelectItem& item : select->items) {
      columns.push_back({.name = itemName(item)});
    }
  }
  return columns;
}

/// Ends the text of a statement before the comments and blanks that lead to the next one.
std::string_view withoutTail(std::string_view text) {
  tsql::Lexer lexer{text};
  std::size_t end = 0;
  for (tsql::Token token = lexer.next(); token.kind != tsql::TokenKind::End; token = lexer.next()) {
    end = token.position.offset + token.raw.size();
  }
  return text.substr(0, end);
}

struct Adder {
  Schema& schema;
  std::string text;

  void operator()(const tsql::CreateTableStatement& written) const {
    SchemaTable table{.name = written.name.parts.back(), .definitions = {text}};
    for (const tsql::ColumnDefinition& column : written.columns) {
      table.columns.push_back(columnOf(column, written));
    }
    schema.tables.push_back(std::move(table));
  }
  void operator()(const tsql::CreateIndexStatement& index) const {
    for (SchemaTable& table : schema.tables) {
      if (equalsIgnoringCase(table.name, index.table.parts.back())) {
        table.definitions.push_back(text);
      }
    }
  }
  void operator()(const tsql::CreateProcedureStatement& written) const {
    schema.routines.push_back({.name = written.name.parts.back(),
                               .parameters = parametersOf(written.parameters),
                               .definition = text});
  }
  void operator()(const tsql::CreateFunctionStatement& written) const {
    schema.routines.push_back({.name = written.name.parts.back(),
                               .isFunction = true,
                               .parameters = parametersOf(written.parameters),
                               .columns = columnsOf(*written.body),
                               .definition = text});
  }
  template <typename Other>
  void operator()(const Other& /*statement*/) const {}
};

template <typename Named>
const Named* named(const std::vector<Named>& all, std::string_view name) {
  const auto found = std::ranges::find_if(
      all, [&](const Named& each) { return equalsIgnoringCase(each.name, name); });
  return found == all.end() ? nullptr : &*found;
}

}  // namespace

std::string ColumnType::text() const {
  if (name == "DECIMAL") {
    return fmt::format("{}({}, {})", name, length, scale);
  }
  if (length < 0) {
    return fmt::format("{}(MAX)", name);
  }
  return length == 0 ? name : fmt::format("{}({})", name, length);
}

const SchemaTable* Schema::table(std::string_view name) const { return named(tables, name); }

const SchemaRoutine* Schema::routine(std::string_view name) const { return named(routines, name); }

void addDefinitions(Schema& schema, std::string_view batch) {
  const tsql::Batch parsed = tsql::parse(batch);
  for (std::size_t i = 0; i < parsed.statements.size(); ++i) {
    const std::size_t start = parsed.statements[i]->position.offset;
    const std::size_t end =
        i + 1 < parsed.statements.size() ? parsed.statements[i + 1]->position.offset : batch.size();
    std::visit(Adder{schema, std::string{withoutTail(batch.substr(start, end - start))}},
               parsed.statements[i]->node);
  }
}

const Schema& expectedSchema() {
  static const Schema expected = [] {
    Schema schema;
    for (const Script& script : {kTabelle, kProcedure}) {
      for (const tsql::ScriptBatch& batch : tsql::splitScript(script.text)) {
        addDefinitions(schema, batch.text);
      }
    }
    return schema;
  }();
  return expected;
}

}  // namespace azcoll::deployment
