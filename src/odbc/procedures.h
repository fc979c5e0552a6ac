#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "odbc/parameters.h"
#include "odbc/session.h"

namespace azcoll::odbc {

/// The declared parameters of a stored procedure, in their order, without its return value. A
/// server that speaks T-SQL lists the return value of every procedure, so that one that is not
/// there (or that the user may not call) is the failure 2812; elsewhere it has none, and only
/// calling it shows. Throws `DriverFailure`.
[[nodiscard]] std::vector<DeclaredParameter> declaredParameters(const Session& session,
                                                                std::string_view procedure,
                                                                int timeoutSeconds);

/// The ODBC text that calls a procedure with that many parameters.
[[nodiscard]] std::string callText(std::string_view procedure, std::size_t parameters);

}  // namespace azcoll::odbc
