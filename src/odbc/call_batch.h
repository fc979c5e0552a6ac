#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "cursor/result_set.h"
#include "data/variant.h"
#include "odbc/diagnostics.h"
#include "odbc/parameters.h"

namespace azcoll::odbc {

/// Whether a driver has refused a parameter that was left to its default (FreeTDS does).
[[nodiscard]] bool isRefusedDefault(const DriverFailure& failure);

/// The call of a procedure as a T-SQL batch that names its parameters, so that those whose value is
/// Empty can be left out and their declared defaults count. Outputs pass through variables, whose
/// values are the batch's last result.
class CallBatch {
 public:
  /// Throws `Error` when a value does not convert.
  CallBatch(std::string_view procedure, const std::vector<DeclaredParameter>& declared,
            const std::vector<Variant>& values);

  [[nodiscard]] const std::string& text() const { return text_; }
  [[nodiscard]] std::vector<BoundParameter>& parameters() { return bound_; }

  /// Moves the outputs from the end of `execution` to their places in `values`. Throws
  /// `DriverFailure` when they are not there.
  void takeOutputs(ExecutionResult& execution, std::vector<Variant>& values) const;

 private:
  std::string text_;
  std::vector<BoundParameter> bound_;
  std::vector<std::size_t> outputs_;  // their places among the parameters
};

}  // namespace azcoll::odbc
