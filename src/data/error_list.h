#pragma once

#include <cstddef>
#include <utility>
#include <vector>

#include "data/error.h"

namespace azcoll {

/// `Errors` kept in memory, for the providers that have no collection of their own.
class ErrorList final : public Errors {
 public:
  [[nodiscard]] std::size_t count() const override { return entries_.size(); }
  [[nodiscard]] ErrorInfo item(std::size_t index) const override;
  void clear() override { entries_.clear(); }

  /// Replaces the entries by those of a new failure, the most informative one first.
  void record(std::vector<ErrorInfo> entries) { entries_ = std::move(entries); }

 private:
  std::vector<ErrorInfo> entries_;
};

}  // namespace azcoll
