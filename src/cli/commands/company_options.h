#pragma once

#include <cstdint>
#include <string>

#include "views/year_range.h"

namespace CLI {
class App;
}

namespace azcoll::cli {

/// The company and the VAT years that a subcommand looks at.
struct CompanyOptions {
  std::string ditta;  ///< `--ditta`
  std::string anno;   ///< `--anno`
  std::string anni;   ///< `--anni`, for the subcommands that have it

  /// Declares `--ditta` and `--anno`.
  void setup(CLI::App& command);
  /// Declares `--anni`.
  void setupYears(CLI::App& command);

  /// The company's code. Throws `UsageError` for anything else.
  [[nodiscard]] std::int32_t company() const;

  /// The year or years asked for; the current year when none is. Throws `UsageError` for what is
  /// not a year, for a range that runs backwards or is too long, and when both options are given.
  [[nodiscard]] views::YearRange years() const;
};

}  // namespace azcoll::cli
