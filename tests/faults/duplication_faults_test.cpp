// The duplication of a customer, with every operation failing once in every way.

#include <gtest/gtest.h>
#include <string>
#include <vector>

#include "faults/fault_harness.h"

namespace azcoll::test {
namespace {

constexpr std::string_view kSuffix = " in DuplicaClifor";

/// Whether the calling company is the main one, and what the customer needs.
struct Case {
  bool fromMain = false;
  bool codeTaken = false;
  bool mastersMissing = false;  ///< intermediary and branch do not exist in the other companies

  [[nodiscard]] std::string company() const { return fromMain ? "10" : "5"; }
  /// The company in which another customer has the code.
  [[nodiscard]] std::string holder() const { return fromMain ? "15" : "10"; }
  [[nodiscard]] std::string name() const {
    return join("from the ", fromMain ? "main" : "linked", " company with ",
                codeTaken ? "a taken code" : "a free code", " and masters ",
                mastersMissing ? "missing" : "there");
  }
};

/// A customer 700 with an account, an intermediary, a branch, an agent and sales data.
std::string customerFor(const Case& each) {
  const std::string company = each.company();
  const std::string masters = each.mastersMissing ? "77" : "1";
  std::string sql;
  if (each.mastersMissing) {
    sql = join(
        "INSERT INTO CG40_ANADITTAINTER (CG40_DITTA_CG18, CG40_TIPOCF, CG40_INTERMEDIO, "
        "CG40_DESCR) VALUES (",
        company, ", 0, 77, N'Rappresentanza d''Istria') ",
        "INSERT INTO CG31_ANADITTASEDI (CG31_DITTA_CG18, CG31_CODICE, CG31_CITTA) VALUES (",
        company, ", 77, N'Forlì') ");
  } else {
    // Whatever the example holds, each company has both.
    for (const char* const one : {"5", "10", "12", "15"}) {
      sql += join("IF NOT EXISTS (SELECT 1 FROM CG31_ANADITTASEDI WHERE CG31_DITTA_CG18 = ", one,
                  " AND CG31_CODICE = 1) INSERT "
                  "INTO CG31_ANADITTASEDI (CG31_DITTA_CG18, CG31_CODICE) VALUES (",
                  one, ", 1) ");
      sql += join("IF NOT EXISTS (SELECT 1 FROM CG40_ANADITTAINTER WHERE CG40_DITTA_CG18 = ", one,
                  " AND CG40_TIPOCF = 0 AND CG40_INTERMEDIO = 1) INSERT INTO CG40_ANADITTAINTER "
                  "(CG40_DITTA_CG18, CG40_TIPOCF, CG40_INTERMEDIO) VALUES (",
                  one, ", 0, 1) ");
    }
  }
  const std::string agent = each.fromMain ? "510" : "501";
  sql += join(
      "INSERT INTO CG44_CLIFOR (CG44_DITTA_CG18, CG44_TIPOCF, CG44_CLIFOR, "
      "CG44_CODICE_CG16, CG44_CONTO_CG24, CG44_TIPOCF_CG40, CG44_INTERMEDIO_CG40, "
      "CG44_IDAGENTE_MG17, CG44_CODSEDE_CG31, CG44_FLGATTIVO) VALUES (",
      company, ", 0, 700, 3005, N'0401700', 0, ", masters, ", ", agent, ", ", masters, ", 1) ",
      "INSERT INTO MG19_CLIFORVA (MG19_DITTA_CG18, MG19_TIPOCF_CG44, MG19_CLIFOR_CG44) "
      "VALUES (",
      company, ", 0, 700) ");
  if (each.codeTaken) {
    sql +=
        "INSERT INTO CG44_CLIFOR (CG44_DITTA_CG18, CG44_TIPOCF, CG44_CLIFOR, CG44_CODICE_CG16, "
        "CG44_FLGATTIVO) VALUES (@, 0, 700, 3012, 1) ";
    sql.replace(sql.find('@'), 1, each.holder());
  }
  return sql;
}

void duplicate(CLSCO_AZIENDECOLL& service, const std::string& company, int code) {
  service.CPInput->Pvar_Ditta = company;
  service.CPInput->Pint_TipoCF = Cliente;
  service.CPInput->Pvar_CliFor = code;
  service.CPInput->AnnoSolare = 2025;
  service.DuplicaCliFor();
}

bool isOf(const std::string& line, const std::vector<std::string>& companies) {
  const std::size_t start = line.find('|') + 1;
  const std::string company = line.substr(start, line.find('|', start) - start);
  return std::ranges::find(companies, company) != companies.end();
}

Outcome outcome(std::int16_t stato, Variant errore, Lines database) {
  return {.stato = stato,
          .errore = std::move(errore),
          .transactionOpen = false,
          .database = std::move(database)};
}

/// Before the transaction: the questions about the group swallow their failures.
std::optional<Outcome> whenTheGroupIsNotKnown(const Case& each, const Fault& fault,
                                              const Reference& reference) {
  const bool first = fault.is("Find") || (fault.is("CommandExecute") && fault.occurrence == 0);
  if (fault.lost()) {
    // Nothing is left to ask: there is no group, and nothing to be done.
    return first ? outcome(0, {}, reference.before)
                 : undone(reference, join(FaultyConnection::kDescription, kSuffix));
  }
  if (first) {
    // The copies would belong to a main company without a code, which no statement accepts.
    return refused(reference, "Incorrect syntax near the keyword 'AND'.", kSuffix);
  }
  Outcome result = asWithoutFault(reference);
  if (each.fromMain) {
    // No other company is known: the customer stays as it is, and its number is recorded here.
    const std::string numbering = "CG70_NUMERDOC|10|00|0|901|";
    result.database = databaseWithout(
        reference, [&](const std::string& line) { return !line.starts_with(numbering); });
    std::ranges::replace_if(
        result.database, [&](const std::string& line) { return line.starts_with(numbering); },
        numbering + "700");
    result.endWhenUndone = kSuffix;  // the code is looked for in an empty list of companies
  } else {
    // Without the list of the linked companies, the main company is all there is.
    result.database = databaseWithout(reference, [&](const std::string& line) {
      return isOf(line, {"12", "15"});
    });
  }
  return result;
}

Outcome refusedAsDouble(const Reference& reference, std::string_view key) {
  return refused(
      reference,
      join("Violation of PRIMARY KEY constraint 'PK_CG44_CLIFOR'. Cannot insert duplicate "
           "key in object 'dbo.CG44_CLIFOR'. The duplicate key value is (",
           key, ")."),
      kSuffix);
}

/// The search for a free code takes what it cannot read for free.
std::optional<Outcome> whenTheSearchFails(const Case& each, const Fault& fault,
                                          const Reference& reference) {
  if (each.codeTaken && fault.is("Execute", "CG44_CLIFOR = 700")) {
    return refusedAsDouble(reference, each.holder() + ", 0, 700");
  }
  return asWithoutFault(reference);
}

/// A number that could not be recorded is reported, and all the rest is committed.
std::optional<Outcome> whenTheNumberingFails(const Fault& fault, const Reference& reference) {
  const auto concerns = [&](const std::string& line) {
    for (const char* const company : {"5", "10", "12", "15"}) {
      if (fault.is("Execute", join("CG70_DITTA_CG18 = ", company, " ")) ||
          fault.is("Execute", join("VALUES (", company, ","))) {
        return line.starts_with(join("CG70_NUMERDOC|", company, "|"));
      }
    }
    return false;
  };
  return outcome(99, "Errore in Pcls_NumDoc.ElaboraNumerazione - Stato: 3",
                 databaseWithout(reference, concerns));
}

std::optional<Outcome> documentedFor(const Case& each, const Fault& fault,
                                     const Reference& reference) {
  if (fault.is("CommandExecute") || fault.is("Find")) {
    return whenTheGroupIsNotKnown(each, fault, reference);
  }
  if (fault.lost()) {
    return std::nullopt;  // a lost connection ends the call wherever it breaks
  }
  if (fault.is("Execute", "SELECT CG44_CLIFOR FROM") || fault.is("Execute", "SELECT MAX(")) {
    return whenTheSearchFails(each, fault, reference);
  }
  if (fault.is("Execute", "CG70_NUMERDOC")) {
    return whenTheNumberingFails(fault, reference);
  }
  return std::nullopt;
}

/// The same for the customer 120 of the example, whose code and whose next one are taken.
std::optional<Outcome> documentedForTheExample(const Fault& fault, const Reference& reference) {
  if (!fault.lost() && fault.is("Execute", "CG44_CLIFOR = 120") &&
      fault.is("Execute", "SELECT CG44_CLIFOR FROM")) {
    return refusedAsDouble(reference, "12, 0, 120");
  }
  if (!fault.lost() && fault.is("Execute", "CG44_CLIFOR = 121")) {
    return refusedAsDouble(reference, "10, 0, 121");
  }
  if (!fault.lost() && fault.is("CommandExecute") && fault.occurrence == 1) {
    // In the main company, which alone is known then, the code 120 is free.
    Outcome result = asWithoutFault(reference);
    result.database = databaseWithout(reference, [&](const std::string& line) {
      return isOf(line, {"5", "12", "15"});
    });
    for (std::string& line : result.database) {
      const std::string key = "|10|0|122|";
      if (const std::size_t found = line.find(key); found != std::string::npos) {
        line.replace(found, key.size(), "|10|0|120|");
      }
    }
    std::ranges::sort(result.database);
    return result;
  }
  return documentedFor({.fromMain = false, .codeTaken = true, .mastersMissing = true}, fault,
                       reference);
}

/// The customer 140, whose copy no statement accepts: what is left of the group does not matter.
std::optional<Outcome> documentedForTheRefused(const Fault& fault, const Reference& reference) {
  if (fault.lost() && (fault.is("Find") || fault.is("CommandExecute"))) {
    return documentedFor({}, fault, reference);
  }
  if (fault.is("CommandExecute") && fault.occurrence == 1) {
    return asWithoutFault(reference);
  }
  return documentedFor({}, fault, reference);
}

std::vector<FaultScenario> scenarios() {
  std::vector<FaultScenario> all;
  for (const bool fromMain : {false, true}) {
    for (const bool codeTaken : {false, true}) {
      for (const bool mastersMissing : {false, true}) {
        const Case each{fromMain, codeTaken, mastersMissing};
        all.push_back(
            {each.name(), kSuffix, customerFor(each),
             [each](CLSCO_AZIENDECOLL& service) { duplicate(service, each.company(), 700); },
             [each](const Fault& fault, const Reference& reference) {
               return documentedFor(each, fault, reference);
             }});
        // A taken code and missing masters add operations; without either they are the fewest.
        all.back().onServer = codeTaken == mastersMissing && (codeTaken || !fromMain);
      }
    }
  }
  all.push_back({"a customer with rows in every sub table", kSuffix, "",
                 [](CLSCO_AZIENDECOLL& service) { duplicate(service, "5", 120); },
                 documentedForTheExample});
  all.push_back({"a customer refused for an apostrophe", kSuffix, "",
                 [](CLSCO_AZIENDECOLL& service) { duplicate(service, "5", 140); },
                 documentedForTheRefused});
  return all;
}

class DuplicationFaults : public ::testing::TestWithParam<FaultScenario> {};

TEST_P(DuplicationFaults, LeaveWhatIsDocumented) { expectDocumentedOutcomes(GetParam()); }

INSTANTIATE_TEST_SUITE_P(Calls, DuplicationFaults, ::testing::ValuesIn(scenarios()),
                         [](const auto& tested) { return testName(tested.param.name); });

}  // namespace
}  // namespace azcoll::test
