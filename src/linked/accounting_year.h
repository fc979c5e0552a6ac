#pragma once

#include "component/call.h"

namespace azcoll::linked {

/// Financial years of a company against a calendar year; documented with the service's class.
bool VerificaAnnoIvaEsercizioContabile(Call& call) noexcept;

}  // namespace azcoll::linked
