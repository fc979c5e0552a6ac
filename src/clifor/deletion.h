#pragma once

#include "component/call.h"

namespace azcoll::clifor {

/// A customer/supplier deleted from the companies of its group;
/// documented with the service's class.
void EliminaCliFor(Call& call) noexcept;

}  // namespace azcoll::clifor
