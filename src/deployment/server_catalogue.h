#pragma once

#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "data/connection.h"
#include "deployment/rights.h"
#include "deployment/schema.h"

namespace azcoll::deployment {

/// The questions put to the catalogue of a server: every text that the checks send stands behind
/// these functions. Each throws `Error` when the server refuses the question.

/// Asks something that the other checks can do without. When the server refuses it, or answers in
/// another form, `unchecked` gets a sentence on `what`, and the answer is false. A connection that
/// is lost is not a refusal: its `Error` passes.
bool couldAsk(std::vector<std::string>& unchecked, std::string_view what,
              const std::function<void()>& question);

/// Who is asking, and what of the database that person sees.
struct ServerUser {
  std::string name{};  ///< empty when the server does not say
  std::string defaultSchema = "dbo";
  std::optional<bool> inRole{};  ///< nothing when the role does not exist
  bool seesEverything = false;   ///< the catalogue hides nothing from this user
  bool ignoresCase = true;       ///< the database's order takes `a` and `A` for the same
};
[[nodiscard]] ServerUser readServerUser(Connection& connection, std::string_view role);

/// Names of those tables, procedures and functions of `expected` that are there already.
[[nodiscard]] std::vector<std::string> readServerNames(Connection& connection,
                                                       const Schema& expected);

/// What of `expected` is there and visible. An object is looked for where a statement finds it: in
/// the user's own schema, then in dbo. Columns and parameters that the server does not report are
/// marked as not known, and `unchecked` gets a sentence for each question that it refused.
[[nodiscard]] Schema readServerSchema(Connection& connection, const Schema& expected,
                                      const ServerUser& user, std::vector<std::string>& unchecked);

/// Those of `grants` that the user does not have, for the objects that `found` holds; each with the
/// owner that the object was found with. A function that can be read from counts as granted.
[[nodiscard]] std::vector<Grant> readMissingGrants(Connection& connection,
                                                   const std::vector<Grant>& grants,
                                                   const Schema& found);

}  // namespace azcoll::deployment
