#pragma once

#include "component/call.h"

namespace azcoll::clifor {

/// A customer/supplier's intermediary, changed in one company, carried to its group;
/// documented with the service's class.
void ModificaCliFor(Call& call) noexcept;

}  // namespace azcoll::clifor
