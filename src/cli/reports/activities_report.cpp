#include "cli/reports/activities_report.h"

#include <algorithm>
#include <cstddef>
#include <fmt/format.h>
#include <nlohmann/json.hpp>
#include <ostream>
#include <string>
#include <string_view>
#include <vector>

#include "cli/print/json.h"
#include "cli/print/tables.h"
#include "cli/print/terminal_text.h"
#include "views/query.h"
#include "views/value_text.h"

namespace azcoll::cli {

using views::Activity;
using views::ActivityChange;
using views::ActivityChangeKind;
using views::ActivityView;
using views::ActivityYear;
using views::companyText;
using views::Rows;
using views::SettingChange;

namespace {

/// How the main activity is marked: `sì`, with a reason where the row and the year differ.
std::string_view principalText(const Activity& activity) {
  if (activity.principal) {
    return activity.flagged ? "sì" : "sì (codice più basso)";
  }
  return activity.flagged ? "solo nella riga" : "";
}

Rows activitiesAsRows(const ActivityView& view) {
  const std::vector<Activity>& activities = view.current.activities;
  const bool ofGroups =
      std::any_of(activities.begin(), activities.end(),
                  [&view](const Activity& activity) { return activity.main != view.company; });
  Rows rows{{"Attività", "Descrizione", "Principale", "Sezionali"}, {}};
  if (ofGroups) {
    rows.columns.emplace_back("Nel gruppo di");
  }
  for (const Activity& activity : activities) {
    std::vector<Variant>& row = rows.rows.emplace_back();
    row = {activity.code, activity.description, principalText(activity),
           fmt::format("{}", fmt::join(activity.registers, ", "))};
    if (ofGroups) {
      row.emplace_back(activity.main == view.company ? std::string{}
                                                     : companyText(activity.main, view.names));
    }
  }
  return rows;
}

std::string shown(const Variant& value) {
  if (const bool* flag = value.get<bool>()) {
    return *flag ? "sì" : "no";
  }
  const std::string* text = value.get<std::string>();
  return text != nullptr && text->empty() ? "nessuno" : views::displayText(value);
}

std::string_view markOf(ActivityChangeKind kind) {
  switch (kind) {
    case ActivityChangeKind::Added:
      return "+";
    case ActivityChangeKind::Gone:
      return "-";
    case ActivityChangeKind::Altered:
      break;
  }
  return "~";
}

void printChange(std::ostream& out, const ActivityView& view, const ActivityChange& change) {
  out << fmt::format("  {} {} {}", markOf(change.kind), change.code, visible(change.description));
  if (change.main != view.company) {
    out << fmt::format(" (nel gruppo di {})", change.main);
  }
  switch (change.kind) {
    case ActivityChangeKind::Added:
      out << ": nuova\n";
      break;
    case ActivityChangeKind::Gone:
      out << ": non c'è più\n";
      break;
    case ActivityChangeKind::Altered:
      out << '\n';
  }
  for (const SettingChange& setting : change.settings) {
    out << fmt::format("      {}: {} -> {}\n", setting.column, visible(shown(setting.before)),
                       visible(shown(setting.now)));
  }
}

void printChanges(std::ostream& out, const ActivityView& view) {
  if (view.previous.activities.empty()) {
    out << fmt::format("\nNel {} non ci sono attività con cui confrontare.\n", view.previous.year);
    return;
  }
  out << fmt::format("\nRispetto al {}:\n", view.previous.year);
  const std::vector<ActivityChange> changes = changesOf(view);
  for (const ActivityChange& change : changes) {
    printChange(out, view, change);
  }
  out << (changes.empty() ? "  nessuna differenza\n" : "");
}

Json changeAsJson(const ActivityChange& change) {
  Json json;
  json["codice"] = change.code;
  json["descrizione"] = change.description;
  json["nel_gruppo_di"] = change.main;
  json["segno"] = markOf(change.kind);
  Json& settings = json["campi"] = Json::array();
  for (const SettingChange& setting : change.settings) {
    settings.push_back({{"campo", setting.column},
                        {"prima", toJson(setting.before)},
                        {"ora", toJson(setting.now)}});
  }
  return json;
}

}  // namespace

void printActivities(std::ostream& out, const ActivityView& view) {
  const ActivityYear& year = view.current;
  out << fmt::format("Azienda {}, anno IVA {}: ", visible(companyText(view.company, view.names)),
                     year.year);
  if (year.activities.empty()) {
    out << "nessuna attività\n"
        << (view.activityYears.empty()
                ? fmt::format("L'azienda {} non ha attività in nessun anno.\n", view.company)
                : fmt::format("Anni con attività: {}.\n", fmt::join(view.activityYears, ", ")));
  } else {
    const std::size_t count = year.activities.size();
    out << fmt::format("{} attività\n\n", count);
    printTable(out, activitiesAsRows(view));
  }
  if (!year.freeRegisters.empty()) {
    out << fmt::format("\nSezionali senza attività: {}.\n",
                       visible(fmt::format("{}", fmt::join(year.freeRegisters, ", "))));
  }
  if (!year.hiddenRegisters.empty()) {
    out << fmt::format("\nSezionali di attività non elencate: {}.\n",
                       visible(fmt::format("{}", fmt::join(year.hiddenRegisters, ", "))));
  }
  if (!year.withoutRegistry.empty()) {
    out << fmt::format("\nNon elencate perché mancano nell'anagrafica attività: {}.\n",
                       fmt::join(year.withoutRegistry, ", "));
  }
  if (!year.activities.empty() || !view.previous.activities.empty()) {
    printChanges(out, view);
  }
}

void printActivitiesJson(std::ostream& out, const ActivityView& view) {
  Json json;
  json["ditta"] = view.company;
  const auto name = view.names.find(view.company);
  json["nome"] = name == view.names.end() ? std::string{} : name->second;
  json["anno"] = view.current.year;
  Json& activities = json["attivita"] = Json::array();
  for (const Activity& activity : view.current.activities) {
    Json& entry = activities.emplace_back();
    entry["codice"] = activity.code;
    entry["id"] = activity.id;
    entry["descrizione"] = activity.description;
    entry["principale"] = activity.principal;
    entry["principale_nella_riga"] = activity.flagged;
    entry["nel_gruppo_di"] = activity.main;
    entry["sezionali"] = activity.registers;
  }
  json["sezionali_senza_attivita"] = view.current.freeRegisters;
  json["sezionali_di_attivita_non_elencate"] = view.current.hiddenRegisters;
  json["senza_anagrafica"] = view.current.withoutRegistry;
  json["anno_precedente"] = view.previous.year;
  Json& differences = json["differenze"] = nullptr;
  if (!view.previous.activities.empty()) {
    differences = Json::array();
    for (const ActivityChange& change : changesOf(view)) {
      differences.push_back(changeAsJson(change));
    }
  }
  json["anni_con_attivita"] = view.activityYears;
  out << dump(json) << '\n';
}

}  // namespace azcoll::cli
