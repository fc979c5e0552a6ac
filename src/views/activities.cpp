#include "views/activities.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <map>
#include <set>
#include <string_view>
#include <utility>

#include "data/error.h"
#include "data/text.h"
#include "service/service.h"
#include "text/trimming.h"
#include "views/rows.h"
#include "views/unattended_platform.h"
#include "views/value_text.h"

namespace azcoll::views {
namespace {

/// The text of the activity query for a company's own rows of two years. The service's recordset of
/// the same rows would fill an empty year first.
std::string activityStatement(std::int32_t company, std::int32_t year) {
  CLSCO_AZIENDECOLL service{std::make_shared<UnattendedPlatform>()};
  CLSCO_INPUTAZCOLL& in = *service.CPInput;
  in.Pvar_Ditta = company;
  in.AnnoSolare = year;
  in.AnnoSolareDaDuplicare = year - 1;
  in.MultiAziendaEscludiCollegate = true;
  service.StringaSQLAttivitaCollegate();
  if (!sameValue(service.Stato, std::int16_t{0})) {
    throw Error(service.Errore.text());
  }
  return service.CPOutput->GstrSQL_AttivitaCollegate;
}

/// Whether the column is a setting: not one of those that identify the row.
bool isSetting(std::string_view column) {
  constexpr std::array<std::string_view, 6> others{"CG86_IDATTIVITA",     "CG86_INDTIPO",
                                                   "CG86_ANNOIVA",        "CG86_DITTA_CG18",
                                                   "CG86_DITTACOLL_CG18", "CG86_CODATTIVITA"};
  return column.starts_with("CG86_") &&
         std::find(others.begin(), others.end(), column) == others.end();
}

bool isSet(const Variant& flag) { return !flag.isNull() && !flag.isEmpty() && flag.toInt64() == 1; }

/// The rows of the activity query, each put into its year.
void fillActivities(ActivityView& view, const Rows& rows) {
  std::vector<std::size_t> settings;
  for (std::size_t i = 0; i < rows.columns.size(); ++i) {
    if (isSetting(rows.columns[i])) {
      settings.push_back(i);
      view.settings.push_back(rows.columns[i]);
    }
  }
  const std::size_t year = columnIndex(rows, "CG86_ANNOIVA");
  const std::size_t id = columnIndex(rows, "CG86_IDATTIVITA");
  const std::size_t main = columnIndex(rows, "CG86_DITTA_CG18");
  const std::size_t code = columnIndex(rows, "CG86_CODATTIVITA");
  const std::size_t description = columnIndex(rows, "CG96_DESCRATTIVITA");
  const std::size_t principal = columnIndex(rows, "ATTIVITAPRINCIPALE");
  const std::size_t flagged = columnIndex(rows, "CG86_FLGATTIVITAPRINC");
  for (const std::vector<Variant>& row : rows.rows) {
    Activity activity;
    activity.id = row[id].toInt32();
    activity.main = row[main].toInt32();
    activity.code = row[code].toInt32();
    activity.description = exchangeText(row[description]);
    activity.principal = isSet(row[principal]);
    activity.flagged = isSet(row[flagged]);
    for (const std::size_t column : settings) {
      activity.settings.push_back(row[column]);
    }
    const bool now = row[year].toInt32() == view.current.year;
    (now ? view.current : view.previous).activities.push_back(std::move(activity));
  }
}

/// The sectional registers of two years with the activity row of each: the one that the register
/// names, else the first one of the company and year, which only the regimes 0 and 1 have.
Rows readRegisters(Connection& connection, const ActivityView& view) {
  return query(connection,
               join("SELECT CG32_ANNO, CG32_SEZIONALE,"
                    " CASE WHEN CG32_IDATTIVITA_CG86 IS NOT NULL THEN CG32_IDATTIVITA_CG86"
                    " ELSE (SELECT TOP 1 A.CG86_IDATTIVITA FROM CG86_AZIENDECOLL AS A"
                    " LEFT OUTER JOIN CG25_ANADITTAGEST ON CG25_DITTA_CG18 = A.CG86_DITTACOLL_CG18"
                    " WHERE A.CG86_DITTACOLL_CG18 = CG32_DITTA_CG18 AND A.CG86_ANNOIVA = CG32_ANNO"
                    " AND CG25_FLGIVAQUATER IN (0, 1) AND A.CG86_INDTIPO = 0) END AS IDATTIVITA"
                    " FROM CG32_ANADITTAPSEZ WHERE CG32_DITTA_CG18 = ",
                    view.company, " AND CG32_ANNO IN (", view.current.year, ", ",
                    view.previous.year, ") ORDER BY CG32_ANNO, CG32_SEZIONALE"));
}

void fillRegisters(ActivityView& view, const Rows& rows) {
  for (const std::vector<Variant>& row : rows.rows) {
    ActivityYear& year = row[0].toInt32() == view.current.year ? view.current : view.previous;
    std::string code{trimEnd(exchangeText(row[1]))};
    if (row[2].isNull()) {
      year.freeRegisters.push_back(std::move(code));
      continue;
    }
    const auto owner =
        std::find_if(year.activities.begin(), year.activities.end(),
                     [&](const Activity& activity) { return row[2].toInt64() == activity.id; });
    (owner == year.activities.end() ? year.hiddenRegisters : owner->registers)
        .push_back(std::move(code));
  }
}

/// Codes of activity rows that the activity query leaves out.
void fillWithoutRegistry(Connection& connection, ActivityView& view) {
  const Rows rows =
      query(connection,
            join("SELECT DISTINCT CG86_ANNOIVA, CG86_CODATTIVITA, CG96_CODATTIVITA"
                 " FROM CG86_AZIENDECOLL LEFT OUTER JOIN CG96_ANAGATTIVITA"
                 " ON CG96_DITTA_CG18 = CG86_DITTACOLL_CG18"
                 " AND CG96_CODATTIVITA = CG86_CODATTIVITA"
                 " WHERE CG86_INDTIPO = 0 AND CG86_DITTACOLL_CG18 = ",
                 view.company,
                 " AND CG86_CODATTIVITA IS NOT NULL ORDER BY CG86_ANNOIVA, CG86_CODATTIVITA"));
  std::set<std::int32_t> years;
  for (const std::vector<Variant>& row : rows.rows) {
    const std::int32_t year = row[0].toInt32();
    years.insert(year);
    if (row[2].isNull() && year == view.current.year) {
      view.current.withoutRegistry.push_back(row[1].toInt32());
    }
  }
  view.activityYears.assign(years.begin(), years.end());
}

/// Activities of a year by main company and code; several rows may share them.
using ByKey = std::map<std::pair<std::int32_t, std::int32_t>, std::vector<const Activity*>>;

ByKey byKey(const ActivityYear& year) {
  ByKey result;
  for (const Activity& activity : year.activities) {
    result[{activity.main, activity.code}].push_back(&activity);
  }
  return result;
}

std::string listed(const std::vector<std::string>& registers) {
  std::string text;
  for (const std::string& code : registers) {
    // A blank code, which comes first, is not shown by its comma.
    text += (text.empty() ? "" : ", ") + code;
  }
  return text;
}

ActivityChange changeOf(const ActivityView& view, const Activity& before, const Activity& now) {
  ActivityChange change{ActivityChangeKind::Altered, now.code, now.main, now.description, {}};
  for (std::size_t i = 0; i < view.settings.size(); ++i) {
    if (exchangeText(before.settings[i]) != exchangeText(now.settings[i]) ||
        before.settings[i].isNull() != now.settings[i].isNull()) {
      change.settings.push_back({view.settings[i], before.settings[i], now.settings[i]});
    }
  }
  if (before.principal != now.principal) {
    change.settings.push_back({"attività principale", before.principal, now.principal});
  }
  if (before.registers != now.registers) {
    change.settings.push_back({"sezionali", listed(before.registers), listed(now.registers)});
  }
  return change;
}

}  // namespace

ActivityView readActivities(const std::shared_ptr<Connection>& connection, std::int32_t company,
                            std::int32_t year) {
  ActivityView view{company, readCompanyNames(*connection), {}, {.year = year}, {.year = year - 1},
                    {}};
  requireCompany(company, view.names);
  fillActivities(view, query(*connection, activityStatement(company, year)));
  fillRegisters(view, readRegisters(*connection, view));
  fillWithoutRegistry(*connection, view);
  return view;
}

std::vector<ActivityChange> changesOf(const ActivityView& view) {
  ByKey before = byKey(view.previous);
  std::vector<ActivityChange> changes;
  const auto add = [&changes](ActivityChangeKind kind, const Activity& activity) {
    changes.push_back({kind, activity.code, activity.main, activity.description, {}});
  };
  for (const auto& [key, now] : byKey(view.current)) {
    std::vector<const Activity*>& old = before[key];
    for (std::size_t i = 0; i < now.size(); ++i) {
      if (i >= old.size()) {
        add(ActivityChangeKind::Added, *now[i]);
      } else if (ActivityChange change = changeOf(view, *old[i], *now[i]);
                 !change.settings.empty()) {
        changes.push_back(std::move(change));
      }
    }
    old.erase(old.begin(),
              old.begin() + static_cast<std::ptrdiff_t>(std::min(old.size(), now.size())));
  }
  for (const auto& [key, gone] : before) {
    for (const Activity* activity : gone) {
      add(ActivityChangeKind::Gone, *activity);
    }
  }
  std::stable_sort(changes.begin(), changes.end(),
                   [](const ActivityChange& left, const ActivityChange& right) {
                     return std::pair{left.code, left.main} < std::pair{right.code, right.main};
                   });
  return changes;
}

}  // namespace azcoll::views
