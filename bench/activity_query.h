#pragma once

#include <string>

namespace azcoll::bench {

/// How SQLite goes about the activity query, a step a line; "" before a benchmark of it has run.
[[nodiscard]] const std::string& activityQueryPlan();

}  // namespace azcoll::bench
