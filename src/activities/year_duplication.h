#pragma once

#include "component/call.h"

namespace azcoll::activities {

/// The activity configuration of one VAT year copied onto another; documented with the service's
/// class.
void DuplicaAttività(Call& call) noexcept;

}  // namespace azcoll::activities
