#pragma once

#include "ado/com.h"
#include "data/variant.h"

namespace azcoll::ado {

/// The value of a VARIANT, references followed.
///
/// Integers of every size, currency and decimals arrive exactly; a single-precision number arrives
/// as the double of the same shortest text; a date to the millisecond. Nothing is the null object.
/// Throws `Error` for an array, an error value, a missing argument, a user-defined type, and an
/// object without automation.
[[nodiscard]] Variant fromVariant(const VARIANT& value);

/// The VARIANT of a value. A decimal that needs more than automation's 96 bits or 28 places travels
/// as its text, which databases read back exactly. Throws `Error` for a date before the year 100.
[[nodiscard]] ScopedVariant toVariant(const Variant& value);

}  // namespace azcoll::ado
