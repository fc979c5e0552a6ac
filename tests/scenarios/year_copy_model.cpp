#include "scenarios/year_copy_model.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <string_view>

#include "data/text.h"

namespace azcoll::test {
namespace {

std::optional<int> given(const Variant& value) {
  return value.isNull() ? std::nullopt : std::optional<int>{value.toInt32()};
}

bool refused(const std::vector<ActivityRow>& rows, const YearCopy& copy) {
  const auto standing = std::ranges::count_if(rows, [&](const ActivityRow& row) {
    const bool ofCompany = row.linked == copy.company || row.main == copy.company;
    return row.kind == 0 && row.year == copy.to && ofCompany && row.isLink() != copy.overSeveral;
  });
  return standing > (copy.overSeveral ? 1 : 0);
}

/// Linked companies of the groups that the company belongs to in the source year, as the activity
/// query shows them.
std::set<int> linkedCompanies(const std::vector<ActivityRow>& rows, const Registry& registry,
                              const YearCopy& copy) {
  std::set<int> groups;
  for (const ActivityRow& row : rows) {
    if (row.kind == 0 && row.year == copy.from &&
        (row.main == copy.company || row.linked == copy.company)) {
      groups.insert(row.main);
    }
  }
  std::set<int> linked;
  for (const ActivityRow& row : rows) {
    const bool shown = row.kind == 0 && row.year == copy.from && groups.contains(row.main) &&
                       row.code && registry.contains({row.linked, *row.code}) && copy.selects(row);
    // Its own rows are what is copied, unless links are.
    if (shown && row.isLink() && (copy.overSeveral || row.linked != copy.company)) {
      linked.insert(row.linked);
    }
  }
  return linked;
}

/// Whether `company` has own activities of the selection in a year in which it is linked as well.
bool isLinkedBesides(const std::vector<ActivityRow>& rows, const YearCopy& copy, int company,
                     const auto& isOwn) {
  return std::ranges::any_of(rows, [&](const ActivityRow& own) {
    return isOwn(own, company) && std::ranges::any_of(rows, [&](const ActivityRow& link) {
             // The target year's own rows of the duplicated company are gone by then.
             const bool there = !copy.isTarget(link) || (copy.code && link.code != copy.code);
             return there && link.kind == 0 && link.year == own.year && link.linked == company &&
                    link.isLink();
           });
  });
}

}  // namespace

std::vector<ActivityRow> activityRows(Connection& connection) {
  constexpr std::array<std::string_view, 9> named{
      "CG86_IDATTIVITA",  "CG86_INDTIPO",          "CG86_ANNOIVA",
      "CG86_INDTIPOCONT", "CG86_DITTA_CG18",       "CG86_DITTACOLL_CG18",
      "CG86_CODATTIVITA", "CG86_FLGATTIVITAPRINC", "CG86_INDCOMLETTINT"};
  std::int64_t affected = 0;
  const std::shared_ptr<Recordset> found = connection.execute(
      "SELECT * FROM CG86_AZIENDECOLL ORDER BY CG86_IDATTIVITA", affected, CommandOption::Text);
  std::vector<ActivityRow> rows;
  for (; !found->atEnd(); found->moveNext()) {
    Fields& fields = found->fields();
    const auto value = [&](std::size_t index) { return fields.item(named[index]).value(); };
    ActivityRow& row = rows.emplace_back(ActivityRow{.id = value(0).toInt32(),
                                                     .kind = value(1).toInt32(),
                                                     .year = value(2).toInt32(),
                                                     .accounting = given(value(3)),
                                                     .main = value(4).toInt32(),
                                                     .linked = value(5).toInt32(),
                                                     .code = given(value(6)),
                                                     .flagged = value(7).toInt32() == 1,
                                                     .letters = value(8).toInt32(),
                                                     .settings = ""});
    for (std::size_t index = 0; index < fields.count(); ++index) {
      const Field& field = fields.item(index);
      if (std::ranges::find(named, field.name()) == named.end()) {
        const Variant setting = field.value();
        row.settings += join("|", setting.isNull() ? "NULL" : setting.text());
      }
    }
  }
  return rows;
}

std::string contentOf(const ActivityRow& row) {
  const auto orNull = [](const std::optional<int>& value) {
    return value ? std::to_string(*value) : "NULL";
  };
  return join(row.kind, " ", row.year, " ", orNull(row.accounting), " ", row.main, "->", row.linked,
              " ", orNull(row.code), " ", row.letters, row.settings);
}

CopiedYear copiedYear(const std::vector<ActivityRow>& rows, const Registry& registry,
                      const YearCopy& copy) {
  CopiedYear result{
      .refused = refused(rows, copy), .kept = rows, .copies = {}, .remembered = {}, .yielding = {}};
  if (result.refused || copy.from == copy.to) {
    return result;
  }
  const auto isOwn = [&](const ActivityRow& row, int company) {
    return row.kind == 0 && (row.year == copy.from || row.year == copy.to) && !row.isLink() &&
           row.main == company && copy.selects(row);
  };
  for (const int company : linkedCompanies(rows, registry, copy)) {
    if (isLinkedBesides(rows, copy, company, isOwn)) {
      result.yielding.insert(company);
    }
  }
  result.kept.clear();
  for (ActivityRow row : rows) {
    const bool replaced = copy.isTarget(row) && (!copy.code || row.code == copy.code);
    if (copy.isTarget(row) && row.flagged && row.code) {
      result.remembered.insert(*row.code);
    }
    if (!replaced && !(result.yielding.contains(row.main) && isOwn(row, row.main))) {
      row.flagged = row.flagged && !copy.isTarget(row);
      result.kept.push_back(row);
    }
    if (copy.isSource(row)) {
      const bool carried = !copy.id && row.code && registry.contains({row.linked, *row.code});
      row.letters = carried ? row.letters : 0;
      row.year = copy.to;
      result.copies.push_back(row);
    }
  }
  return result;
}

}  // namespace azcoll::test
