#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "embedded/catalogue.h"

namespace azcoll::embedded {

/// The SQLite statements that make a table, in order. `catalogue` holds the tables that foreign
/// keys refer to; `text` is the batch, for messages. Throws `SqlError` (1767, 1770, 1776 for a
/// foreign key that fits nothing) or `tsql::SyntaxError`.
[[nodiscard]] std::vector<std::string> tableDefinition(const Table& table,
                                                       const Catalogue& catalogue,
                                                       std::string_view text);

/// The SQLite statements that make an index.
[[nodiscard]] std::vector<std::string> indexDefinition(const Table& table, const Index& index);

/// A column as SQLite stores it, without its constraints.
[[nodiscard]] std::string storedColumn(const Column& column);

/// SQLite's name of an index: unlike SQL Server's it is one among all tables.
[[nodiscard]] std::string indexStoreName(const Table& table, std::string_view index);

/// Ends the name of the index that holds apart the rows with missing values in a unique key: SQLite
/// allows many of them, SQL Server one.
inline constexpr std::string_view kNullIndexSuffix = " (null)";

/// The columns of the referenced table behind a foreign key.
[[nodiscard]] std::vector<std::size_t> referencedColumns(const Constraint& foreignKey,
                                                         const Table& referenced);

}  // namespace azcoll::embedded
