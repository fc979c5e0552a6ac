#pragma once

#include <ctime>

namespace azcoll::bench {

/// Seconds as a caller waits, on a server in another process.
inline double wallTime() {
  timespec now{};
  clock_gettime(CLOCK_MONOTONIC, &now);
  return static_cast<double>(now.tv_sec) + static_cast<double>(now.tv_nsec) * 1e-9;
}

}  // namespace azcoll::bench
