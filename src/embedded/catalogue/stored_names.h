#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

#include "embedded/catalogue/catalogue.h"

namespace azcoll::embedded {

/// A column as SQLite stores it, without its constraints.
[[nodiscard]] std::string storedColumn(const Column& column);

/// SQLite's name of an index: unlike SQL Server's it is one among all tables.
[[nodiscard]] std::string indexStoreName(const Table& table, std::string_view index);

/// Ends the name of the index that keeps rows with missing values in a unique key different: SQLite
/// allows many equal ones, SQL Server one.
inline constexpr std::string_view kNullIndexSuffix = " (null)";

/// The columns of the referenced table behind a foreign key.
[[nodiscard]] std::vector<std::size_t> referencedColumns(const Constraint& foreignKey,
                                                         const Table& referenced);

}  // namespace azcoll::embedded
