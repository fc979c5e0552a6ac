#pragma once

#include <string>
#include <vector>

#include "embedded/plan/slots.h"
#include "tsql/shape.h"

namespace azcoll::embedded {

/// Whether the constants of a text fit what the plan took for granted.
[[nodiscard]] bool guardsHold(const std::vector<Guard>& guards, const tsql::Shape& shape);

/// Refuses constants that have no value here: numbers of more than 38 digits (1007), floating-point
/// numbers out of range (168), binary constants. A plan is shared by texts with and without them,
/// and nothing of a text may run that holds one.
void checkConstants(const tsql::Shape& shape);

/// The text of a constant with apostrophes written twice undone.
[[nodiscard]] std::string literalText(const tsql::LiteralToken& token);

}  // namespace azcoll::embedded
