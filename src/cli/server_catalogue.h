#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "cli/schema.h"
#include "data/connection.h"

namespace azcoll::cli {

/// The questions put to the catalogue of a server: every text that the checks send stands behind
/// these functions. Each throws `Error` when the server refuses the question.

/// Who is asking, and what of the database that person sees.
struct ServerUser {
  std::string name;
  std::string defaultSchema;
  std::optional<bool> inRole;   ///< nothing when the role does not exist
  bool seesEverything = false;  ///< the catalogue hides nothing from this user
  bool ignoresCase = true;      ///< the database's order takes `a` and `A` for the same
};
[[nodiscard]] ServerUser readServerUser(Connection& connection, std::string_view role);

/// Names of those tables, procedures and functions of `expected` that are there already.
[[nodiscard]] std::vector<std::string> readServerNames(Connection& connection,
                                                       const Schema& expected);

/// What of `expected` is there and visible. An object is looked for where a statement finds it: in
/// the user's own schema, then in dbo.
[[nodiscard]] Schema readServerSchema(Connection& connection, const Schema& expected,
                                      const ServerUser& user);

/// Those of `grants` that the user does not have, for the objects that `found` holds; each with the
/// owner that the object was found with.
[[nodiscard]] std::vector<Grant> readMissingGrants(Connection& connection,
                                                   const std::vector<Grant>& grants,
                                                   const Schema& found);

}  // namespace azcoll::cli
