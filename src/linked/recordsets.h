#pragma once

#include "component/call.h"

/// The companies of a group read from the links: as a list, or as an open recordset. The methods
/// are documented with the service's class.
namespace azcoll::linked {

void DitteCollegate(Call& call) noexcept;
void DitteCollegatePiuPrincipale(Call& call) noexcept;
void RecordsetDitteCollegate(Call& call) noexcept;
void RecordsetDitteCollegatePiuPrincipale(Call& call) noexcept;
void RecordsetDitteCollegatePiuPrincipaleNoPrinc(Call& call) noexcept;
void RecordsetDitteCollegatePiuPrincipalePiuDenunciaIva(Call& call) noexcept;
void RecordsetDitteCollegatePiuPrincipalePerChiuApeEsercizio(Call& call) noexcept;

}  // namespace azcoll::linked
