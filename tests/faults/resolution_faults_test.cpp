// The questions about the group, with every operation failing once.

#include <gtest/gtest.h>

#include "faults/fault_harness.h"

namespace azcoll::test {
namespace {

using Method = void (CLSCO_AZIENDECOLL::*)();

/// A call in company `company`, in a year with links.
std::function<void(CLSCO_AZIENDECOLL&)> ask(int company, const Method& method) {
  return [company, method](CLSCO_AZIENDECOLL& service) {
    service.CPInput->Pvar_Ditta = company;
    service.CPInput->AnnoSolare = 2025;
    (service.*method)();
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
        FaultScenario{"GetDittaPrincipale", "", "", getDittaPrincipale, answersNothing}),
    [](const auto& tested) { return testName(tested.param.name); });

}  // namespace
}  // namespace azcoll::test
