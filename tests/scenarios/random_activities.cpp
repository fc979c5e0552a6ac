#include "scenarios/random_activities.h"

#include <algorithm>

#include "data/text.h"

namespace azcoll::test {
namespace {

constexpr int kCompanies[]{1, 2, 3, 4, 5, 6};
constexpr int kYears[]{2022, 2023, 2024, 2025};
constexpr int kShared = 7;  // a code that every company may use
constexpr const char* kDescriptions[]{"N'Attività'", "N'Caffè e tè'", "N'Perché no? L''età'",
                                      "N'È già così: più qualità'", "N'Œuvre Łódź – 50 €'"};
constexpr const char* kSettings[]{"NULL, NULL, NULL, NULL", "12.50, N'22', NULL, 30",
                                  "100.00, N'4', '20230115', NULL", "0.00, NULL, '20240229', 1"};

}  // namespace

std::vector<std::string> RandomActivities::companies() {
  std::vector<std::string> statements;
  for (const int company : kCompanies) {
    statements.push_back(join("INSERT INTO CG16_ANAGGEN (CG16_CODICE, CG16_RAGSOANAG) VALUES (",
                              company, ", N'Società ", company, "')"));
    statements.push_back(
        join("INSERT INTO CG18_ANADITTABASE (CG18_DITTA, CG18_CODICE_CG16) VALUES"
             " (",
             company, ", ", company, ")"));
  }
  return statements;
}

std::vector<std::string> RandomActivities::statements() {
  statements_ = {"DELETE FROM CG86_AZIENDECOLL", "DELETE FROM CG96_ANAGATTIVITA",
                 "DELETE FROM CG25_ANADITTAGEST", "DELETE FROM CG19_ANADITTAESER"};
  links_.clear();
  for (const int company : kCompanies) {
    addManagementData(company);
    addRegistry(company);
  }
  const auto rowsFrom = static_cast<std::ptrdiff_t>(statements_.size());
  for (const int year : kYears) {
    addLinks(year);
    for (const int company : kCompanies) {
      addOwnActivities(company, year);
    }
  }
  // Identities say nothing about year or company.
  for (auto last = statements_.size(); last > static_cast<std::size_t>(rowsFrom) + 1; --last) {
    const auto drawn =
        static_cast<std::size_t>(rowsFrom) +
        below(static_cast<std::uint32_t>(last) - static_cast<std::uint32_t>(rowsFrom));
    std::swap(statements_[last - 1], statements_[drawn]);
  }
  return std::move(statements_);
}

YearCopy RandomActivities::call(const std::vector<ActivityRow>& rows) {
  YearCopy copy;
  // Most calls have something to copy.
  for (int tries = 0; tries < 4; ++tries) {
    copy.company = anyOf(kCompanies);
    copy.from = anyOf(kYears);
    copy.to = anyOf(kYears);
    copy.overSeveral = in(50);
    if (std::ranges::any_of(rows, [&](const ActivityRow& row) { return copy.isSource(row); })) {
      break;
    }
  }
  // Some concern a company that stays linked under another one, whose rows are not to be touched.
  if (!rows.empty() && in(25)) {
    const ActivityRow& link = anyOf(rows);
    const auto again = std::ranges::find_if(rows, [&](const ActivityRow& row) {
      return row.kind == 0 && row.isLink() && row.main == link.main && row.linked == link.linked &&
             row.code == link.code && row.year != link.year;
    });
    if (again != rows.end()) {
      copy = {.company = link.linked, .from = link.year, .to = again->year, .overSeveral = true};
    }
  }
  if (in(20)) {
    const auto own = static_cast<int>(below(4));
    copy.code = in(50) ? kShared : copy.company * 100 + own;
  }
  if (in(10) && !rows.empty()) {
    copy.id = anyOf(rows).id;
  }
  return copy;
}

/// Regime 0 and a company without management data let every reading fill the year; a financial
/// year is needed for it as well.
void RandomActivities::addManagementData(int company) {
  if (!in(20)) {
    const std::uint32_t regime = in(20) ? 0 : 1 + below(2);
    const std::string percentage = orNull("33.00", 30);
    statements_.push_back(
        join("INSERT INTO CG25_ANADITTAGEST (CG25_DITTA_CG18, CG25_FLGIVAQUATER, CG25_PERCDETRIVA)"
             " VALUES (",
             company, ", ", regime, ", ", percentage, ")"));
  }
  if (in(60)) {
    statements_.push_back(
        join("INSERT INTO CG19_ANADITTAESER (CG19_DITTA_CG18, CG19_ANNO, CG19_DATAAPE,"
             " CG19_DATACHIU) VALUES (",
             company, ", 2020, '20200101', '20301231')"));
  }
}

void RandomActivities::addRegistry(int company) {
  for (const int code :
       {kShared, company, company * 100, company * 100 + 1, company * 100 + 2, company * 100 + 3}) {
    if (in(80)) {
      const char* const description = anyOf(kDescriptions);
      statements_.push_back(
          join("INSERT INTO CG96_ANAGATTIVITA (CG96_DITTA_CG18, CG96_CODATTIVITA,"
               " CG96_DESCRATTIVITA) VALUES (",
               company, ", ", code, ", ", orNull(description, 10), ")"));
    }
  }
}

std::string RandomActivities::codeOf(int company) {
  if (in(10)) {
    return "NULL";
  }
  const auto own = static_cast<int>(below(4));
  return join(in(25) ? kShared : company * 100 + own);
}

void RandomActivities::addOwnActivities(int company, int year) {
  if (in(40)) {
    return;
  }
  const std::uint32_t count = 1 + below(4);
  // Most years have one main activity, some none, some two.
  const std::uint32_t first = below(count);
  const bool marked = in(70);
  const bool second = in(5);
  for (std::uint32_t row = 0; row < count; ++row) {
    addRow(0, year, placeOf(company, company), marked && (row == first || (second && row == 0)));
  }
}

/// Links that go on from the year before with other values, and new ones.
void RandomActivities::addLinks(int year) {
  std::vector<Place> now;
  for (const Place& place : links_) {
    if (in(60)) {
      addRow(0, year, place, in(20));
      now.push_back(place);
    }
  }
  if (in(60)) {
    const int main = kCompanies[below(3)];  // few, so that companies meet in several groups
    const std::uint32_t count = 1 + below(3);
    const std::uint32_t first = below(4);  // many groups have no main activity among the links
    for (std::uint32_t row = 0; row < count; ++row) {
      const int linked = anyOf(kCompanies);
      if (linked != main) {
        const Place place = placeOf(main, linked);
        const bool ofCustomers = in(8);
        addRow(ofCustomers ? 99 : 0, year, place, row == first);
        now.push_back(place);
      }
    }
  }
  links_ = now;
}

RandomActivities::Place RandomActivities::placeOf(int main, int linked) {
  Place place{.main = main, .linked = linked, .accounting = "0", .code = codeOf(linked)};
  if (!in(60)) {
    place.accounting = orNull(join(below(3)), 30);
  }
  return place;
}

void RandomActivities::addRow(int kind, int year, const Place& place, bool flagged) {
  // One after the other: the order in which a compiler evaluates arguments is its own.
  const std::uint32_t letters = below(4);
  const char* const settings = anyOf(kSettings);
  statements_.push_back(
      join("INSERT INTO CG86_AZIENDECOLL (CG86_INDTIPO, CG86_ANNOIVA, CG86_INDTIPOCONT,"
           " CG86_DITTA_CG18, CG86_DITTACOLL_CG18, CG86_CODATTIVITA, CG86_FLGATTIVITAPRINC,"
           " CG86_INDCOMLETTINT, CG86_PERCDETRIVA, CG86_CODICE_CG28, CG86_DATAINPLAFOND,"
           " CG86_INDNOITAEXP) VALUES (",
           kind, ", ", year, ", ", place.accounting, ", ", place.main, ", ", place.linked, ", ",
           place.code, ", ", flagged ? 1 : 0, ", ", letters, ", ", settings, ")"));
}

}  // namespace azcoll::test
