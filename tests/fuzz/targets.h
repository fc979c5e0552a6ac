#pragma once

#include <array>
#include <string_view>

namespace azcoll::fuzz {

// One entry function per target. Each takes any bytes, throws `BrokenInvariant` when something that
// must always hold does not, and lets through no other exception.

/// Tokens, shape, parser, printer: see tsql_front_end.cpp.
void tsqlFrontEnd(std::string_view input);
/// A script run by engines with different inner workings: see shape_cache.cpp.
void shapeCache(std::string_view input);
/// Criteria of Filter and Find: see criteria.cpp.
void criteria(std::string_view input);
/// Decimals and conversions of variants: see variants.cpp.
void variants(std::string_view input);
/// Dates of the platform, the data layer and the engine: see dates.cpp.
void dates(std::string_view input);

struct Target {
  std::string_view name;  ///< folder of its corpus and of its crashes
  void (*entry)(std::string_view input);
};

inline constexpr std::array<Target, 5> kTargets{{{"tsql_front_end", tsqlFrontEnd},
                                                 {"shape_cache", shapeCache},
                                                 {"criteria", criteria},
                                                 {"variants", variants},
                                                 {"dates", dates}}};

}  // namespace azcoll::fuzz
