#include "cli/commands/metodi.h"

#include <CLI/App.hpp>
#include <nlohmann/json.hpp>
#include <ostream>

#include "cli/print/json.h"
#include "cli/print/tables.h"
#include "service/members.h"
#include "views/rows.h"

namespace azcoll::cli {
namespace {

Json methodsAsJson() {
  Json methods = Json::array();
  for (const MethodEntry& method : kMethods) {
    Json& entry = methods.emplace_back();
    entry["nome"] = method.name;
    entry["risultato"] =
        method.result == MethodResult::None ? Json(nullptr) : Json(typeName(method.result));
    entry["descrizione"] = method.meaning;
  }
  return methods;
}

views::Rows methodsAsRows() {
  views::Rows methods{{"Metodo", "Risultato", "Descrizione"}, {}};
  for (const MethodEntry& method : kMethods) {
    methods.rows.push_back({method.name, typeName(method.result), method.meaning});
  }
  return methods;
}

}  // namespace

CLI::App* CommandMetodi::setup(CLI::App& parent) {
  CLI::App* command = parent.add_subcommand("metodi", "Elenca i metodi del servizio");
  command->add_flag("--json", json, "stampa l'elenco come JSON");
  return command;
}

ExitCode CommandMetodi::run(Console& console) const {
  if (json) {
    console.out << dump(methodsAsJson()) << '\n';
  } else {
    printTable(console.out, methodsAsRows());
  }
  return ExitCode::Ok;
}

}  // namespace azcoll::cli
