#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "embedded/catalogue/catalogue.h"

namespace azcoll::embedded {

/// The SQLite statements that make a table, in order. `catalogue` holds the tables that foreign
/// keys refer to; `text` is the batch, for messages. Throws `SqlError` (1767, 1770, 1776,
/// 1778, 8139 for a foreign key that fits nothing) or `tsql::SyntaxError`.
[[nodiscard]] std::vector<std::string> tableDefinition(const Table& table,
                                                       const Catalogue& catalogue,
                                                       std::string_view text);

/// The SQLite statements that make an index.
[[nodiscard]] std::vector<std::string> indexDefinition(const Table& table, const Index& index);

}  // namespace azcoll::embedded
