#pragma once

#include <string>

#include "component/call.h"

/// The texts of the copies: which value of the source row is written how. Every function throws
/// `Error` when a column or a value is not there.
namespace azcoll::clifor {

/// The insertion of a master row up to its first value, the company.
[[nodiscard]] std::string masterInsertHead();

/// The full copy of the master row for the main company, with the agent that stands for the
/// source's there.
[[nodiscard]] std::string fullMasterInsert(Call& call, const Variant& main, Fields& source,
                                           const Variant& agent);

/// The reduced copy's values after the company: the same for every linked company.
[[nodiscard]] std::string reducedMasterTail(Call& call, Fields& source);

/// The copy of the sales data for the main company.
[[nodiscard]] std::string salesDataInsert(Call& call, const Variant& main, Fields& source);

}  // namespace azcoll::clifor
