#pragma once

#include <string>

#include "component/call.h"

/// The code of a customer/supplier: free in the whole group, and recorded in the numbering.
namespace azcoll::clifor {

/// The group as the look-ups give it to a duplication.
struct Group {
  std::string company;  ///< the current one
  std::string main;     ///< "" when it is not known
  std::string others;   ///< the rest, separated by ", "
};

/// Finds the first code, counting up from `code`, that no company of the group but the current one
/// holds for the kind. Returns true when `code` itself was free, else false with the new code in
/// it. A failing statement counts as "not taken": the caller's next statement then fails with the
/// message that says why.
[[nodiscard]] bool CodiceCliForLibero(Call& call, const Group& group, Variant& code);

/// Records the code in the numbering of every company of the group but the current one. What cannot
/// be recorded is reported in `Stato` and `Errore`. Throws `Error` without a numbering object.
void NumeraCliFor(Call& call, const Group& group, const Variant& code);

}  // namespace azcoll::clifor
