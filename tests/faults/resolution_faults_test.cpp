// The questions about the group, with every operation failing once.

#include <gtest/gtest.h>

#include "faults/fault_harness.h"
#include "support/method.h"

namespace azcoll::test {
namespace {

/// A call in company `company`, in a year with links.
std::function<void(CLSCO_AZIENDECOLL&)> ask(int company, const Method& method) {
  return [company, method](CLSCO_AZIENDECOLL& service) {
    service.CPInput->Pvar_Ditta = company;
    service.CPInput->AnnoSolare = 2025;
    service.CPInput->CodiceSede = 1;
    service.CPInput->CodiceIntermedio = 1;
    (service.*method)();
  };
}

/// A question that is answered by yes or no.
std::function<void(CLSCO_AZIENDECOLL&)> check(int company,
                                              bool (CLSCO_AZIENDECOLL::*method)() noexcept) {
  return [company, method](CLSCO_AZIENDECOLL& service) {
    service.CPInput->Pvar_Ditta = company;
    service.CPInput->AnnoSolare = 2024;
    const bool answer = (service.*method)();
    EXPECT_TRUE(answer || service.Stato != Variant{std::int16_t{0}});
  };
}

/// Every failure is swallowed: the group is then taken as not there.
std::optional<Outcome> swallowed(const Fault& /*fault*/, const Reference& reference) {
  return asWithoutFault(reference);
}

/// The answer stands where the message would, so that it is compared as well.
void getDittaPrincipale(CLSCO_AZIENDECOLL& service) {
  service.CPInput->Pvar_Ditta = 5;
  service.CPInput->AnnoSolare = 2025;
  service.Errore = service.GetDittaPrincipale();
}

std::optional<Outcome> answersNothing(const Fault& /*fault*/, const Reference& reference) {
  EXPECT_EQ(reference.outcome.errore, Variant{"10"});
  Outcome outcome = asWithoutFault(reference);
  outcome.errore = "";
  return outcome;
}

class ResolutionFaults : public ::testing::TestWithParam<FaultScenario> {};

TEST_P(ResolutionFaults, LeaveWhatIsDocumented) { expectDocumentedOutcomes(GetParam()); }

INSTANTIATE_TEST_SUITE_P(
    Methods, ResolutionFaults,
    ::testing::Values(
        FaultScenario{"ControllaDittaPrincipale", " in ControllaDittaPrincipale", "",
                      ask(5, &CLSCO_AZIENDECOLL::ControllaDittaPrincipale), swallowed},
        FaultScenario{"ControllaDittaCollegata", " in ControllaDittaCollegata", "",
                      ask(5, &CLSCO_AZIENDECOLL::ControllaDittaCollegata)},
        FaultScenario{"DitteCollegate", " in DitteCollegate", "",
                      ask(10, &CLSCO_AZIENDECOLL::DitteCollegate)},
        FaultScenario{"GetDittaPrincipale", "", "", getDittaPrincipale, answersNothing},
        FaultScenario{"RecordsetDitteCollegate", " in RecordsetDitteCollegate", "",
                      ask(10, &CLSCO_AZIENDECOLL::RecordsetDitteCollegate)},
        FaultScenario{"RecordsetDitteCollegateOPrincipale",
                      " in RecordsetDitteCollegateOPrincipale", "",
                      ask(5, &CLSCO_AZIENDECOLL::RecordsetDitteCollegateOPrincipale)},
        FaultScenario{"DitteCollegatePiuPrincipale", " in DitteCollegatePiuPrincipale", "",
                      ask(5, &CLSCO_AZIENDECOLL::DitteCollegatePiuPrincipale)},
        FaultScenario{"RecordsetDitteCollegateOPrincipalePerSedi",
                      " in RecordsetDitteCollegateOPrincipalePerSedi", "",
                      ask(5, &CLSCO_AZIENDECOLL::RecordsetDitteCollegateOPrincipalePerSedi)},
        FaultScenario{"RecordsetDitteCollegateOPrincipalePerIntermedi",
                      " in RecordsetDitteCollegateOPrincipalePerIntermedi", "",
                      ask(5, &CLSCO_AZIENDECOLL::RecordsetDitteCollegateOPrincipalePerIntermedi)},
        FaultScenario{"RecordsetDitteCollegatePiuPrincipale",
                      " in RecordsetDitteCollegatePiuPrincipale", "",
                      ask(10, &CLSCO_AZIENDECOLL::RecordsetDitteCollegatePiuPrincipale)},
        FaultScenario{"RecordsetDitteCollegatePiuPrincipaleNoPrinc",
                      " in RecordsetDitteCollegatePiuPrincipaleNoPrinc", "",
                      ask(5, &CLSCO_AZIENDECOLL::RecordsetDitteCollegatePiuPrincipaleNoPrinc)},
        FaultScenario{
            "RecordsetDitteCollegatePiuPrincipalePiuDenunciaIva",
            " in RecordsetDitteCollegatePiuPrincipale", "",
            ask(10, &CLSCO_AZIENDECOLL::RecordsetDitteCollegatePiuPrincipalePiuDenunciaIva)},
        FaultScenario{
            "RecordsetDitteCollegatePiuPrincipalePerChiuApeEsercizio",
            " in RecordsetDitteCollegatePiuPrincipale", "",
            ask(10, &CLSCO_AZIENDECOLL::RecordsetDitteCollegatePiuPrincipalePerChiuApeEsercizio)},
        FaultScenario{"ControllaDittaNonCollegata", " in ControllaDittaNonCollegata", "",
                      check(5, &CLSCO_AZIENDECOLL::ControllaDittaNonCollegata)},
        FaultScenario{"ControllaAttivitaNonCollegata", " in ControllaAttivitaNonCollegata", "",
                      check(40, &CLSCO_AZIENDECOLL::ControllaAttivitaNonCollegata)},
        FaultScenario{"VerificaAnnoIvaEsercizioContabile", " in VerificaAnnoIvaEsercizioContabile",
                      "", check(5, &CLSCO_AZIENDECOLL::VerificaAnnoIvaEsercizioContabile)}),
    [](const auto& tested) { return testName(tested.param.name); });

}  // namespace
}  // namespace azcoll::test
