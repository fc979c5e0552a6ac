#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace azcoll::deployment {

/// One right that a role needs: `GRANT right ON owner.object`.
struct Grant {
  std::string right;  ///< upper case: SELECT, INSERT, UPDATE, DELETE, EXECUTE
  std::string owner;
  std::string object;

  friend bool operator==(const Grant&, const Grant&) = default;
};

/// A role and its rights.
struct RoleRights {
  std::string role;
  std::vector<Grant> grants;
};

/// Reads the lines `GRANT right[, …] ON owner.object TO role` of a script, which must all name the
/// same role; other statements are passed over. Throws `Error` for a GRANT of another form.
[[nodiscard]] RoleRights readGrants(std::string_view script);

/// The role of `schema/permessi.sql`.
[[nodiscard]] const RoleRights& expectedRights();

}  // namespace azcoll::deployment
