#pragma once

#include <string>
#include <string_view>

#include "embedded/values/value.h"

namespace azcoll::embedded {

/// Gives an expression the collation of text columns (`kCollationName`).
inline constexpr std::string_view kCollateClause = " COLLATE TSQL";

/// `name` quoted for SQLite.
[[nodiscard]] std::string quoteName(std::string_view name);
/// `text` as a text constant of SQLite.
[[nodiscard]] std::string quoteText(std::string_view text);

/// A value as a constant of SQLite.
[[nodiscard]] std::string sqliteConstant(const Value& value);

}  // namespace azcoll::embedded
