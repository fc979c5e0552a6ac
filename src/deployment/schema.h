#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace azcoll::deployment {

/// A data type as a declaration or a catalogue reports it. `length` counts the characters of a
/// text, -1 for MAX; of a decimal it is the number of its digits.
struct ColumnType {
  std::string name;  ///< upper case, "NUMERIC" reported as "DECIMAL"
  int length = 0;
  int scale = 0;

  friend bool operator==(const ColumnType&, const ColumnType&) = default;
  /// As it is written in T-SQL: `NVARCHAR(80)`, `DECIMAL(5, 2)`, `INT`.
  [[nodiscard]] std::string text() const;
};

/// A column of a table, or of the rows that a function gives (those have a name alone).
struct SchemaColumn {
  std::string name;
  ColumnType type{};
  bool nullable = true;
  bool identity = false;
  bool hasDefault = false;
  std::string
      defaultClause{};  ///< `CONSTRAINT DF_… DEFAULT (0)`; empty when only known to be there
};

/// A table with what defines it.
struct SchemaTable {
  std::string name;
  std::string owner{};  ///< the schema it lies in; empty where there is but one
  std::vector<SchemaColumn> columns{};
  bool columnsKnown = true;                ///< else the database did not report them
  std::vector<std::string> definitions{};  ///< CREATE TABLE, then one CREATE INDEX for each index
};

/// A parameter of a procedure or function.
struct SchemaParameter {
  std::string name;  ///< with its `@`
  ColumnType type{};
  bool output = false;
};

/// A stored procedure, or a function that gives rows.
struct SchemaRoutine {
  std::string name;
  std::string owner{};
  bool isFunction = false;
  std::vector<SchemaParameter> parameters{};
  bool parametersKnown = true;          ///< else the database did not report them
  std::vector<SchemaColumn> columns{};  ///< of a function's rows
  bool columnsKnown = true;
  std::string definition{};
};

/// What a company database consists of: as the scripts want it, or as it was found.
struct Schema {
  std::vector<SchemaTable> tables{};
  std::vector<SchemaRoutine> routines{};

  /// By name, letter case ignored; null when there is none.
  [[nodiscard]] const SchemaTable* table(std::string_view name) const;
  [[nodiscard]] const SchemaRoutine* routine(std::string_view name) const;
};

/// Adds what the CREATE statements of one batch define; other statements are passed over. Throws
/// `tsql::SyntaxError`.
void addDefinitions(Schema& schema, std::string_view batch);

/// The schema that the scripts carried in this program define.
[[nodiscard]] const Schema& expectedSchema();

}  // namespace azcoll::deployment
