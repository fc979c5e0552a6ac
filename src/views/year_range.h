#pragma once

#include <cstdint>

namespace azcoll::views {

/// VAT years from the first to the last, both included.
struct YearRange {
  std::int32_t first = 0;
  std::int32_t last = 0;
};

}  // namespace azcoll::views
