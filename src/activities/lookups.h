#pragma once

#include "component/call.h"

/// Which activity applies: by sectional register, by the selection of the input object, and whether
/// it exists at all. The methods are documented with the service's class.
namespace azcoll::activities {

void GetCodiceAttivitàDaSezionale(Call& call) noexcept;
void GetCodiceAttività(Call& call) noexcept;
bool VerificaEsistenzaAttivita(Call& call) noexcept;

}  // namespace azcoll::activities
