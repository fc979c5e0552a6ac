#pragma once

#include <string>

#include "tsql/ast.h"

namespace azcoll::tsql {

/// Canonical T-SQL text of a tree, on one line: key words upper case, one blank between words,
/// names bare where they can be and in brackets otherwise. `parse(print(tree))` gives an equal
/// tree.
[[nodiscard]] std::string print(const Batch& batch);
[[nodiscard]] std::string print(const Statement& statement);
[[nodiscard]] std::string print(const Query& query);
[[nodiscard]] std::string print(const Expression& expression);

}  // namespace azcoll::tsql
