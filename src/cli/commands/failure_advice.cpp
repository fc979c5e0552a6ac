#include "cli/commands/failure_advice.h"

#include <algorithm>
#include <fmt/format.h>
#include <initializer_list>
#include <string_view>

#include "deployment/failure.h"

namespace azcoll::cli {

using deployment::describeFailure;

namespace {

constexpr std::string_view kCheckServer =
    "Controllare il nome del server e la porta (Server, Port), e che il server sia acceso e la "
    "rete "
    "lo raggiunga.";

/// Where to learn that tables, columns or rights are missing.
constexpr std::string_view kAskDiagnosis =
    "Se mancano tabelle, colonne o diritti lo dice: azcoll diagnosi";

}  // namespace

std::string whatToCheck(const std::vector<ErrorInfo>& failures) {
  const auto any = [&](auto matches) { return std::ranges::any_of(failures, matches); };
  const auto hasState = [&](std::string_view start) {
    return any([&](const ErrorInfo& each) { return each.sqlState.starts_with(start); });
  };
  const auto hasNumber = [&](std::initializer_list<int> numbers) {
    return any([&](const ErrorInfo& each) {
      return std::ranges::find(numbers, each.nativeNumber) != numbers.end();
    });
  };
  // Not every server gives a refused database the number 4060.
  const bool noDatabase = any([](const ErrorInfo& each) {
    return each.description.find("Cannot open database") != std::string::npos;
  });
  if (noDatabase || hasNumber({911, 916, 4060}) || hasState("08004")) {
    return "Controllare il nome del database (Database), e che l'utente vi abbia accesso. Un "
           "database nuovo si fa con CREATE DATABASE, poi: azcoll crea --connessione";
  }
  if (hasNumber({18456}) || hasState("28")) {
    return "Controllare l'utente e la password (UID, PWD), e che l'utente possa connettersi al "
           "server.";
  }
  // As the first of the failures a 01000 is the driver manager's: no such driver.
  if (hasState("IM00") || failures.front().sqlState == "01000") {
    return "Controllare il driver (Driver, oppure DSN): quelli installati li elenca odbcinst -q -d";
  }
  if (hasState("08") || hasState("HYT")) {
    return std::string{kCheckServer} +
           "\nAlcuni driver rispondono così anche quando mancano l'utente o la password (UID, "
           "PWD).";
  }
  return {};
}

std::string describeLoss(const ErrorInfo& info) {
  return fmt::format(
      "La connessione al database è caduta: {}\n{} Quello che non era confermato il server lo "
      "annulla da sé.",
      describeFailure(info), kCheckServer);
}

bool isMissingObject(const ErrorInfo& info) {
  constexpr int kNoTable = 208;
  constexpr int kNoProcedure = 2812;
  return info.nativeNumber == kNoTable || info.nativeNumber == kNoProcedure ||
         info.sqlState == "42S02";
}

std::string withDiagnosisHint(const ErrorInfo& info) {
  // Class 42: something is not there, or not allowed.
  return describeFailure(info) +
         (info.sqlState.starts_with("42") ? fmt::format("\n{}", kAskDiagnosis) : "");
}

}  // namespace azcoll::cli
