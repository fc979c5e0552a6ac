#pragma once

#include "component/call.h"

namespace azcoll::clifor {

/// A customer/supplier saved in one company, made common to its group;
/// documented with the service's class.
void DuplicaCliFor(Call& call) noexcept;

}  // namespace azcoll::clifor
