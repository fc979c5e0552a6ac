#include "cli/app.h"

#include <CLI/App.hpp>
#include <CLI/Config.hpp>
#include <CLI/Formatter.hpp>
#include <algorithm>
#include <exception>
#include <fmt/format.h>
#include <functional>
#include <iostream>
#include <memory>
#include <string_view>
#include <tuple>
#include <unistd.h>
#include <utility>

#include "cli/commands/attivita.h"
#include "cli/commands/campi.h"
#include "cli/commands/crea.h"
#include "cli/commands/diagnosi.h"
#include "cli/commands/esegui.h"
#include "cli/commands/failure_advice.h"
#include "cli/commands/gruppo.h"
#include "cli/commands/metodi.h"
#include "cli/commands/sql.h"
#include "cli/console.h"
#include "cli/print/names.h"
#include "data/error.h"

namespace azcoll::cli {
namespace {

using Commands = std::tuple<CommandCrea, CommandEsegui, CommandGruppo, CommandAttivita,
                            CommandMetodi, CommandCampi, CommandSql, CommandDiagnosi>;

/// The command line: the subcommands and the words of its help, in Italian.
class CommandLine {
 public:
  CommandLine();
  CommandLine(const CommandLine&) = delete;
  CommandLine(CommandLine&&) = delete;
  CommandLine& operator=(const CommandLine&) = delete;
  CommandLine& operator=(CommandLine&&) = delete;
  ~CommandLine() = default;

  ExitCode run(const std::vector<std::string>& args, Console& console);

 private:
  void refuseUnknown() const;
  [[nodiscard]] const CLI::App& chosen() const;
  [[nodiscard]] std::string inItalian(const CLI::ParseError& error) const;

  CLI::App app_{
      "Aziende collegate: crea il database, chiama i metodi del servizio, interroga i dati"};
  Commands commands_;
  std::function<ExitCode(Console&)> work_;  ///< of the command that was parsed
};

/// Puts the help option, which the library makes by itself, into Italian words.
void localize(CLI::App& app) {
  app.option_defaults()->group("Opzioni");
  app.set_help_flag();
  app.set_help_flag("-h,--help", "mostra questo aiuto");
}

CommandLine::CommandLine() {
  app_.name("azcoll");
  const auto formatter = std::make_shared<CLI::Formatter>();
  for (const auto& [english, italian] : {std::pair{"Usage", "Uso"},
                                         {"OPTIONS", "OPZIONI"},
                                         {"SUBCOMMAND", "COMANDO"},
                                         {"Positionals", "Argomenti"},
                                         {"REQUIRED", "(obbligatorio)"}}) {
    formatter->label(english, italian);
  }
  app_.formatter(formatter);
  localize(app_);
  app_.set_version_flag("--version", "azcoll " AZCOLL_VERSION, "mostra la versione");
  app_.require_subcommand(0, 1);
  // Unknown words are collected, so that the messages on them are this program's own.
  app_.allow_extras();
  const auto add = [this](auto& command) {
    CLI::App* added = command.setup(app_);
    added->group("Comandi");
    localize(*added);
    // It is not run yet: unknown words are refused first.
    added->callback([this, &command] {
      work_ = [&command](Console& console) { return command.run(console); };
    });
  };
  std::apply([&add](auto&... command) { (add(command), ...); }, commands_);
}

const CLI::App& CommandLine::chosen() const {
  const std::vector<CLI::App*> parsed = app_.get_subcommands();
  return parsed.empty() ? app_ : *parsed.front();
}

std::vector<std::string_view> viewsOf(const std::vector<std::string>& names) {
  return {names.begin(), names.end()};
}

std::vector<std::string> optionNames(const CLI::App& app) {
  std::vector<std::string> names;
  for (const CLI::Option* option : app.get_options()) {
    for (const std::string& name : option->get_lnames()) {
      names.push_back("--" + name);
    }
  }
  return names;
}

std::vector<std::string> commandNames(const CLI::App& app) {
  std::vector<std::string> names;
  for (const CLI::App* command : app.get_subcommands([](const CLI::App*) { return true; })) {
    names.push_back(command->get_name());
  }
  return names;
}

void CommandLine::refuseUnknown() const {
  for (const CLI::App* level : {&app_, &chosen()}) {
    std::vector<std::string> unknown = level->remaining();
    std::erase(unknown, "--");  // the mark before words that only look like options
    if (unknown.empty()) {
      continue;
    }
    const std::string& word = unknown.front();
    if (word.starts_with('-') && word != "-") {
      const std::string name = word.substr(0, word.find('='));
      throw UsageError(fmt::format("Opzione sconosciuta: {}.{}", name,
                                   suggestion(name, viewsOf(optionNames(*level)))));
    }
    if (level != &app_) {
      throw UsageError(fmt::format("Argomento di troppo: «{}».", word));
    }
    const std::vector<std::string> names = commandNames(app_);
    throw UsageError(fmt::format("Comando sconosciuto: «{}».{} Comandi: {}.", word,
                                 suggestion(word, viewsOf(names)), fmt::join(names, ", ")));
  }
  if (&chosen() == &app_) {
    throw UsageError(
        fmt::format("Manca il comando. Comandi: {}.", fmt::join(commandNames(app_), ", ")));
  }
}

std::string CommandLine::inItalian(const CLI::ParseError& error) const {
  const std::string text = error.what();
  if (dynamic_cast<const CLI::RequiredError*>(&error) != nullptr) {
    for (const CLI::Option* option : chosen().get_options()) {
      if (option->get_required() && option->count() == 0) {
        return fmt::format("Manca {}.", option->get_name());
      }
    }
  }
  const std::string name = text.substr(0, text.find_first_of(": "));
  if (dynamic_cast<const CLI::ArgumentMismatch*>(&error) != nullptr) {
    const CLI::Option* option = chosen().get_option_no_throw(name);
    const bool repeated = option != nullptr && option->count() > 1;
    return fmt::format("L'opzione {} {}.", name,
                       repeated ? "è indicata più volte" : "vuole un valore");
  }
  return fmt::format("Riga di comando non valida: {}", text);
}

ExitCode CommandLine::run(const std::vector<std::string>& args, Console& console) {
  try {
    app_.parse(std::vector<std::string>{args.rbegin(), args.rend()});
  } catch (const CLI::CallForHelp&) {
    console.out << app_.help();
    return ExitCode::Ok;
  } catch (const CLI::CallForVersion& version) {
    console.out << version.what() << '\n';
    return ExitCode::Ok;
  } catch (const CLI::ParseError& error) {
    throw UsageError(inItalian(error));
  }
  refuseUnknown();
  return work_(console);
}

/// Every failure becomes its line on standard error and its exit code.
ExitCode runReported(const std::vector<std::string>& args, Console& console) {
  try {
    return CommandLine{}.run(args, console);
  } catch (const UsageError& error) {
    console.err << fmt::format("azcoll: {}\n", error.what());
    return ExitCode::Usage;
  } catch (const OpenError& error) {
    console.err << fmt::format("azcoll: {}\n", error.what());
    return ExitCode::CannotOpen;
  } catch (const Error& error) {
    const bool lost = error.info().connectionLost;
    console.err << fmt::format("azcoll: {}\n", lost ? describeLoss(error.info()) : error.what());
    return lost ? ExitCode::CannotOpen : ExitCode::Failed;
  } catch (const std::exception& error) {
    console.err << fmt::format("azcoll: {}\n", error.what());
    return ExitCode::Failed;
  }
}

}  // namespace

int run(const std::vector<std::string>& args, std::istream& in, std::ostream& out,
        std::ostream& err) {
  Console console{in, out, err, &in == &std::cin && isatty(STDIN_FILENO) == 1};
  ExitCode code = runReported(args, console);
  out.flush();
  if (!out && code == ExitCode::Ok) {
    err << "azcoll: il risultato non è stato scritto per intero.\n";
    code = ExitCode::Failed;
  }
  return static_cast<int>(code);
}

}  // namespace azcoll::cli
