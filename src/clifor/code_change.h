#pragma once

#include "component/call.h"

namespace azcoll::clifor {

/// Moves the customer/supplier of the input object to `newCode` inside its company, with every row
/// that hangs off it. The order keeps the references whole at every step: the rows of the
/// sub-tables leave, the master row changes its code, then the rows come back under the new code,
/// the last table first. Throws `Error`.
void AggiornaCodiceCliFor(Call& call, const Variant& newCode);

}  // namespace azcoll::clifor
