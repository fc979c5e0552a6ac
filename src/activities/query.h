#pragma once

#include <string>
#include <string_view>

#include "component/call.h"

/// The activities of a company: the statement that reads them, and its recordset. The methods are
/// documented with the service's class.
namespace azcoll::activities {

void StringaSQLAttivitaCollegate(Call& call) noexcept;
void RecordsetAttivitaCollegate(Call& call) noexcept;

/// The reference year of an activity method. A year 0 of the caller counts as missing, and without
/// any year the method fails, so that no deletion covers all years by it. Throws `Error`.
[[nodiscard]] Variant activityYear(Call& call);

/// Whose activities a selection takes.
enum class Companies : bool { CurrentOnly, All };

/// The selection of activity rows by the fields of the input object, with `prefix` before every
/// column. Every condition ends with a line break. Throws `Error` without a year.
[[nodiscard]] std::string ComponiWhereAttività(Call& call, std::string_view prefix = "",
                                               Companies companies = Companies::CurrentOnly);

}  // namespace azcoll::activities
