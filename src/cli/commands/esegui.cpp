#include "cli/commands/esegui.h"

#include <CLI/App.hpp>
#include <algorithm>
#include <array>
#include <cstdint>
#include <filesystem>
#include <fmt/format.h>
#include <memory>
#include <optional>
#include <ostream>
#include <string_view>
#include <system_error>

#include "cli/commands/connection_watch.h"
#include "cli/commands/console_platform.h"
#include "cli/commands/failure_advice.h"
#include "cli/commands/trace.h"
#include "cli/commands/typed_values.h"
#include "cli/print/names.h"
#include "cli/reports/call_report.h"
#include "data/error.h"
#include "service/members.h"
#include "service/service.h"

namespace azcoll::cli {
namespace {

const MethodEntry& methodNamed(std::string_view name) {
  std::array<std::string_view, kMethods.size()> names;
  std::transform(kMethods.begin(), kMethods.end(), names.begin(),
                 [](const MethodEntry& method) { return method.name; });
  const std::optional<std::size_t> found = findName(name, names);
  if (!found) {
    throw UsageError(
        fmt::format("Il metodo «{}» non esiste.{} L'elenco dei metodi è dato da: azcoll metodi",
                    name, suggestion(name, names)));
  }
  return kMethods[*found];
}

void fillInput(CLSCO_INPUTAZCOLL& input, const CommandEsegui& command) {
  for (const std::string& assignment : command.imposta) {
    setField(input, assignment);
  }
  for (const std::string& name : command.nullo) {
    const std::string_view field = inputFieldNamed(name).name;
    for (const std::string& assignment : command.imposta) {
      if (inputFieldNamed(assignment.substr(0, assignment.find('='))).name == field) {
        throw UsageError(fmt::format("Il campo {} è sia in --imposta sia in --nullo.", field));
      }
    }
    setFieldNull(input, name);
  }
}

std::optional<Answer> answerNamed(const std::string& text) {
  if (text.empty()) {
    return std::nullopt;
  }
  const std::string folded = foldName(text);
  if (folded == "si" || folded == "no") {
    return folded == "si" ? Answer::Yes : Answer::No;
  }
  throw UsageError(fmt::format("--rispondi vuole si oppure no, non «{}».", text));
}

/// How often the answer Yes is given before No.
std::int32_t answerTimes(const std::string& text, std::optional<Answer> answer) {
  constexpr std::int32_t most = 1000;
  if (text.empty()) {
    return 1;
  }
  if (answer != Answer::Yes) {
    throw UsageError("--rispondi-volte vale solo insieme a --rispondi si.");
  }
  const std::optional<std::int32_t> times = wholeNumberIn(text, 1, most);
  if (!times) {
    throw UsageError(
        fmt::format("--rispondi-volte vuole un numero da 1 a {}, non «{}».", most, text));
  }
  return *times;
}

std::optional<TraceWriter> openTrace(const CommandEsegui& command, std::ostream& err) {
  std::optional<TraceWriter> trace;
  if (!command.traccia.empty()) {
    std::error_code ignored;
    if (std::filesystem::equivalent(command.traccia, command.database.file, ignored)) {
      throw UsageError("La traccia non può andare nel file del database.");
    }
    trace.emplace(command.traccia, err);
  }
  return trace;
}

/// Calls the method; its result, or Empty when it has none.
Variant call(CLSCO_AZIENDECOLL& service, const MethodMember& member) {
  return std::visit(
      [&service](auto method) -> Variant {
        if constexpr (std::is_void_v<decltype((service.*method)())>) {
          (service.*method)();
          return {};
        } else {
          return (service.*method)();
        }
      },
      member);
}

/// Some methods leave a transaction to the owner of the connection; this owner is about to leave.
void endOpenTransaction(Connection& connection, std::ostream& err) {
  try {
    connection.rollbackTrans();
  } catch (const Error&) {
    return;  // none was open
  }
  err << "Annullata la transazione che il metodo ha lasciato aperta.\n";
}

bool succeeded(const Variant& state) { return sameValue(state, std::int16_t{0}); }

}  // namespace

CLI::App* CommandEsegui::setup(CLI::App& parent) {
  CLI::App* command =
      parent.add_subcommand("esegui", "Chiama un metodo del servizio e stampa i risultati");
  command->add_option("METODO", metodo, "nome del metodo (si veda: azcoll metodi)")
      ->type_name("")
      ->required();
  database.setup(*command);
  const auto repeatable = [command](const char* name, std::vector<std::string>& values,
                                    const char* help, const char* type) {
    command->add_option(name, values, help)->type_name(type)->allow_extra_args(false);
  };
  repeatable("--imposta", imposta,
             "valore di un campo di ingresso: intero, data aaaa-mm-gg,\n"
             "true o false, membro di enumerazione, testo; ripetibile",
             "CAMPO=VALORE");
  repeatable("--nullo", nullo, "mette Null in un campo Variant; ripetibile", "CAMPO");
  command
      ->add_option("--rispondi", rispondi,
                   "risposta alle richieste del servizio; senza, si chiede\n"
                   "sul terminale, e senza terminale la risposta è No")
      ->type_name("si|no");
  command
      ->add_option("--rispondi-volte", rispondiVolte,
                   "quante volte dare il Sì di --rispondi, poi No\n(predefinito: 1)")
      ->type_name("N");
  command
      ->add_option("--traccia", traccia,
                   "scrive ogni operazione sul database come riga JSON;\n- è lo standard error")
      ->type_name("FILE|-");
  command->add_flag("--json", json, "stampa i risultati come oggetto JSON");
  command->footer(
      "Esce con 0 se Stato è 0, 1 con un altro Stato, 2 per un uso errato,\n"
      "3 se il database non si apre o la connessione cade, qualunque sia lo Stato.");
  return command;
}

ExitCode CommandEsegui::run(Console& console) const {
  const MethodEntry& method = methodNamed(metodo);
  const std::optional<Answer> answer = answerNamed(rispondi);
  CLSCO_AZIENDECOLL service{
      std::make_shared<ConsolePlatform>(console, answer, answerTimes(rispondiVolte, answer))};
  fillInput(*service.CPInput, *this);
  const CLSCO_INPUTAZCOLL before = *service.CPInput;

  const ConnectionWatch watch{openDatabase(database)};
  const std::shared_ptr<Connection>& connection = watch.connection();
  std::optional<TraceWriter> trace = openTrace(*this, console.err);
  service.CPInput->Connessione = trace ? trace->traced(connection) : connection;

  const Variant result = call(service, method.member);
  if (trace && !trace->finish()) {
    console.err << fmt::format("La traccia {} non è completa: errore di scrittura.\n", traccia);
  }
  const CallReport report{method, result, before, service};
  if (json) {
    report.printJson(console.out);
  } else {
    report.print(console.out);
  }
  watch.requireAlive();
  const std::optional<ErrorInfo> refusal = watch.refusal();  // the method may have passed over it
  if (refusal) {
    console.err << fmt::format("Rifiutato dal database: {}\n", withDiagnosisHint(*refusal));
  }
  endOpenTransaction(*connection, console.err);
  // Without its tables or its procedure nothing was done, even where the method takes that for an
  // empty group.
  const bool lacksSomething = refusal && isMissingObject(*refusal);
  return succeeded(service.Stato) && !lacksSomething ? ExitCode::Ok : ExitCode::Failed;
}

}  // namespace azcoll::cli
