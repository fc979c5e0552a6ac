#pragma once

#include <optional>
#include <string>
#include <vector>

#include "deployment/diagnosis.h"
#include "deployment/rights.h"
#include "deployment/schema.h"

namespace azcoll::deployment {

/// Whether the database changes a table once it is made.
enum class Alteration { Possible, Impossible };

/// A user who does not see everything: what is not seen may be there all the same.
struct LimitedUser {
  std::vector<Grant> needed{};  ///< rights that make an object visible; one without needs none
  std::string grantee{};        ///< who is to be given them
};

/// Adds to `diagnosis` how `found` differs from `expected`, each difference with the statement that
/// fixes it. More columns, longer texts and wider decimals are not a difference. `user` is empty
/// when the one who asks sees everything.
void compareSchemas(Diagnosis& diagnosis, const Schema& expected, const Schema& found,
                    Alteration alteration, const std::optional<LimitedUser>& user);

}  // namespace azcoll::deployment
