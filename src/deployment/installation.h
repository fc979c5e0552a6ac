#pragma once

#include <span>
#include <string>
#include <vector>

#include "data/connection.h"
#include "data/error.h"
#include "deployment/scripts.h"

namespace azcoll::deployment {

/// The database has a table, a procedure or a function of the company's already.
class AlreadyThere : public Error {
 public:
  using Error::Error;
};

/// The connection was lost on the way; the message says what is installed and what is not.
class InstallationCutShort : public Error {
 public:
  using Error::Error;
};

/// A right that the server would not grant.
struct RefusedGrant {
  std::string right;   ///< `SELECT su dbo.CG44_CLIFOR`
  std::string reason;  ///< what the server says
};

/// Runs a script batch by batch. Throws `Error` that names script, line and statement.
void runScript(Connection& connection, const Script& script);

/// Runs scripts on an open database, each in a transaction of its own: a script is there as a whole
/// or not at all. Only of the script of rights every GRANT counts by itself, for servers differ in
/// what they take: those refused are returned, the others stay. Throws `AlreadyThere`, with nothing
/// changed; `Error` for a script that failed, with what is installed and what is not;
/// `InstallationCutShort`.
[[nodiscard]] std::vector<RefusedGrant> install(Connection& connection,
                                                std::span<const Script* const> scripts);

}  // namespace azcoll::deployment
