// A processing date that cannot be read names no year: nothing of the example changes by it.

#include <set>

#include "scenarios/company_database.h"
#include "support/method.h"
#include "support/without_year.h"

namespace azcoll::test {
namespace {

class UnreadableDate : public CompanyDatabase {
 protected:
  UnreadableDate() {
    CLSCO_INPUTAZCOLL& in = *service.CPInput;
    in.AnnoSolare = Variant{};
    in.InserisciAttivitàDaPeriodoPrecedente = true;
  }

  /// Everything that a method may ask for; no registry entry and no activity row has the code.
  void fill(const MethodEntry& method, int company) {
    CLSCO_INPUTAZCOLL& in = *service.CPInput;
    in.Pvar_Ditta = company;
    in.Pvar_CliFor = method.name == "DuplicaCliFor" ? 120 : 110;
    in.CodiceSede = 1;
    in.CodiceIntermedio = 1;
    in.Sezionale = "01";
    in.CodiceAttività =
        method.name == "AggiornaDateRegistriAnagraficaAttività" ? Variant{9999} : Variant{};
    in.AnnoSolareDaDuplicare = method.name == "DuplicaAttività" ? Variant{2024} : Variant{};
    service.Stato = std::int16_t{0};
  }
  Lines everything() { return pictureOf(*connection, testTables()); }

  static constexpr std::array kCompanies{5, 10, 12, 15, 20, 30, 31, 40};
};

TEST_F(UnreadableDate, ChangesNothingInAnyMethod) {
  const Lines before = everything();
  for (std::size_t index = 0; index < kMethods.size(); ++index) {
    const MethodEntry& method = kMethods.at(index);
    const WithoutYear& expected = kWithoutYear.at(index);
    if (expected.use == YearUse::None) {
      continue;  // it reads no year, and may write
    }
    for (const int company : kCompanies) {
      for (const char* date : {"01-03-2025", "2024-02-31"}) {
        service.CPInput->DataInizioElaborazione = date;
        fill(method, company);
        callMethod(service, method);
        const bool endsWell = sameValue(service.Stato, 0);
        const bool maySo =
            expected.state == 0 ||
            // A company of regime 2 is left alone before any year is looked for.
            (company == 40 && (method.name == "AggiornaAttività" ||
                               method.name == "AggiornaDateRegistriAnagraficaAttività")) ||
            method.name == "VerificaEsistenzaAttivita";  // asked for no activity
        EXPECT_EQ(endsWell, maySo) << method.name << " " << company << " " << service.Errore.text();
      }
    }
    EXPECT_FALSE(endOpenTransaction()) << method.name;
    ASSERT_EQ(everything(), before) << method.name;
  }
}

TEST_F(UnreadableDate, AZeroInTheYearIsNoWayAround) {
  const Lines before = everything();
  service.CPInput->DataInizioElaborazione = "01-03-2025";
  for (const MethodEntry& method : kMethods) {
    if (method.name == "AggiornaDatiGestionaliPerAnagraficaAttività") {
      continue;  // it reads no year, and may write
    }
    for (const int company : kCompanies) {
      for (const Variant& zero : {Variant{0}, Variant{"0.00"}}) {
        service.CPInput->AnnoSolare = zero;
        fill(method, company);
        callMethod(service, method);
      }
    }
    EXPECT_FALSE(endOpenTransaction()) << method.name;
    ASSERT_EQ(everything(), before) << method.name;
  }
}

// The same calls with a date that can be read: those above had something to change.
TEST_F(UnreadableDate, ItsReadableNeighbourChangesWhatTheMethodsChange) {
  std::set<std::string_view> changing;
  std::string refusals;
  Lines before = everything();
  for (const MethodEntry& method : kMethods) {
    // Own activities beside a link stand in 2024.
    service.CPInput->DataInizioElaborazione =
        method.name == "EliminaAttivitàSingolaCollegamentoMultiAzienda" ? "01/03/2024"
                                                                        : "01/03/2025";
    for (const int company : kCompanies) {
      fill(method, company);
      callMethod(service, method);
      if (!sameValue(service.Stato, 0)) {
        refusals += join("\n", method.name, " ", company, ": ", service.Errore);
      }
      endOpenTransaction();
    }
    Lines after = everything();
    if (after != before) {
      changing.insert(method.name);
    }
    before = std::move(after);
  }
  for (const std::string_view method :
       {"DuplicaCliFor", "EliminaCliFor", "RecordsetAttivitaCollegate", "DuplicaAttività",
        "AggiornaAttività", "AggiornaDatiGestionaliPerAttività",
        "EliminaAttivitàSingolaCollegamentoMultiAzienda"}) {
    EXPECT_TRUE(changing.contains(method)) << method << refusals;
  }
}

}  // namespace
}  // namespace azcoll::test
