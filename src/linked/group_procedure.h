#pragma once

#include <cstdint>
#include <memory>

#include "data/connection.h"
#include "data/date.h"
#include "data/variant.h"

namespace azcoll::linked {

/// Which companies of a group the procedure is to give. Null: without that condition.
struct GroupFilter {
  bool withoutMain = false;
  bool withoutCurrent = false;
  Variant kind = kNull;          ///< customers or suppliers, of `intermediary`
  Variant intermediary = kNull;  ///< only companies that have it
  Variant branch = kNull;        ///< only companies that have it
};

/// The command for the stored procedure that knows the group of `company` in the year of `start`;
/// `selectCompanies` completes it. Executed, it gives one row a company (`DITTA`, `PRINCIPALE`,
/// `CG86_INDTIPOCONT`), the main one first, and their list in `@DitteCollegate`. Throws `Error`
/// when the database does not know the procedure.
[[nodiscard]] std::shared_ptr<Command> groupCommand(const std::shared_ptr<Connection>& connection,
                                                    const Variant& company, const Date& start);

/// Sets the parameters that select the companies; `duplicating` is passed unchanged. Throws
/// `Error`.
void selectCompanies(Command& command, std::int16_t duplicating, const GroupFilter& filter);

}  // namespace azcoll::linked
