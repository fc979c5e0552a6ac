#include "cli/reports/group_report.h"

#include <algorithm>
#include <cstddef>
#include <fmt/format.h>
#include <fmt/ranges.h>
#include <nlohmann/json.hpp>
#include <optional>
#include <ostream>
#include <vector>

#include "cli/print/json.h"
#include "cli/print/tables.h"
#include "cli/print/terminal_text.h"
#include "views/query.h"
#include "views/rows.h"

namespace azcoll::cli {

using views::accountingTypeText;
using views::Change;
using views::CompanyHistory;
using views::CompanyNames;
using views::companyText;
using views::Group;
using views::GroupHistory;
using views::GroupMember;
using views::GroupView;
using views::GroupYear;
using views::Rows;

namespace {

std::string nameOf(std::int32_t company, const CompanyNames& names) {
  const auto found = names.find(company);
  return found == names.end() ? std::string{} : found->second;
}

std::string linkedCount(std::size_t count) {
  return count == 1 ? "1 azienda collegata" : fmt::format("{} aziende collegate", count);
}

Rows groupAsRows(const GroupView& view, const Group& group) {
  Rows rows{{"Ditta", "Nome", "Legame", "Tipo contabile", "Clienti e fornitori salvati qui"}, {}};
  for (const GroupMember& member : group.members) {
    rows.rows.push_back({member.company, nameOf(member.company, view.names),
                         member.company == group.main ? "principale" : "collegata",
                         accountingTypeText(member.accountingType), sharingText(group, member)});
  }
  return rows;
}

void printNotes(std::ostream& out, const GroupView& view, const GroupYear& year) {
  std::vector<std::string> notes;
  if (year.groups.size() > 1) {
    notes.push_back(fmt::format(
        "L'azienda {} è in {} gruppi: per i suoi clienti e fornitori vale quello dell'azienda {}.",
        companyText(view.company, view.names), year.groups.size(), year.groups.front().main));
  }
  for (const Group& group : year.groups) {
    for (const GroupMember& member : group.members) {
      if (!member.otherGroups.empty() && member.company != view.company) {
        notes.push_back(fmt::format("L'azienda {} è anche nel gruppo dell'azienda {}.",
                                    companyText(member.company, view.names),
                                    fmt::join(member.otherGroups, ", ")));
      }
    }
  }
  const char* heading = "\nNote:\n";
  for (const std::string& note : notes) {
    out << heading << "  " << visible(note) << '\n';
    heading = "";
  }
}

void printLinkedYears(std::ostream& out, const GroupView& view) {
  if (view.linkedYears.empty()) {
    out << fmt::format("L'azienda {} non ha collegamenti in nessun anno.\n", view.company);
  } else {
    out << fmt::format("Anni con collegamenti: {}.\n", fmt::join(view.linkedYears, ", "));
  }
}

void printYear(std::ostream& out, const GroupView& view) {
  const GroupYear& year = view.years.front();
  out << fmt::format("Azienda {}, anno IVA {}: {}\n",
                     visible(companyText(view.company, view.names)), year.year,
                     visible(roleText(view, year)));
  for (const Group& group : year.groups) {
    out << fmt::format("\nGruppo dell'azienda {} ({}, legami di tipo 0):\n\n",
                       visible(companyText(group.main, view.names)),
                       linkedCount(group.members.size() - 1));
    printTable(out, groupAsRows(view, group));
  }
  if (year.groups.empty()) {
    printLinkedYears(out, view);
  }
  printNotes(out, view, year);
}

std::string cellText(const CompanyHistory& history, std::size_t year) {
  const std::string_view mark = changeMark(history.change(year));
  const std::optional<Variant>& type = history.types[year];
  return fmt::format("{:<2}{}", mark, type ? accountingTypeText(*type) : std::string{});
}

Rows yearsAsRows(const GroupView& view, const std::vector<GroupHistory>& groups) {
  Rows rows{{"Gruppo", "Ditta", "Nome"}, {}};
  for (const GroupYear& year : view.years) {
    rows.columns.push_back(std::to_string(year.year));
  }
  for (const GroupHistory& group : groups) {
    for (const CompanyHistory& history : group) {
      std::vector<Variant>& row = rows.rows.emplace_back();
      row = {history.main, history.company, nameOf(history.company, view.names)};
      for (std::size_t i = 0; i < view.years.size(); ++i) {
        row.emplace_back(cellText(history, i));
      }
    }
  }
  return rows;
}

std::string changeText(const CompanyHistory& history, std::size_t year) {
  switch (history.change(year)) {
    case Change::Joined:
      return fmt::format("entra nel gruppo {}, tipo contabile {}", history.main,
                         accountingTypeText(*history.types[year]));
    case Change::Left:
      return fmt::format("esce dal gruppo {}", history.main);
    case Change::Altered:
      return fmt::format("nel gruppo {} il tipo contabile passa da {} a {}", history.main,
                         accountingTypeText(*history.types[year - 1]),
                         accountingTypeText(*history.types[year]));
    case Change::None:
      break;
  }
  return {};
}

/// A group that comes or goes is one difference; else those of its companies. Returns whether there
/// were any.
bool printGroupDifferences(std::ostream& out, const GroupView& view, const GroupHistory& group,
                           std::size_t year) {
  const CompanyHistory& main = group.front();
  const Change change = main.change(year);
  if (change == Change::Joined || change == Change::Left) {
    const auto with = std::count_if(group.begin(), group.end(), [&](const CompanyHistory& one) {
      return one.change(year) == change;
    });
    out << fmt::format("  {} gruppo dell'azienda {}: {}, con {}\n", changeMark(change),
                       visible(companyText(main.company, view.names)),
                       change == Change::Joined ? "nuovo" : "non c'è più",
                       linkedCount(static_cast<std::size_t>(with) - 1));
    return true;
  }
  bool any = false;
  for (const CompanyHistory& history : group) {
    if (history.change(year) != Change::None) {
      any = true;
      out << fmt::format("  {} {}: {}\n", changeMark(history.change(year)),
                         visible(companyText(history.company, view.names)),
                         changeText(history, year));
    }
  }
  return any;
}

void printDifferences(std::ostream& out, const GroupView& view,
                      const std::vector<GroupHistory>& groups) {
  for (std::size_t i = 1; i < view.years.size(); ++i) {
    out << fmt::format("\nDal {} al {}:\n", view.years[i - 1].year, view.years[i].year);
    bool any = false;
    for (const GroupHistory& group : groups) {
      any = printGroupDifferences(out, view, group, i) || any;
    }
    out << (any ? "" : "  nessuna differenza\n");
  }
}

void printYears(std::ostream& out, const GroupView& view) {
  out << fmt::format("Azienda {}, anni IVA {}-{}\n\n",
                     visible(companyText(view.company, view.names)), view.years.front().year,
                     view.years.back().year);
  for (const GroupYear& year : view.years) {
    out << fmt::format("  {}: {}\n", year.year, visible(roleText(view, year)));
  }
  const std::vector<GroupHistory> groups = historiesOf(view);
  if (groups.empty()) {
    out << '\n';
    printLinkedYears(out, view);
    return;
  }
  out << "\nTipo contabile anno per anno (+ entra, - esce, ~ cambia; con il tipo 1 nulla è "
         "copiato):\n\n";
  printTable(out, yearsAsRows(view, groups));
  printDifferences(out, view, groups);
}

Json memberAsJson(const GroupView& view, const Group& group, const GroupMember& member) {
  Json json;
  json["ditta"] = member.company;
  json["nome"] = nameOf(member.company, view.names);
  json["principale"] = member.company == group.main;
  json["tipo_contabile"] = toJson(member.accountingType);
  json["copia_nel_gruppo"] = member.sharing.copied ? Json(member.sharing.group) : Json(nullptr);
  json["altri_gruppi"] = member.otherGroups;
  return json;
}

Json yearAsJson(const GroupView& view, const GroupYear& year) {
  Json json;
  json["anno"] = year.year;
  Json& groups = json["gruppi"] = Json::array();
  for (const Group& group : year.groups) {
    Json& entry = groups.emplace_back();
    entry["principale"] = group.main;
    entry["della_ditta"] = isIn(group, view.company);
    entry["tipo_legame"] = 0;
    Json& members = entry["aziende"] = Json::array();
    for (const GroupMember& member : group.members) {
      members.push_back(memberAsJson(view, group, member));
    }
  }
  return json;
}

Json differenceAsJson(const CompanyHistory& history, std::int32_t year, std::size_t index) {
  const auto type = [&history](std::size_t i) {
    const std::optional<Variant>& value = history.types[i];
    return value ? toJson(*value) : Json(nullptr);
  };
  Json json;
  json["anno"] = year;
  json["gruppo"] = history.main;
  json["ditta"] = history.company;
  json["segno"] = changeMark(history.change(index));
  json["tipo_contabile_prima"] = type(index - 1);
  json["tipo_contabile"] = type(index);
  return json;
}

Json differencesAsJson(const GroupView& view) {
  const std::vector<GroupHistory> groups = historiesOf(view);
  Json differences = Json::array();
  for (std::size_t i = 1; i < view.years.size(); ++i) {
    for (const GroupHistory& group : groups) {
      for (const CompanyHistory& history : group) {
        if (history.change(i) != Change::None) {
          differences.push_back(differenceAsJson(history, view.years[i].year, i));
        }
      }
    }
  }
  return differences;
}

}  // namespace

void printGroups(std::ostream& out, const GroupView& view) {
  if (view.years.size() == 1) {
    printYear(out, view);
  } else {
    printYears(out, view);
  }
}

void printGroupsJson(std::ostream& out, const GroupView& view) {
  Json json;
  json["ditta"] = view.company;
  json["nome"] = nameOf(view.company, view.names);
  Json& years = json["anni"] = Json::array();
  for (const GroupYear& year : view.years) {
    years.push_back(yearAsJson(view, year));
  }
  json["differenze"] = differencesAsJson(view);
  json["anni_con_collegamenti"] = view.linkedYears;
  out << dump(json) << '\n';
}

std::string roleText(const GroupView& view, const GroupYear& year) {
  std::vector<std::string> roles;
  for (const Group& group : year.groups) {
    if (group.main == view.company) {
      roles.push_back(fmt::format("principale di {}", linkedCount(group.members.size() - 1)));
    } else if (isIn(group, view.company)) {
      roles.push_back(
          fmt::format("collegata all'azienda principale {}", companyText(group.main, view.names)));
    }
  }
  return roles.empty() ? "nessuna azienda collegata" : fmt::format("{}", fmt::join(roles, "; "));
}

std::string sharingText(const Group& group, const GroupMember& member) {
  if (!member.sharing.copied) {
    return "non copiati (tipo contabile 1)";
  }
  if (member.sharing.group != group.main) {
    return fmt::format("copiati nel gruppo dell'azienda {}", member.sharing.group);
  }
  return member.company == group.main ? "copiati nelle collegate"
                                      : "copiati nella principale e nelle altre";
}

std::string_view changeMark(Change change) {
  switch (change) {
    case Change::Joined:
      return "+";
    case Change::Left:
      return "-";
    case Change::Altered:
      return "~";
    case Change::None:
      break;
  }
  return "";
}

}  // namespace azcoll::cli
