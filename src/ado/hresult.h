#pragma once

#include <string>

#include "ado/win.h"
#include "data/error.h"

namespace azcoll::ado {

/// What a failure code says, in Italian for the usual ones, always with the code itself.
[[nodiscard]] std::string describe(HRESULT code);

/// A failure of automation itself (not of the database), described.
[[nodiscard]] Error automationError(HRESULT code);

/// Throws `automationError(code)` when `code` is a failure.
void check(HRESULT code);

}  // namespace azcoll::ado
