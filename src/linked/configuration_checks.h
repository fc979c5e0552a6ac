#pragma once

#include "component/call.h"

/// A company whose activities are not configured for the year: found, and asked about. The methods
/// are documented with the service's class.
namespace azcoll::linked {

bool ControllaDittaNonCollegata(Call& call) noexcept;
bool ControllaAttivitaNonCollegata(Call& call) noexcept;

}  // namespace azcoll::linked
