#pragma once

#include <cstddef>
#include <string>
#include <vector>

#include "data/connection.h"

namespace azcoll::deployment {

/// One thing that is not as the service needs it.
struct Finding {
  std::string kind;    ///< one word for programs: `tabella`, `colonna`, `tipo`, `diritto`, …
  std::string object;  ///< table, column, parameter …, by name
  std::string message;
  std::string remedy;  ///< what fixes it: T-SQL, or a command
};

/// What was examined, and what is to be fixed.
struct Diagnosis {
  std::size_t tables = 0;
  std::size_t columns = 0;
  std::size_t routines = 0;
  std::size_t rights = 0;
  bool hasUsers = false;            ///< a server; else an engine that knows none
  std::string user;                 ///< of a server; empty when it does not say
  std::vector<Finding> findings{};  ///< in the order in which they are to be fixed
  std::vector<std::string>
      unchecked{};  ///< a sentence for each thing that the server does not report
  std::vector<std::string> notes{};
};

/// Examines an open company database against the scripts that this program carries. What the
/// database does not report is listed as not checked, and the rest is checked; throws `Error` when
/// it does not even report which objects it holds.
[[nodiscard]] Diagnosis diagnose(Connection& connection);

}  // namespace azcoll::deployment
