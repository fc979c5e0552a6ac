// The activities of a year, with every operation failing once in every way.

#include <gtest/gtest.h>
#include <string>

#include "faults/fault_harness.h"
#include "support/method.h"

namespace azcoll::test {
namespace {

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

/// The same of a register's activity.
std::string_view tellerOfRegister(const Fault& fault) {
  return fault.lost() || fault.is("Execute", "CG32_ANADITTAPSEZ")
             ? " in GetCodiceAttivitàDaSezionale"
             : tellerOfSeeding(fault);
}

Teller always(std::string_view suffix) {
  return [suffix](const Fault&) { return suffix; };
}

/// An activity that cannot be looked for counts as missing: it is made, and the failure is told.
FaultScenario existence() {
  FaultScenario scenario = stepByStep(
      "VerificaEsistenzaAttivita", " in GetCodiceAttività",
      [](CLSCO_AZIENDECOLL& service) {
        service.CPInput->Pvar_Ditta = 20;
        service.CPInput->AnnoSolare = 2025;
        service.CPInput->CodiceAttività = 20;
        service.VerificaEsistenzaAttivita();
      },
      tellerOfSeeding);
  scenario.documented = [seeding = scenario.documented](
                            const Fault& fault,
                            const Reference& reference) -> std::optional<Outcome> {
    if (!fault.is("Execute", "SELECT CG86_CODATTIVITA, CG96_DESCRATTIVITA")) {
      return seeding(fault, reference);
    }
    // A lost connection is noticed by the seeding as well, which tells it last.
    Outcome outcome =
        undone(reference, join(FaultyConnection::kDescription,
                               fault.lost() ? kAccountingYear : " in GetCodiceAttività"));
    if (!fault.lost()) {
      outcome.database = reference.outcome.database;
    }
    return outcome;
  };
  return scenario;
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

/// The identity of the own activity of company 12, which gives way to its link.
constexpr std::string_view kOwnActivity = "CG86_AZIENDECOLL|7|";

/// The database after a copy over several companies that ended without the values that the copying
/// statement leaves out; with `kept` the own activity of the linked company is there as well.
Lines withoutCarriedValues(const Reference& reference, bool kept) {
  const Difference change = difference(reference.before, reference.outcome.database);
  Lines lines = reference.outcome.database;
  for (std::string& line : lines) {
    constexpr std::string_view carried = "|1|30|NULL";
    if (line.ends_with(carried) && std::ranges::binary_search(change.come, line)) {
      line.replace(line.size() - carried.size(), 2, "|0");
    }
  }
  std::ranges::copy_if(change.gone, std::back_inserter(lines), [&](const std::string& line) {
    return kept && line.starts_with(kOwnActivity);
  });
  std::ranges::sort(lines);
  return lines;
}

/// The same over several companies: the own activities of a linked company are removed by a method
/// of its own, and values are carried over.
FaultScenario duplicationOfLinks() {
  FaultScenario scenario = call("DuplicaAttività, links", " in DuplicaAttività", [](auto& service) {
    service.CPInput->IndProvenienzaMultiAziende = true;
    of(10, 2025, 0, &CLSCO_AZIENDECOLL::DuplicaAttività)(service);
  });
  // Without a financial year a regime that cannot be read has nothing seeded.
  // Only one link is without an activity: which of several becomes the main one is open.
  scenario.prepare =
      "DELETE FROM CG19_ANADITTAESER WHERE CG19_DITTA_CG18 = 10 UPDATE CG86_AZIENDECOLL SET "
      "CG86_CODATTIVITA = 1501 WHERE CG86_INDTIPO = 0 AND CG86_ANNOIVA = 2024 AND CG86_DITTA_CG18 "
      "= 10 AND CG86_DITTACOLL_CG18 = 15";
  scenario.documented = [inCompany = duplication().documented](
                            const Fault& fault,
                            const Reference& reference) -> std::optional<Outcome> {
    const bool own =
        fault.is("Execute", "CG86_DITTACOLL_CG18 = 12") && fault.is("Execute", "EXISTS");
    std::optional<Outcome> outcome = inCompany(fault, reference);
    if (own) {
      outcome = undone(reference,
                       join(FaultyConnection::kDescription,
                            fault.lost() ? " in DuplicaAttività"
                                         : " in EliminaAttivitàSingolaCollegamentoMultiAzienda"));
    }
    if (!fault.lost() && outcome && outcome->errore != reference.outcome.errore) {
      const bool read = outcome->database == reference.outcome.database;
      if (own || read) {
        outcome->database = withoutCarriedValues(reference, own);
      }
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
        duplication(), duplicationOfLinks(),
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
        stepByStep("AggiornaDateRegistriAnagraficaAttività",
                   " in AggiornaDateRegistriAnagraficaAttività",
                   of(10, 2024, 1001, &CLSCO_AZIENDECOLL::AggiornaDateRegistriAnagraficaAttività),
                   always(" in AggiornaDateRegistriAnagraficaAttività")),
        stepByStep(
            "GetCodiceAttivitàDaSezionale", " in GetCodiceAttivitàDaSezionale",
            [](CLSCO_AZIENDECOLL& service) {
              service.CPInput->Sezionale = "00";
              of(20, 2025, 0, &CLSCO_AZIENDECOLL::GetCodiceAttivitàDaSezionale)(service);
            },
            tellerOfRegister),
        existence(),
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
