#pragma once

#include <ctime>

namespace azcoll::bench {

/// Processor time of this thread, in seconds: what other programs do on the machine does not count.
inline double processorTime() {
  timespec now{};
  clock_gettime(CLOCK_THREAD_CPUTIME_ID, &now);
  return static_cast<double>(now.tv_sec) + static_cast<double>(now.tv_nsec) * 1e-9;
}

}  // namespace azcoll::bench
