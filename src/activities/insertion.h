#pragma once

#include "component/call.h"

namespace azcoll::activities {

/// An activity row for the reference year: the default one, or a copy of the latest; documented
/// with the service's class.
void InserisciAttività(Call& call) noexcept;

}  // namespace azcoll::activities
