#pragma once

#include <string>

#include "data/variant.h"

namespace azcoll::views {

/// Text form for people: as `Variant::text`, with NULL for the missing value.
[[nodiscard]] std::string displayText(const Variant& value);

/// Text form for programs: as `displayText`, but dates as `yyyy-mm-dd[ hh:mm:ss]` (thousandths of
/// a second follow only when there are some) and nothing for Null.
[[nodiscard]] std::string exchangeText(const Variant& value);

}  // namespace azcoll::views
