#include "statements/random_companies.h"

#include <algorithm>
#include <iterator>
#include <set>

#include "data/text.h"
#include "tsql/shape.h"

namespace azcoll::statements {
namespace {

// The companies of the example data first, so that the texts of the files name some of them.
constexpr int kCompanies[]{5, 10, 12, 15, 20, 30, 31, 40, 51, 52};
constexpr int kYears[]{2023, 2024, 2025, 2026, 0};
constexpr int kActivities[]{10, 12, 40, 1001, 1002, 1201, 4001, 4002, 4003};
constexpr const char* kVatCodes[]{"N'22'", "N'10'", "N'4'", "N'r4'", "N'E '"};
constexpr const char* kSections[]{"'01'", "'1 '", "'A '", "'00'"};
constexpr const char* kAtecoCodes[]{"N'01.21.00'", "N'10.71.10'", "N'46.34.10'"};

}  // namespace

std::string RandomCompanies::orNull(const std::string& value, std::uint32_t oneIn) {
  return below(oneIn) == 0 ? "NULL" : value;
}

std::vector<std::string> RandomCompanies::statements() {
  statements_ = {
      "INSERT INTO CG6A_TABATECO2007 (CG6A_CODICE, CG6A_DESCRIZ) VALUES (N'01.21.00', N'Uva'), "
      "(N'10.71.10', N'Pane'), (N'46.34.10', NULL)",
      "INSERT INTO CG35_PRSDATIPROC (CG35_PERCACCIVA, CG35_GGCALACCIVA, CG35_IMPMINVERSACC) VALUES "
      "(88.00, 20, 103.2900)"};
  rows_ = 0;
  for (const int company : kCompanies) {
    addCompany(company);
  }
  addLinks();
  for (const int company : kCompanies) {
    addActivities(company);
  }
  for (const int company : kCompanies) {
    addSections(company);
    addCustomers(company);
  }
  return std::move(statements_);
}

void RandomCompanies::addCompany(int company) {
  statements_.push_back(join("INSERT INTO CG16_ANAGGEN (CG16_CODICE, CG16_RAGSOANAG) VALUES (",
                             1000 + company, ", N'Società ", company % 3, "')"));
  statements_.push_back(
      join("INSERT INTO CG18_ANADITTABASE (CG18_DITTA, CG18_CODICE_CG16, CG18_ATECOCOD_CG6A) "
           "VALUES (",
           company, ", ", 1000 + company, ", ", orNull(anyOf(kAtecoCodes), 3), ")"));
  if (below(5) != 0) {
    statements_.push_back(
        join("INSERT INTO CG25_ANADITTAGEST (CG25_DITTA_CG18, CG25_FLGIVAQUATER, CG25_INDTIPODEN, "
             "CG25_INDAGRIC, CG25_PERCPRORATA, CG25_CODICE_CG28) VALUES (",
             company, ", ", below(3), ", ", orNull(std::to_string(below(3)), 3), ", ",
             orNull(std::to_string(below(2)), 3), ", ", orNull("12.50", 2), ", ",
             orNull(anyOf(kVatCodes), 3), ")"));
  }
  if (below(2) == 0) {
    statements_.push_back(
        join("INSERT INTO CG38_PARCOGE (CG38_DITTA_CG18, CG38_PERCACCIVA, CG38_GGCALACCIVA) VALUES "
             "(",
             company, ", ", orNull("97.00", 2), ", ", orNull("15", 2), ")"));
  }
  std::set<std::string> codes;
  for (int i = 0; i < 3; ++i) {
    codes.insert(anyOf(kVatCodes));
  }
  for (const std::string& code : codes) {
    statements_.push_back(
        join("INSERT INTO CG28_TABCODIVA (CG28_DITTA_CG18, CG28_CODICE, CG28_DESCR) VALUES (",
             company, ", ", code, ", ", orNull("N'Aliquota'", 4), ")"));
  }
  statements_.push_back(join(
      "INSERT INTO CG19_ANADITTAESER (CG19_DITTA_CG18, CG19_ANNO, CG19_DATAAPE, CG19_DATACHIU) "
      "VALUES (",
      company, ", 2024, '2024", below(2) == 0 ? "01" : "07", "01', '20",
      below(2) == 0 ? "241231" : "250630", "')"));
}

/// Links of a group: every year on its own, a company in more than one of them now and then.
void RandomCompanies::addLinks() {
  for (int i = 0; i < 40; ++i) {
    ++rows_;
    statements_.push_back(
        join("INSERT INTO CG86_AZIENDECOLL (CG86_INDTIPO, CG86_ANNOIVA, CG86_INDTIPOCONT, "
             "CG86_DITTA_CG18, CG86_DITTACOLL_CG18, CG86_CODATTIVITA) VALUES (",
             below(4) == 0 ? 99 : 0, ", ", anyOf(kYears), ", ", orNull(std::to_string(below(3)), 5),
             ", ", kCompanies[below(4)], ", ", anyOf(kCompanies), ", ",
             orNull(std::to_string(anyOf(kActivities)), 2), ")"));
  }
}

void RandomCompanies::addActivities(int company) {
  std::set<int> registry;
  for (const int year : kYears) {
    for (std::uint32_t left = below(4); left > 0; --left) {
      const int activity = anyOf(kActivities);
      registry.insert(activity);
      ++rows_;
      statements_.push_back(
          join("INSERT INTO CG86_AZIENDECOLL (CG86_INDTIPO, CG86_ANNOIVA, CG86_DITTA_CG18, "
               "CG86_DITTACOLL_CG18, CG86_CODATTIVITA, CG86_FLGATTIVITAPRINC, CG86_CODICE_CG28, "
               "CG86_ALQCOR1_CG28, CG86_PERCPRORATA, CG86_INDTIPODEN) VALUES (0, ",
               year, ", ", company, ", ", company, ", ", orNull(std::to_string(activity), 8), ", ",
               below(2), ", ", orNull(anyOf(kVatCodes), 3), ", ", orNull(anyOf(kVatCodes), 3), ", ",
               orNull("12.50", 2), ", ", orNull(std::to_string(below(3)), 3), ")"));
    }
  }
  for (const int activity : registry) {
    if (below(6) != 0) {
      statements_.push_back(
          join("INSERT INTO CG96_ANAGATTIVITA (CG96_DITTA_CG18, CG96_CODATTIVITA, "
               "CG96_DESCRATTIVITA, CG96_CODICE_CG6A, CG96_INDAGRIC) VALUES (",
               company, ", ", activity, ", ", orNull(join("N'Attività ", activity, "'"), 5), ", ",
               orNull(anyOf(kAtecoCodes), 2), ", ", orNull(std::to_string(below(2)), 3), ")"));
    }
  }
}

void RandomCompanies::addSections(int company) {
  for (const int year : {2024, 2025}) {
    for (const char* section : kSections) {
      if (below(2) == 0) {
        const auto row = below(static_cast<std::uint32_t>(rows_)) + 1;
        statements_.push_back(
            join("INSERT INTO CG32_ANADITTAPSEZ (CG32_DITTA_CG18, CG32_ANNO, CG32_SEZIONALE, "
                 "CG32_IDATTIVITA_CG86) VALUES (",
                 company, ", ", year, ", ", section, ", ", orNull(std::to_string(row), 2), ")"));
      }
    }
  }
}

void RandomCompanies::addCustomers(int company) {
  for (const int kind : {0, 1}) {
    statements_.push_back(
        join("INSERT INTO CG70_NUMERDOC (CG70_DITTA_CG18, CG70_SEZ_CG68, CG70_ANNO, "
             "CG70_TIPODOCINT, CG70_ULTNUMDOC) VALUES (",
             company, ", '00', 0, ", 901 + kind, ", ", below(200), ")"));
    for (int code = 100; code < 106; ++code) {
      if (below(2) == 0) {
        statements_.push_back(join(
            "INSERT INTO CG44_CLIFOR (CG44_DITTA_CG18, CG44_TIPOCF, CG44_CLIFOR, "
            "CG44_CODICE_CG16, CG44_FLGATTIVO) VALUES (",
            company, ", ", kind, ", ", code, ", ", 1000 + anyOf(kCompanies), ", ", below(2), ")"));
      }
    }
  }
}

std::string RandomCompanies::otherInteger(const std::string& number) {
  const auto isIn = [&number](const auto& values) {
    return std::any_of(std::begin(values), std::end(values),
                       [&](int value) { return std::to_string(value) == number; });
  };
  if (number.size() == 4 && number.starts_with("202")) {
    return std::to_string(kYears[below(4)]);
  }
  // Some numbers are a company here and an activity there; either is worth a try.
  if (isIn(kCompanies) && below(4) != 0) {
    return std::to_string(anyOf(kCompanies));
  }
  if (isIn(kActivities)) {
    return std::to_string(anyOf(kActivities));
  }
  return number;
}

std::string RandomCompanies::withOtherConstants(const std::string& text) {
  constexpr unsigned char kLastClass = 7;  // bytes of the key that stand for constants
  tsql::Shape shape;
  tsql::scanShape(text, shape);
  std::string other;
  std::size_t ordinal = 0;
  for (const char c : shape.key) {
    if (static_cast<unsigned char>(c) > kLastClass) {
      other += c;
      continue;
    }
    const tsql::LiteralToken& token = shape.literals.at(ordinal++);
    const std::string raw(token.raw);
    switch (token.kind) {
      case tsql::LiteralKind::Integer:
        other += otherInteger(raw);
        break;
      case tsql::LiteralKind::Text: {
        const std::string quoted = "'" + raw + "'";
        const bool section =
            std::find(std::begin(kSections), std::end(kSections), quoted) != std::end(kSections);
        other += section ? anyOf(kSections) : quoted;
        break;
      }
      case tsql::LiteralKind::NationalText:
        other += "N'" + raw + "'";
        break;
      case tsql::LiteralKind::Null:
        other += "NULL";
        break;
      default:
        other += raw;
        break;
    }
  }
  return other;
}

}  // namespace azcoll::statements
