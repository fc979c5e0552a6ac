#pragma once

#include <cstdint>
#include <optional>
#include <string_view>

#include "data/variant.h"
#include "service/members.h"

namespace azcoll::cli {

/// The value that a text typed for a variant field stands for: a date in a date field, a whole
/// number (32 bits, 64 bits or decimal, the first that holds it), `true` or `false`; anything else
/// is the text itself. A number with leading zeros stays a text, so that no digit is lost.
[[nodiscard]] Variant typedValue(std::string_view text, FieldUse use);

/// The number that a text of digits alone stands for, when it lies between the two bounds.
[[nodiscard]] std::optional<std::int32_t> wholeNumberIn(std::string_view text, std::int32_t least,
                                                        std::int32_t most);

/// Sets an input field from `CAMPO=VALORE`. The field's name may lack accents or the right letter
/// case. Throws `UsageError` when there is no such field, when it is an object, or when the value
/// does not suit it.
void setField(CLSCO_INPUTAZCOLL& input, std::string_view assignment);

/// Sets a variant field to Null. Throws `UsageError` when there is no such field or it is of
/// another kind.
void setFieldNull(CLSCO_INPUTAZCOLL& input, std::string_view name);

/// The input field of this name; throws `UsageError` naming the nearest when there is none.
[[nodiscard]] const InputField& inputFieldNamed(std::string_view name);

}  // namespace azcoll::cli
