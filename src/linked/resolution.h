#pragma once

#include <memory>
#include <string>

#include "component/call.h"
#include "linked/group_procedure.h"

/// Who is linked to whom, for the company and the year of a call. The methods are documented with
/// the service's class.
namespace azcoll::linked {

std::string GetDittaPrincipale(Call& call) noexcept;
void ControllaDittaPrincipale(Call& call) noexcept;
void ControllaDittaCollegata(Call& call) noexcept;

/// Whether the company takes part in a link of `year`; a failure counts as no. Throws `Error`.
[[nodiscard]] bool isLinkedIn(Call& call, const Variant& year);

/// The companies to receive reduced copies: all of the group but the main and the current one.
/// Returns their list; the procedure's recordset goes to `companies`, connected and open. A failure
/// is swallowed and leaves the list empty.
std::string LeggiDitteCollegate(Call& call, std::shared_ptr<Recordset>& companies) noexcept;

/// Asks the stored procedure for the group, then releases the command. The recordset stands in
/// `companies` before that; it stays connected, on its first row. Throws `Error`.
void readGroup(Call& call, const GroupFilter& filter, std::shared_ptr<Recordset>& companies);

}  // namespace azcoll::linked
