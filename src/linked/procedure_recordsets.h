#pragma once

#include "component/call.h"

/// The group seen from the company of a call, as the stored procedure gives it. The methods are
/// documented with the service's class.
namespace azcoll::linked {

void RecordsetDitteCollegateOPrincipale(Call& call) noexcept;
void RecordsetDitteCollegateOPrincipalePerSedi(Call& call) noexcept;
void RecordsetDitteCollegateOPrincipalePerIntermedi(Call& call) noexcept;

}  // namespace azcoll::linked
