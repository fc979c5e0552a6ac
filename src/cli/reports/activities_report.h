#pragma once

#include <iosfwd>

#include "views/activities.h"

namespace azcoll::cli {

/// For people: the activities of the year as a table, what is missing, and what differs from the
/// year before.
void printActivities(std::ostream& out, const views::ActivityView& view);

/// For programs: one object with `ditta`, `nome`, `anno`, `attivita`, `sezionali_senza_attivita`,
/// `senza_anagrafica`, `anno_precedente`, `differenze` (null when the year before has no
/// activities) and `anni_con_attivita`.
void printActivitiesJson(std::ostream& out, const views::ActivityView& view);

}  // namespace azcoll::cli
