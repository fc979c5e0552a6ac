#include "cli/commands/campi.h"

#include <CLI/App.hpp>
#include <array>
#include <nlohmann/json.hpp>
#include <ostream>
#include <string_view>
#include <vector>

#include "cli/print/json.h"
#include "cli/print/tables.h"
#include "service/members.h"
#include "views/rows.h"

namespace azcoll::cli {
namespace {

struct FieldLine {
  std::string_view name;
  std::string_view type;
  std::string_view meaning;
};

struct FieldClass {
  std::string_view name;
  std::vector<FieldLine> fields;
};

template <typename Table>
std::vector<FieldLine> linesOf(const Table& table) {
  std::vector<FieldLine> lines;
  lines.reserve(table.size());
  for (const auto& field : table) {
    lines.push_back({field.name, typeName(field.kind()), field.meaning});
  }
  return lines;
}

std::vector<FieldLine> serviceLines() {
  // Kind and meaning of the service's own fields, in the order of `kServiceFields`.
  constexpr std::array<std::array<std::string_view, 2>, kServiceFields.size()> about{{
      {"CLSCO_INPUTAZCOLL", "parametri della chiamata"},
      {"CLSCO_OUTPUTAZCOLL", "risultati della chiamata"},
      {"Variant", "esito dell'ultima chiamata: 0 quando è riuscita"},
      {"Variant", "messaggio dell'ultimo errore"},
  }};
  std::vector<FieldLine> lines;
  for (std::size_t i = 0; i < kServiceFields.size(); ++i) {
    lines.push_back({kServiceFields[i], about[i][0], about[i][1]});
  }
  return lines;
}

std::vector<FieldClass> classes() {
  return {{"CLSCO_INPUTAZCOLL", linesOf(kInputFields)},
          {"CLSCO_OUTPUTAZCOLL", linesOf(kOutputFields)},
          {"CLSCO_AZIENDECOLL", serviceLines()}};
}

void printJson(std::ostream& out) {
  Json result;
  for (const FieldClass& fieldClass : classes()) {
    Json& fields = result[std::string{fieldClass.name}] = Json::array();
    for (const FieldLine& field : fieldClass.fields) {
      Json& entry = fields.emplace_back();
      entry["nome"] = field.name;
      entry["tipo"] = field.type;
      entry["descrizione"] = field.meaning;
    }
  }
  out << dump(result) << '\n';
}

void printTables(std::ostream& out) {
  bool first = true;
  for (const FieldClass& fieldClass : classes()) {
    views::Rows rows{{"Campo", "Tipo", "Descrizione"}, {}};
    for (const FieldLine& field : fieldClass.fields) {
      rows.rows.push_back({field.name, field.type, field.meaning});
    }
    out << (first ? "" : "\n") << fieldClass.name << "\n\n";
    printTable(out, rows);
    first = false;
  }
}

}  // namespace

CLI::App* CommandCampi::setup(CLI::App& parent) {
  CLI::App* command =
      parent.add_subcommand("campi", "Elenca i campi degli oggetti di ingresso e di uscita");
  command->add_flag("--json", json, "stampa l'elenco come JSON");
  return command;
}

ExitCode CommandCampi::run(Console& console) const {
  if (json) {
    printJson(console.out);
  } else {
    printTables(console.out);
  }
  return ExitCode::Ok;
}

}  // namespace azcoll::cli
