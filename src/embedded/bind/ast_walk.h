#pragma once

#include <functional>
#include <string>
#include <string_view>

#include "tsql/ast.h"

namespace azcoll::embedded {

/// Calls `visit` with every direct operand of `expression`; queries inside are not entered.
void forEachOperand(const tsql::Expression& expression,
                    const std::function<void(const tsql::Expression&)>& visit);

/// Whether a call by this name is an aggregate.
[[nodiscard]] bool isAggregate(const tsql::FunctionCall& call);

/// Whether an aggregate stands in the expression, outside of queries inside it.
[[nodiscard]] bool containsAggregate(const tsql::Expression& expression);

/// Whether the value may differ from row to row: a column or a query stands in the expression.
[[nodiscard]] bool dependsOnRow(const tsql::Expression& expression);

/// Whether the variable `name` (folded) stands anywhere in the expression, queries included.
[[nodiscard]] bool mentionsVariable(const tsql::Expression& expression, std::string_view name);

/// Whether it stands in a query inside the expression.
[[nodiscard]] bool queryInsideMentions(const tsql::Expression& expression, std::string_view name);

}  // namespace azcoll::embedded
