#pragma once

#include "component/call.h"

/// Removing the activity rows of a year. The methods are documented with the service's class.
namespace azcoll::activities {

void StringaSQLEliminazioneAttività(Call& call) noexcept;
void StringaSQLAttivitàSingolaCollegamentoMultiAzienda(Call& call) noexcept;
void EliminaAttivitàSingolaCollegamentoMultiAzienda(Call& call) noexcept;

}  // namespace azcoll::activities
