#pragma once

#include <cstddef>
#include <string>
#include <vector>

#include "cli/schema.h"
#include "data/connection.h"

namespace azcoll::cli {

/// One thing that is not as the service needs it.
struct Finding {
  std::string kind;    ///< one word for programs: `tabella`, `colonna`, `tipo`, `diritto`, …
  std::string object;  ///< table, column, parameter …, by name
  std::string message;
  std::string remedy;  ///< what mends it: T-SQL, or a command
};

/// What was looked at, and what is to be mended.
struct Diagnosis {
  std::size_t tables = 0;
  std::size_t columns = 0;
  std::size_t routines = 0;
  std::size_t rights = 0;
  bool hasUsers = false;            ///< a server; else an engine that knows none
  std::string user;                 ///< of a server; empty when it does not tell
  std::vector<Finding> findings{};  ///< in the order in which they are to be mended
  std::vector<std::string>
      unchecked{};  ///< a sentence for each thing that the server does not tell
  std::vector<std::string> notes{};
};

/// How a database is changed, and what of it the one who asks can see.
struct Mending {
  bool server = false;          ///< else an engine that does not change tables once made
  bool seesEverything = true;   ///< else what is not seen may be there all the same
  std::vector<Grant> needed{};  ///< rights that make an object visible; one without needs none
  std::string grantee{};        ///< who is to be given them
};

/// Adds to `diagnosis` how `found` differs from `expected`. More columns, longer texts and wider
/// decimals are no difference.
void compareSchemas(Diagnosis& diagnosis, const Schema& expected, const Schema& found,
                    const Mending& mending);

/// Examines an open company database against the scripts that this program carries. What the
/// database does not tell is told as not checked, and the rest is checked; throws `Error` when it
/// does not even tell which objects it holds.
[[nodiscard]] Diagnosis diagnose(Connection& connection);

}  // namespace azcoll::cli
