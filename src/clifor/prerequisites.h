#pragma once

#include "component/call.h"

/// What must be there in a company before a customer/supplier is copied into it. Every function
/// throws `Error`.
namespace azcoll::clifor {

/// Makes sure that `company` has the intermediary of that kind, by a copy of the current company's;
/// nothing is done without one. A failure also stands in `Errore`, " in ControllaIntermedio".
void ControllaIntermedio(Call& call, const Variant& company, const Variant& kind,
                         const Variant& intermediary);

/// The same for the branch; " in ControllaSedi".
void ControllaSedi(Call& call, const Variant& company, const Variant& branch);

/// The same agent in another company: the one of the same general-registry entry. "" when there is
/// none.
[[nodiscard]] Variant AgenteCollegato(Call& call, const Variant& agentId, const Variant& target);

}  // namespace azcoll::clifor
