// A year that cannot be found out: no method takes another one for it.

#include <string>

#include "data/text.h"
#include "service_fixture.h"
#include "support/method.h"
#include "support/without_year.h"

namespace azcoll::test {
namespace {

/// Company 20 with everything given that a method may ask for, except a year.
class ReferenceYearTest : public ServiceTest, public ::testing::WithParamInterface<std::size_t> {
 protected:
  ReferenceYearTest() {
    CLSCO_INPUTAZCOLL& in = *service.CPInput;
    in.AnnoSolare = Variant{};
    in.DataInizioElaborazione = "01-03-2025";
    in.AnnoSolareDaDuplicare = Variant{};
    in.Pvar_CliFor = std::int32_t{100};
    in.CodiceSede = std::int16_t{1};
    in.CodiceIntermedio = std::int16_t{1};
    in.CodiceAttività = std::int32_t{4001};
    in.Sezionale = "01";
    in.InserisciAttivitàDaPeriodoPrecedente = true;
    if (entry().name == "DuplicaAttività") {
      in.AnnoSolareDaDuplicare = std::int16_t{2024};
    }
    regime(1);
  }
  [[nodiscard]] static const MethodEntry& entry() { return kMethods.at(GetParam()); }
  [[nodiscard]] static const WithoutYear& expected() { return kWithoutYear.at(GetParam()); }

  void regime(std::int16_t flag) {
    connection->answerPrefix(" SELECT CG25_FLGIVAQUATER", rowSet({"CG25_FLGIVAQUATER"}, {flag}));
  }
  void call() {
    connection->operations.clear();
    service.Stato = std::int16_t{0};
    service.Errore = Variant{};
    callMethod(service, entry());
  }
  /// The only statements are those that ask neither for rows of a year nor for a change.
  void expectNothingAsked() const {
    for (const Operation& operation : connection->operations) {
      EXPECT_TRUE(operation.name == "Execute" &&
                  (operation.sql.starts_with(" SELECT CG25_FLGIVAQUATER") ||
                   operation.sql.starts_with(" SELECT *\r\n FROM   CG96_ANAGATTIVITA")))
          << operation.name << " " << operation.sql;
    }
  }
  static std::string message() {
    return join(expected().state == 99 ? kNoYear : std::string_view{}, expected().ending);
  }
  void expectEnding() const {
    EXPECT_EQ(service.Stato, Variant{static_cast<std::int16_t>(expected().state)});
    EXPECT_EQ(join(service.Errore), message());
  }
};

TEST_P(ReferenceYearTest, StandsInTheTableOfWhatHappensWithoutOne) {
  EXPECT_EQ(entry().name, expected().method);
}

TEST_P(ReferenceYearTest, IsNotGuessedFromADateThatCannotBeRead) {
  if (expected().use == YearUse::None) {
    call();
    EXPECT_EQ(service.Stato, Variant{std::int16_t{0}});
    return;
  }
  const Variant anObject{std::shared_ptr<Object>{connection}};
  for (const Variant& date : {Variant{"01-03-2025"}, Variant{"2024-02-31"}, Variant{"domani"},
                              Variant{std::int32_t{2025}}, anObject}) {
    service.CPInput->DataInizioElaborazione = date;
    for (const Variant& missing : {Variant{}, Variant{kNull}, Variant{""}}) {
      service.CPInput->AnnoSolare = missing;
      call();
      expectEnding();
      expectNothingAsked();
    }
  }
}

TEST_P(ReferenceYearTest, ZeroIsNoneWhereTheYearIsANumberOnly) {
  for (const Variant& zero : {Variant{std::int16_t{0}}, Variant{std::int32_t{0}}, Variant{"0"},
                              Variant{"0.00"}, Variant{*Decimal::parse("0.0")}}) {
    service.CPInput->AnnoSolare = zero;
    call();
    const bool aYear =
        expected().use == YearUse::OwnInput ||
        (expected().use == YearUse::AsGiven && expected().method != "DuplicaAttività");
    if (aYear) {
      EXPECT_NE(join(service.Errore), message());
      continue;
    }
    expectEnding();
    for (const Operation& operation : connection->operations) {
      EXPECT_EQ(operation.sql.find("CG86_ANNOIVA IN"), std::string::npos) << operation.sql;
      EXPECT_EQ(operation.sql.find("CG86_ANNOIVA ="), std::string::npos) << operation.sql;
    }
  }
}

TEST_P(ReferenceYearTest, IsNotGuessedInAnyRegime) {
  for (const std::int16_t flag : {std::int16_t{0}, std::int16_t{1}, std::int16_t{2}}) {
    regime(flag);
    call();
    if (expected().use == YearUse::None) {
      expectEnding();
    } else {
      expectNothingAsked();
    }
  }
}

TEST_P(ReferenceYearTest, IsThatOfTheGivenYearWhateverTheDateIs) {
  service.CPInput->AnnoSolare = std::int32_t{2024};
  call();
  EXPECT_NE(join(service.Errore).substr(0, kNoYear.size()), kNoYear);
}

INSTANTIATE_TEST_SUITE_P(EveryMethod, ReferenceYearTest,
                         ::testing::Range(std::size_t{0}, kMethods.size()), [](const auto& method) {
                           return "Method" + std::to_string(method.param + 1);
                         });

class LookupYearTest : public ServiceTest {};

// GetDittaPrincipale says nothing of a failure, so the methods that stand on it look first.
TEST_F(LookupYearTest, TheMainCompanyOfNoYearIsNotKnown) {
  service.CPInput->AnnoSolare = Variant{};
  service.CPInput->DataInizioElaborazione = "01-03-2025";
  service.CPOutput->IndTipoCont = std::int16_t{5};
  EXPECT_EQ(service.GetDittaPrincipale(), "");
  EXPECT_TRUE(connection->operations.empty());
  EXPECT_EQ(service.CPOutput->IndTipoCont, Variant{std::int16_t{5}});
}

TEST_F(LookupYearTest, AYearOutsideTheCalendarHasNoMainCompany) {
  for (const std::int32_t year : {-1, 10000}) {
    service.CPInput->AnnoSolare = year;
    service.CPOutput->Gbol_DittaPrincipale = true;
    EXPECT_EQ(service.GetDittaPrincipale(), "");
    service.ControllaDittaPrincipale();
    EXPECT_FALSE(service.CPOutput->Gbol_DittaPrincipale);
    EXPECT_EQ(service.Stato, Variant{std::int16_t{0}});
  }
  EXPECT_TRUE(connection->operations.empty());
}

}  // namespace
}  // namespace azcoll::test
