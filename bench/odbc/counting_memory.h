#pragma once

#include <cstddef>

/// What this program has allocated with `new`: the rows that are kept, and not what a driver takes
/// for itself.
namespace azcoll::bench {

/// Bytes allocated and not yet given back.
[[nodiscard]] std::size_t liveBytes();

/// The most that were so since `startPeak`.
[[nodiscard]] std::size_t peakBytes();
void startPeak();

}  // namespace azcoll::bench
