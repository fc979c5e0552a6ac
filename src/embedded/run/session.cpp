#include "embedded/run/session.h"

namespace azcoll::embedded {

bool TimeLimit::isOver() {
  if (timeout_.count() == 0) {
    return false;
  }
  const auto now = std::chrono::steady_clock::now();
  // Started by the first question, so that short texts never read the clock.
  if (!started_) {
    started_ = now;
  }
  return now - *started_ > timeout_;
}

}  // namespace azcoll::embedded
