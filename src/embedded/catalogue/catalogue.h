#pragma once

#include <cstddef>
#include <cstdint>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "embedded/values/types.h"
#include "tsql/ast.h"

namespace azcoll::embedded {

/// A column of a table.
struct Column {
  std::string name;
  Type type;
  bool nullable = true;
  bool identity = false;
  bool inKey = false;                              ///< part of the primary key
  const tsql::Expression* defaultValue = nullptr;  ///< owned by the table's definition
};

/// A primary, unique or foreign key of a table, or a check. Columns are places in the table's list.
struct Constraint {
  tsql::ConstraintKind kind = tsql::ConstraintKind::PrimaryKey;
  std::string name;
  std::vector<std::size_t> columns;
  std::string referencedTable;                 ///< of a foreign key
  std::vector<std::string> referencedColumns;  ///< of a foreign key
};

/// An index that a CREATE INDEX made. Columns are places in the table's list.
struct Index {
  std::string name;
  std::vector<std::size_t> columns;
  std::vector<bool> descending;  ///< of each column
  bool unique = false;
};

/// A table of the database, or a table variable.
struct Table {
  std::string name;       ///< as created, without schema
  std::string sqlName;    ///< quoted, for SQLite
  std::string storeName;  ///< as SQLite's messages call it
  std::vector<Column> columns;
  std::unordered_map<std::string, std::size_t> byName;  ///< folded name → column
  std::vector<std::size_t> key;                         ///< primary key columns, or none
  std::vector<Constraint> constraints;
  std::vector<Index> indexes;
  std::optional<std::size_t> identity;
  std::string rowColumn;  ///< without a primary key: the column that identifies a row in SQLite
  bool hasRowid = true;
  bool isVariable = false;
  std::shared_ptr<const tsql::CreateTableStatement> definition;

  /// Column by name, letter case ignored; nothing when there is none.
  [[nodiscard]] std::optional<std::size_t> find(std::string_view column) const;
};

/// A parameter of a procedure or function, as its definition declares it.
struct RoutineParameter {
  std::string name;  ///< with its `@`
  Type type;
  bool output = false;
  const tsql::Expression* defaultValue = nullptr;  ///< owned by the routine's tree
};

/// A stored procedure or an inline table-valued function. The tree is that of `source`.
struct Routine {
  std::string name;
  bool isFunction = false;
  std::string source;
  std::vector<RoutineParameter> parameters;
  std::shared_ptr<const tsql::Batch> tree;

  [[nodiscard]] const tsql::CreateProcedureStatement& procedure() const {
    return std::get<tsql::CreateProcedureStatement>(tree->statements.front()->node);
  }
  [[nodiscard]] const tsql::CreateFunctionStatement& function() const {
    return std::get<tsql::CreateFunctionStatement>(tree->statements.front()->node);
  }
};

/// What the database holds, in memory. Names are looked up without regard to letter case.
class Catalogue {
 public:
  using TablePtr = std::shared_ptr<const Table>;
  using RoutinePtr = std::shared_ptr<const Routine>;

  /// The table, or the procedure or function, of that name without schema; null when there is none.
  [[nodiscard]] TablePtr findTable(std::string_view name) const;
  [[nodiscard]] RoutinePtr findRoutine(std::string_view name) const;
  /// All tables by their names in small letters.
  [[nodiscard]] const std::map<std::string, TablePtr>& tables() const { return tables_; }

  /// Takes in an object, in the place of one of the same name.
  void add(TablePtr table);
  void add(RoutinePtr routine);
  /// Adds an index to a table, which must be there. Whoever holds the table keeps it as it was.
  void addIndex(std::string_view table, Index index);
  /// Forget an object; nothing happens when there is none of that name. The table of an index must
  /// be there, and whoever holds it keeps it as it was.
  void removeTable(std::string_view name);
  void removeRoutine(std::string_view name);
  void removeIndex(std::string_view table, std::string_view index);
  /// Forgets everything.
  void clear();

 private:
  std::map<std::string, TablePtr> tables_;
  std::map<std::string, RoutinePtr> routines_;
};

/// The table that a definition describes. Constraints without a name get one that follows from the
/// table and their columns, so that it is the same whenever the definition is read. `text` is the
/// batch that holds the definition, for messages. Throws `SqlError` or `tsql::SyntaxError`.
[[nodiscard]] std::shared_ptr<Table> describeTable(
    std::shared_ptr<const tsql::CreateTableStatement> definition, std::string_view text);

/// The index that a definition describes. Throws `SqlError` (1911: no such column).
[[nodiscard]] Index describeIndex(const tsql::CreateIndexStatement& definition, const Table& table);

/// The routine whose whole CREATE statement is `source`. Throws what parsing throws.
[[nodiscard]] std::shared_ptr<const Routine> describeRoutine(std::string source);

/// Refuses a name with a server or database part; there is nothing in a schema other than dbo
/// (208). Returns the object's own name.
[[nodiscard]] const std::string& objectName(const tsql::ObjectName& name, std::string_view text);

/// The type of declaration number `ordinal`, from 1; refuses one outside the engine, or that does
/// not exist (2715).
[[nodiscard]] Type declaredType(const tsql::TypeName& name, std::string_view text,
                                std::size_t ordinal);
/// The type of CAST; refuses one outside the engine, or that does not exist (243).
[[nodiscard]] Type castType(const tsql::TypeName& name, std::string_view text);

}  // namespace azcoll::embedded
