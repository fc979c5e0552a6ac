#include "cli/commands/company_options.h"

#include <CLI/App.hpp>
#include <fmt/format.h>
#include <limits>
#include <optional>
#include <string_view>

#include "cli/commands/typed_values.h"
#include "cli/console.h"
#include "component/platform.h"

namespace azcoll::cli {
namespace {

// The years that a DATETIME and a VAT year can share; what is typed in two digits is not a year.
constexpr std::int32_t kFirstYear = 1900;
constexpr std::int32_t kLastYear = 9999;
constexpr std::int32_t kMostYears = 10;

std::int32_t yearOf(std::string_view option, std::string_view text, std::string_view part) {
  if (const std::optional<std::int32_t> year = wholeNumberIn(part, kFirstYear, kLastYear)) {
    return *year;
  }
  throw UsageError(fmt::format("{} vuole {}, non «{}».", option,
                               option == "--anni" ? "due anni come 2023-2025" : "un anno come 2025",
                               text));
}

views::YearRange rangeOf(const std::string& text) {
  const std::size_t dash = text.find('-');
  if (dash == std::string::npos) {
    throw UsageError(fmt::format("--anni vuole due anni come 2023-2025, non «{}».", text));
  }
  const std::string_view whole = text;
  const views::YearRange range{yearOf("--anni", text, whole.substr(0, dash)),
                               yearOf("--anni", text, whole.substr(dash + 1))};
  if (range.last < range.first) {
    throw UsageError(fmt::format("--anni va dal primo all'ultimo anno: {}-{}, non «{}».",
                                 range.last, range.first, text));
  }
  if (range.last - range.first >= kMostYears) {
    throw UsageError(fmt::format("--anni ammette al massimo {} anni.", kMostYears));
  }
  return range;
}

}  // namespace

void CompanyOptions::setup(CLI::App& command) {
  command.add_option("--ditta", ditta, "codice dell'azienda")->type_name("N")->required();
  command.add_option("--anno", anno, "anno IVA (predefinito: quello corrente)")->type_name("ANNO");
}

void CompanyOptions::setupYears(CLI::App& command) {
  command
      .add_option("--anni", anni,
                  "più anni IVA uno accanto all'altro, con le differenze\n(al posto di --anno)")
      ->type_name("ANNO-ANNO");
}

std::int32_t CompanyOptions::company() const {
  const std::optional<std::int32_t> code =
      wholeNumberIn(ditta, 0, std::numeric_limits<std::int32_t>::max());
  if (!code) {
    throw UsageError(
        fmt::format("--ditta vuole il codice numerico di un'azienda, non «{}».", ditta));
  }
  return *code;
}

views::YearRange CompanyOptions::years() const {
  if (!anno.empty() && !anni.empty()) {
    throw UsageError("Le opzioni --anno e --anni si escludono.");
  }
  if (!anni.empty()) {
    return rangeOf(anni);
  }
  const std::int32_t year =
      anno.empty() ? defaultPlatform()->today().year : yearOf("--anno", anno, anno);
  return {year, year};
}

}  // namespace azcoll::cli
