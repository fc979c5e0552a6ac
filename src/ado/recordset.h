#pragma once

#include <cstdint>

#include "ado/dispatch.h"

namespace azcoll::ado {

/// Whether the `State` of a connection or recordset says that it is open.
[[nodiscard]] bool stateIsOpen(Dispatch& object);

/// What an execution wrote into its records-affected argument; -1 when that is not a number.
[[nodiscard]] std::int64_t affectedRows(const ScopedVariant& written);

}  // namespace azcoll::ado
