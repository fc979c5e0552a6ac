// The activities of a year, with every operation failing once in every way.

#include <gtest/gtest.h>
#include <string>

#include "faults/fault_harness.h"

namespace azcoll::test {
namespace {

using Method = void (CLSCO_AZIENDECOLL::*)() noexcept;

std::function<void(CLSCO_AZIENDECOLL&)> of(int company, int year, int code, Method method) {
  return [=](CLSCO_AZIENDECOLL& service) {
    service.CPInput->Pvar_Ditta = company;
    service.CPInput->AnnoSolare = year;
    service.CPInput->AnnoSolareDaDuplicare = year - 1;
    if (code != 0) {
      service.CPInput->CodiceAttività = code;
    }
    (service.*method)();
  };
}

class ActivityFaults : public ::testing::TestWithParam<FaultScenario> {};

TEST_P(ActivityFaults, LeaveWhatIsDocumented) { expectDocumentedOutcomes(GetParam()); }

constexpr std::string_view kInsertion = " in InserisciAttività";
constexpr std::string_view kAccountingYear = " in VerificaAnnoIvaEsercizioContabile";

FaultScenario call(const std::string& name, std::string_view suffix,
                   std::function<void(CLSCO_AZIENDECOLL&)> work) {
  return {.name = name, .suffix = suffix, .prepare = "", .call = std::move(work)};
}

/// Name of the method that tells of a failure: methods that call others leave their failures as
/// they were told.
using Teller = std::function<std::string_view(const Fault&)>;

/// A call without a transaction: what was done before the failure stays, and can be done again.
FaultScenario stepByStep(const std::string& name, std::string_view suffix,
                         std::function<void(CLSCO_AZIENDECOLL&)> work, const Teller& teller) {
  FaultScenario scenario = call(name, suffix, std::move(work));
  scenario.eachStatementCommits = true;
  scenario.documented = [teller](const Fault& fault,
                                 const Reference& reference) -> std::optional<Outcome> {
    if (!fault.lost() && fault.is("Execute", "SELECT CG25_FLGIVAQUATER")) {
      return asWithoutFault(reference);  // a regime that cannot be read counts as 0, which it is
    }
    const std::size_t done = fault.number + (fault.way == Way::LostAfter ? 1 : 0);
    Outcome outcome = undone(reference, join(FaultyConnection::kDescription, teller(fault)));
    outcome.database =
        done < reference.states.size() ? reference.states[done] : reference.outcome.database;
    return outcome;
  };
  return scenario;
}

/// The seeding of a year asks for the accounting year first; a lost connection is noticed there
/// when the regime could not be read.
std::string_view tellerOfSeeding(const Fault& fault) {
  return fault.is("Execute", "CG19_ANADITTAESER") || fault.is("Execute", "CG25_FLGIVAQUATER")
             ? kAccountingYear
             : kInsertion;
}

/// After a seeding that failed the activities are read all the same, which a lost connection
/// refuses.
std::string_view tellerOfReading(const Fault& fault) {
  return fault.lost() || fault.is("Open") ? " in RecordsetAttivitaCollegate"
                                          : tellerOfSeeding(fault);
}

Teller always(std::string_view suffix) {
  return [suffix](const Fault&) { return suffix; };
}

/// The duplication of a year undoes its transaction after every failure, whoever recorded it; the
/// configurations are read by a method of its own, which tells its own name.
FaultScenario duplication() {
  FaultScenario scenario = call("DuplicaAttività", " in DuplicaAttività",
                                of(40, 2025, 0, &CLSCO_AZIENDECOLL::DuplicaAttività));
  scenario.documented = [](const Fault& fault,
                           const Reference& reference) -> std::optional<Outcome> {
    const bool regime = fault.is("Execute", "SELECT CG25_FLGIVAQUATER");
    if (regime && !fault.lost()) {
      return asWithoutFault(reference);
    }
    const bool began = std::ranges::any_of(
        reference.operations.begin(),
        reference.operations.begin() + static_cast<std::ptrdiff_t>(fault.number),
        [](const TraceEntry& entry) { return entry.operation == "BeginTrans"; });
    const bool reading = fault.is("Open") || (regime && fault.number > 0);
    const bool told = reading && (!began || !fault.lost());
    Outcome outcome =
        undone(reference, join(FaultyConnection::kDescription,
                               told ? " in RecordsetAttivitaCollegate" : " in DuplicaAttività"));
    if (reading && began && !fault.lost()) {
      // The rows are copied; what the copy leaves out cannot be carried over without the rows of
      // the new configuration, and here nothing is left out.
      outcome.database = reference.outcome.database;
    }
    if (fault.is("CommitTrans") && fault.way == Way::LostAfter) {
      outcome.database = reference.outcome.database;
    }
    return outcome;
  };
  return scenario;
}

INSTANTIATE_TEST_SUITE_P(
    Calls, ActivityFaults,
    ::testing::Values(
        call("GetCodiceAttività", " in GetCodiceAttività",
             of(10, 2024, 0, &CLSCO_AZIENDECOLL::GetCodiceAttività)),
        duplication(),
        stepByStep("RecordsetAttivitaCollegate", " in RecordsetAttivitaCollegate",
                   of(20, 2025, 0, &CLSCO_AZIENDECOLL::RecordsetAttivitaCollegate),
                   tellerOfReading),
        stepByStep("InserisciAttività", kInsertion,
                   of(10, 2026, 0, &CLSCO_AZIENDECOLL::InserisciAttività), always(kInsertion)),
        stepByStep("InserisciAttivitàDaPeriodoPrecedente", kInsertion,
                   of(20, 2025, 0, &CLSCO_AZIENDECOLL::InserisciAttivitàDaPeriodoPrecedente),
                   tellerOfSeeding),
        stepByStep("AggiornaAttività", " in AggiornaAttività",
                   of(10, 2024, 1001, &CLSCO_AZIENDECOLL::AggiornaAttività),
                   always(" in AggiornaAttività")),
        stepByStep("AggiornaDatiGestionaliPerAttività", " in AggiornaDatiGestionaliPerAttività",
                   of(10, 2024, 1001, &CLSCO_AZIENDECOLL::AggiornaDatiGestionaliPerAttività),
                   always(" in AggiornaDatiGestionaliPerAttività")),
        stepByStep("AggiornaDatiGestionaliPerAnagraficaAttività",
                   " in AggiornaDatiGestionaliPerAnagraficaAttività",
                   of(10, 2024, 1001,
                      &CLSCO_AZIENDECOLL::AggiornaDatiGestionaliPerAnagraficaAttività),
                   always(" in AggiornaDatiGestionaliPerAnagraficaAttività")),
        stepByStep("EliminaAttivitàSingolaCollegamentoMultiAzienda", " in EliminaAttività",
                   of(12, 2024, 0,
                      &CLSCO_AZIENDECOLL::EliminaAttivitàSingolaCollegamentoMultiAzienda),
                   always(" in EliminaAttivitàSingolaCollegamentoMultiAzienda"))),
    [](const auto& tested) { return testName(tested.param.name); });

}  // namespace
}  // namespace azcoll::test
