#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "data/connection.h"
#include "data/variant.h"
#include "views/query.h"
#include "views/year_range.h"

namespace azcoll::views {

/// What becomes of customers and suppliers that are saved in a company.
struct Sharing {
  std::int32_t group = 0;  ///< main company of the group in which they are copied
  bool copied = true;      ///< false for accounting type 1: nothing is propagated
};

/// A company's place in a group.
struct GroupMember {
  std::int32_t company = 0;
  Variant accountingType{};  ///< `CG86_INDTIPOCONT`
  Sharing sharing{};
  std::vector<std::int32_t> otherGroups{};  ///< main companies of its other groups of the year
};

/// A main company and the companies linked to it in a VAT year.
struct Group {
  std::int32_t main = 0;
  std::vector<GroupMember> members;  ///< the main company, then the linked ones by code
};

/// The groups of one VAT year that a view shows.
struct GroupYear {
  std::int32_t year = 0;
  /// The company's own groups, first the one that counts for its customers and suppliers, then
  /// those in which it is in another year of the view only.
  std::vector<Group> groups;
};

/// What is known of a company's groups.
struct GroupView {
  std::int32_t company = 0;
  CompanyNames names;
  std::vector<GroupYear> years;
  std::vector<std::int32_t> linkedYears;  ///< all years in which the company has links
};

/// Whether the company is in the group.
[[nodiscard]] bool isIn(const Group& group, std::int32_t company);

/// Reads the groups of a company: who is in which group by T-SQL, the rows of a group from the
/// stored procedure, the group that counts for customers and suppliers from the service. Throws
/// `Error` when the database refuses a statement and `std::runtime_error` for an unknown company.
[[nodiscard]] GroupView readGroups(const std::shared_ptr<Connection>& connection,
                                   std::int32_t company, const YearRange& years);

/// Whether the accounting type stops the propagation; a missing one counts as 0.
[[nodiscard]] bool stopsPropagation(const Variant& accountingType);

}  // namespace azcoll::views
