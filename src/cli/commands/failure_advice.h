#pragma once

#include <string>
#include <vector>

#include "data/error.h"

namespace azcoll::cli {

/// What to check when a server cannot be reached or refuses the login; empty when the failure says
/// enough by itself. Drivers differ in numbers and states, so all that they reported is looked at:
/// `failures`, of which there is at least one.
[[nodiscard]] std::string whatToCheck(const std::vector<ErrorInfo>& failures);

/// Whether the database refused something because a table or a procedure is not there.
[[nodiscard]] bool isMissingObject(const ErrorInfo& info);

/// The failure in words, followed by where to learn more when something is not there or not
/// allowed.
[[nodiscard]] std::string withDiagnosisHint(const ErrorInfo& info);

/// That the connection was lost, with the failure that showed it and what to check.
[[nodiscard]] std::string describeLoss(const ErrorInfo& info);

}  // namespace azcoll::cli
