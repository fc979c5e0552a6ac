#pragma once

#include <cstddef>
#include <string_view>

#include "tsql/ast.h"

namespace azcoll::tsql {

/// Deepest nesting of parentheses, subqueries, CASE and blocks that the parser follows; the message
/// beyond it is SQL Server's number 191.
inline constexpr std::size_t kMaxNesting = 200;

/// Longest chain of operators, joins or set operators within one expression or query; the message
/// beyond it is number 191 too. Together with the nesting it bounds the height of every tree, so
/// that a tree can be walked and destroyed by recursion.
inline constexpr std::size_t kMaxChain = 1000;

/// Parses one batch (no GO lines). Throws `SyntaxError`, which tsql/syntax_error.h declares.
[[nodiscard]] Batch parse(std::string_view text);

}  // namespace azcoll::tsql
