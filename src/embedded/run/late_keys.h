#pragma once

#include <cstdint>
#include <functional>
#include <optional>

#include "embedded/plan/plan.h"
#include "embedded/run/session.h"

namespace azcoll::embedded {

/// Runs an UPDATE that SQLite refused for a duplicate key as SQL Server does: keys are compared
/// when all rows are written (`SET K = K + 1`), while SQLite compares row by row. The change is
/// made on a copy of the table, whose rows then replace those of the table. `bind` binds the
/// parameters of the update to a statement. Returns the rows changed, or nothing when the keys are
/// duplicates in the end too, or another constraint is broken; nothing is changed then. Costs as
/// much as the table is large.
[[nodiscard]] std::optional<std::int64_t> updateWithLateKeys(
    Session& session, const ChangeNode& update, const std::function<void(const Piece&)>& bind);

}  // namespace azcoll::embedded
