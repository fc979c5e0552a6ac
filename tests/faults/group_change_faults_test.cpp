// The change and the deletion of a customer in its group, with every operation failing once.

#include <algorithm>
#include <gtest/gtest.h>
#include <string>
#include <vector>

#include "faults/fault_harness.h"

namespace azcoll::test {
namespace {

constexpr std::string_view kModify = " in ModificaCliFor";
constexpr std::string_view kDelete = " in EliminaCliFor";

std::function<void(CLSCO_AZIENDECOLL&)> with(int code,
                                             void (CLSCO_AZIENDECOLL::*method)() noexcept) {
  return [code, method](CLSCO_AZIENDECOLL& service) {
    service.CPInput->Pvar_Ditta = 5;
    service.CPInput->Pint_TipoCF = Cliente;
    service.CPInput->Pvar_CliFor = code;
    service.CPInput->AnnoSolare = 2025;
    (service.*method)();
  };
}

/// The company whose row a statement concerns.
std::string companyOf(const Fault& fault) {
  const std::string mark = "_DITTA_CG18 = ";
  const std::size_t found = fault.operation.sql.find(mark);
  if (found == std::string::npos) {
    return {};
  }
  const std::size_t start = found + mark.size();
  return fault.operation.sql.substr(start, fault.operation.sql.find(' ', start) - start);
}

std::size_t occurrencesBefore(const Fault& fault, const Reference& reference,
                              std::string_view operation) {
  return static_cast<std::size_t>(
      std::count_if(reference.operations.begin(),
                    reference.operations.begin() + static_cast<std::ptrdiff_t>(fault.number),
                    [&](const TraceEntry& entry) { return entry.operation == operation; }));
}

// ---------------------------------------------------------------- ModificaCliFor

/// The database when no intermediary was carried to the other companies.
Lines withoutIntermediary(const Reference& reference) {
  Lines lines = reference.outcome.database;
  const Difference change = difference(reference.before, reference.outcome.database);
  for (std::string& line : lines) {
    if (std::ranges::binary_search(change.come, line)) {
      constexpr int kIntermediary = 13;  // among the columns, behind the table's name
      std::size_t start = 0;
      for (int i = 0; i < kIntermediary; ++i) {
        start = line.find('|', start) + 1;
      }
      line.replace(start, line.find('|', start) - start, "NULL");
    }
  }
  std::ranges::sort(lines);
  return lines;
}

/// The questions of the change swallow their failures and answer no.
std::optional<Outcome> documentedForChange(const Fault& fault, const Reference& reference) {
  if (fault.is("CommandExecute")) {
    // The group is asked for by a method of its own, which tells its own name.
    return undone(reference,
                  join(FaultyConnection::kDescription, " in RecordsetDitteCollegateOPrincipale"));
  }
  if (fault.is("RollbackTrans")) {
    // The refusal has not been told yet when it is to be undone.
    Outcome outcome = undone(reference, join(FaultyConnection::kDescription, kModify));
    outcome.transactionOpen = fault.way == Way::Foreign;
    return outcome;
  }
  if (fault.lost()) {
    return std::nullopt;  // the next operation fails as well, and that one is not swallowed
  }
  if (fault.is("Execute", "SELECT CG44_INTERMEDIO_CG40")) {
    Outcome outcome = asWithoutFault(reference);
    outcome.database = withoutIntermediary(reference);
    return outcome;
  }
  const std::string company = companyOf(fault);
  if (fault.is("Execute", "FROM CG44_CLIFOR")) {
    return undone(reference, "Il codice cliente 777 non è presente nell'azienda " + company + ".");
  }
  if (fault.is("Execute", "FROM CG40_ANADITTAINTER")) {
    return undone(reference, "Il codice intermedio 1 non è presente nell'azienda " + company + ".");
  }
  if (fault.is("Execute", "UPDATE CG44_CLIFOR")) {
    return undone(reference,
                  "Errore durante la modifica dell'intermedio relativo al codice cliente 777 "
                  "dell'azienda " +
                      company + ".");
  }
  return std::nullopt;
}

/// A customer 777 in `companies`, with an intermediary in company 5 alone.
std::string customer777(const std::vector<std::string>& companies) {
  std::string sql =
      "IF NOT EXISTS (SELECT 1 FROM CG40_ANADITTAINTER WHERE CG40_DITTA_CG18 = 15 AND CG40_TIPOCF "
      "= 0 AND CG40_INTERMEDIO = 1) INSERT INTO CG40_ANADITTAINTER (CG40_DITTA_CG18, CG40_TIPOCF, "
      "CG40_INTERMEDIO) VALUES (15, 0, 1) ";
  for (const std::string& company : companies) {
    sql += join(
        "INSERT INTO CG44_CLIFOR (CG44_DITTA_CG18, CG44_TIPOCF, CG44_CLIFOR, "
        "CG44_CODICE_CG16, CG44_TIPOCF_CG40, CG44_INTERMEDIO_CG40, CG44_FLGATTIVO) VALUES (",
        company, ", 0, 777, 3005, 0, ", company == "5" ? "1" : "Null",
        ", 1) INSERT INTO MG19_CLIFORVA (MG19_DITTA_CG18, MG19_TIPOCF_CG44, "
        "MG19_CLIFOR_CG44) VALUES (",
        company, ", 0, 777) ");
  }
  return sql;
}

// ---------------------------------------------------------------- EliminaCliFor

/// The phase that failed decides on state and message.
std::optional<Outcome> documentedForDeletion(const Fault& fault, const Reference& reference) {
  const bool trialOver = occurrencesBefore(fault, reference, "RollbackTrans") > 0;
  const bool began = occurrencesBefore(fault, reference, "BeginTrans") > 0;
  Outcome outcome = undone(reference, join(FaultyConnection::kDescription, kDelete));
  if (fault.operation.error && fault.way == Way::LostAfter) {
    outcome.errore = reference.outcome.errore;
    outcome.stato = reference.outcome.stato;
    return outcome;
  }
  outcome.transactionOpen = fault.way == Way::Foreign && began && !fault.is("BeginTrans");
  if (fault.is("Execute")) {
    outcome.stato = std::int16_t{static_cast<std::int16_t>(trialOver ? 2 : 1)};
    if (trialOver) {
      outcome.errore = "Il cliente non può essere eliminato nella ditta " + companyOf(fault) + "!";
    }
    return outcome;
  }
  if (fault.is("RollbackTrans") && trialOver) {
    // In the trap: the failure that led there has been told.
    outcome.stato = reference.outcome.stato;
    outcome.errore = reference.outcome.errore;
    outcome.transactionOpen = !fault.lost();
    return outcome;
  }
  if (fault.is("RollbackTrans")) {
    return outcome;  // the trial's own: the trap undoes it once more
  }
  return std::nullopt;
}

class GroupChangeFaults : public ::testing::TestWithParam<FaultScenario> {};

TEST_P(GroupChangeFaults, LeaveWhatIsDocumented) { expectDocumentedOutcomes(GetParam()); }

INSTANTIATE_TEST_SUITE_P(
    Calls, GroupChangeFaults,
    ::testing::Values(
        FaultScenario{"ModificaCliFor", kModify, customer777({"5", "10", "12", "15"}),
                      with(777, &CLSCO_AZIENDECOLL::ModificaCliFor), documentedForChange},
        FaultScenario{"ModificaCliFor refused by the third company", kModify,
                      customer777({"5", "10", "12"}), with(777, &CLSCO_AZIENDECOLL::ModificaCliFor),
                      documentedForChange},
        FaultScenario{"EliminaCliFor", kDelete, customer777({"5", "10", "12", "15"}),
                      with(777, &CLSCO_AZIENDECOLL::EliminaCliFor), documentedForDeletion},
        FaultScenario{"EliminaCliFor refused by another company", kDelete,
                      customer777({"5", "10", "12", "15"}) +
                          "INSERT INTO MG60_DOCUMENTI (MG60_DITTA_CG18, MG60_ANNO, MG60_NUMERO, "
                          "MG60_DATA, MG60_TIPOCF_CG44, MG60_CLIFOR_CG44, MG60_IMPTOTALE) VALUES "
                          "(12, 2024, 77, '20240710', 0, 777, 1)",
                      with(777, &CLSCO_AZIENDECOLL::EliminaCliFor), documentedForDeletion}),
    [](const auto& tested) { return testName(tested.param.name); });

}  // namespace
}  // namespace azcoll::test
