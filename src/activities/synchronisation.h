#pragma once

#include "component/call.h"

/// The company's VAT data, its activities and their registry entries kept in step. The methods are
/// documented with the service's class.
namespace azcoll::activities {

void AggiornaAttività(Call& call) noexcept;
void AggiornaDateRegistriAnagraficaAttività(Call& call) noexcept;
void AggiornaDatiGestionaliPerAttività(Call& call) noexcept;
void AggiornaDatiGestionaliPerAnagraficaAttività(Call& call) noexcept;

}  // namespace azcoll::activities
