#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "data/connection.h"
#include "data/variant.h"
#include "views/query.h"

namespace azcoll::views {

/// One activity of a company in a VAT year.
struct Activity {
  std::int32_t id = 0;    ///< `CG86_IDATTIVITA`
  std::int32_t main = 0;  ///< main company of the arrangement; the company itself for its own ones
  std::int32_t code = 0;
  std::string description{};
  bool principal = false;  ///< the year's main activity, as the service finds it out
  bool flagged = false;    ///< marked as main in the row itself
  std::vector<std::string> registers{};
  std::vector<Variant> settings{};  ///< of the columns `ActivityView::settings`
};

/// The activities of one VAT year.
struct ActivityYear {
  std::int32_t year = 0;
  std::vector<Activity> activities{};           ///< in the order of the service's query
  std::vector<std::string> freeRegisters{};     ///< sectional registers without activity
  std::vector<std::string> hiddenRegisters{};   ///< of an activity that the query does not show
  std::vector<std::int32_t> withoutRegistry{};  ///< codes that the activity registry does not have
};

/// A setting that differs between two years.
struct SettingChange {
  std::string column;
  Variant before;
  Variant now;
};

enum class ActivityChangeKind { Added, Gone, Altered };

/// An activity that differs between two years.
struct ActivityChange {
  ActivityChangeKind kind = ActivityChangeKind::Altered;
  std::int32_t code = 0;
  std::int32_t main = 0;
  std::string description;
  std::vector<SettingChange> settings{};  ///< of an altered activity
};

/// What is known of a company's activities in a year and in the one before.
struct ActivityView {
  std::int32_t company = 0;
  CompanyNames names;
  std::vector<std::string> settings;  ///< columns of `CG86_AZIENDECOLL` that two years compare by
  ActivityYear current;
  ActivityYear previous;
  std::vector<std::int32_t> activityYears;  ///< all years in which the company has activities
};

/// Reads the activities of a company in a year and in the one before, and changes nothing: the
/// service's text of the activity query, run as it stands, and T-SQL for the sectional registers.
/// Throws `Error` when the database refuses a statement and `std::runtime_error` for an unknown
/// company.
[[nodiscard]] ActivityView readActivities(const std::shared_ptr<Connection>& connection,
                                          std::int32_t company, std::int32_t year);

/// What became of the activities since the year before, by activity code. Rows of the same code and
/// main company go together in their order.
[[nodiscard]] std::vector<ActivityChange> changesOf(const ActivityView& view);

}  // namespace azcoll::views
