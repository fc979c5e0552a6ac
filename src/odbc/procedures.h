#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "odbc/parameters.h"
#include "odbc/session.h"

namespace azcoll::odbc {

/// The declared parameters of a stored procedure, in their order, without its return value. None
/// when the procedure has none or is not there: only calling it tells. Throws `DriverFailure`.
[[nodiscard]] std::vector<DeclaredParameter> declaredParameters(const Session& session,
                                                                std::string_view procedure,
                                                                int timeoutSeconds);

/// The ODBC text that calls a procedure with that many parameters.
[[nodiscard]] std::string callText(std::string_view procedure, std::size_t parameters);

}  // namespace azcoll::odbc
