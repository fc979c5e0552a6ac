#pragma once

#include <optional>
#include <string_view>

#include "embedded/values/types.h"
#include "embedded/values/value.h"
#include "tsql/ast.h"

namespace azcoll::embedded {

/// The type that a constant has of itself: INT, or DECIMAL for more digits; DECIMAL by its digits;
/// FLOAT; a text. Throws `SqlError` for a number of more than 38 digits.
[[nodiscard]] Type literalType(tsql::LiteralKind kind, std::string_view text);

/// The value of a constant in the form of its own type.
[[nodiscard]] Value literalValue(tsql::LiteralKind kind, std::string_view text, const Type& type);

/// The value of a parameter's default or of an argument: a constant, perhaps with a sign. Nothing
/// for any other expression.
[[nodiscard]] std::optional<Value> constantValue(const tsql::Expression& expression,
                                                 const Type& type);

}  // namespace azcoll::embedded
