#pragma once

#include "data/recordset.h"
#include "data/variant.h"

namespace azcoll::activities {

/// Carries the values of a company's rows of the year `from` (in `old`) into its rows of the year
/// `to` (in `fresh`) and sends the changes. Both are results of the activity query; their filters
/// are changed.
///
/// Rows go together when they agree in kind, accounting type, both companies and activity code;
/// where several do, the n-th goes with the n-th. A row without partner is left alone. Only values
/// that differ are written. Throws `Error` when a recordset or the database refuses.
void carryValues(Recordset& old, Recordset& fresh, const Variant& company, const Variant& from,
                 const Variant& to);

}  // namespace azcoll::activities
