#include "views/group.h"

#include <algorithm>
#include <charconv>
#include <iterator>
#include <map>
#include <set>

#include "data/date.h"
#include "data/error.h"
#include "data/text.h"
#include "linked/group_procedure.h"
#include "linked/statements.h"
#include "service/service.h"
#include "views/rows.h"
#include "views/unattended_platform.h"

namespace azcoll::views {
namespace {

/// A link of a VAT year: a row of kind 0 whose two companies differ.
struct Link {
  std::int32_t year;
  std::int32_t main;
  std::int32_t linked;
};

std::vector<Link> readLinks(Connection& connection) {
  const Rows rows =
      query(connection, join("SELECT DISTINCT CG86_ANNOIVA, CG86_DITTA_CG18, CG86_DITTACOLL_CG18"
                             " FROM CG86_AZIENDECOLL",
                             linked::kLinksOnly));
  std::vector<Link> links;
  links.reserve(rows.rows.size());
  for (const std::vector<Variant>& row : rows.rows) {
    links.push_back({row[0].toInt32(), row[1].toInt32(), row[2].toInt32()});
  }
  return links;
}

/// Main companies of the groups in which each company is, in one year.
using Memberships = std::map<std::int32_t, std::set<std::int32_t>>;

Memberships membershipsOf(const std::vector<Link>& links, std::int32_t year) {
  Memberships memberships;
  for (const Link& link : links) {
    if (link.year == year) {
      memberships[link.main].insert(link.main);
      memberships[link.linked].insert(link.main);
    }
  }
  return memberships;
}

/// The rows that the stored procedure gives for the group of a main company.
Rows procedureRows(const std::shared_ptr<Connection>& connection, std::int32_t main,
                   std::int32_t year) {
  const std::shared_ptr<Command> command =
      linked::groupCommand(connection, main, Date::of(year, 1, 1).value_or(Date{}));
  linked::selectCompanies(*command, 0, {});
  std::int64_t affected = 0;
  const std::shared_ptr<Recordset> recordset =
      command->execute(affected, CommandOption::StoredProcedure);
  Rows rows = recordset ? readRows(*recordset) : Rows{};
  command->setActiveConnection(nullptr);
  return rows;
}

/// Asks the service in which group a company's customers and suppliers are copied, and whether.
class SharingQuestion {
 public:
  explicit SharingQuestion(const std::shared_ptr<Connection>& connection) {
    service_.CPInput->Connessione = connection;
  }

  [[nodiscard]] Sharing of(std::int32_t company, std::int32_t year) {
    service_.CPInput->Pvar_Ditta = company;
    service_.CPInput->AnnoSolare = year;
    service_.CPOutput->IndTipoCont = std::int16_t{0};
    const std::string main = service_.GetDittaPrincipale();
    Sharing sharing;
    const char* const end = main.data() + main.size();
    if (std::from_chars(main.data(), end, sharing.group).ptr != end || main.empty()) {
      throw Error(join("Il gruppo dell'azienda ", company, " nel ", year, " non si può leggere"));
    }
    sharing.copied = !stopsPropagation(service_.CPOutput->IndTipoCont);
    return sharing;
  }

 private:
  CLSCO_AZIENDECOLL service_{std::make_shared<UnattendedPlatform>()};
};

Group readGroup(const std::shared_ptr<Connection>& connection, std::int32_t main, std::int32_t year,
                const Memberships& memberships, SharingQuestion& question) {
  const Rows rows = procedureRows(connection, main, year);
  const std::size_t company = columnIndex(rows, "DITTA");
  const std::size_t type = columnIndex(rows, "CG86_INDTIPOCONT");
  const std::size_t principal = columnIndex(rows, "PRINCIPALE");
  Group group{main, {}};
  for (const std::vector<Variant>& row : rows.rows) {
    GroupMember member{row[company].toInt32(), row[type], {main, !stopsPropagation(row[type])}, {}};
    const auto found = memberships.find(member.company);
    if (found != memberships.end() && found->second.size() > 1) {
      member.sharing = question.of(member.company, year);
      std::copy_if(found->second.begin(), found->second.end(),
                   std::back_inserter(member.otherGroups),
                   [main](std::int32_t other) { return other != main; });
    }
    const bool first = row[principal].toInt32() == 1;
    group.members.insert(first ? group.members.begin() : group.members.end(), std::move(member));
  }
  return group;
}

/// The groups of these main companies in one year.
GroupYear readYear(const std::shared_ptr<Connection>& connection, std::int32_t company,
                   std::int32_t year, const std::set<std::int32_t>& mains,
                   const Memberships& memberships) {
  GroupYear result{year, {}};
  SharingQuestion question{connection};
  for (const std::int32_t main : mains) {
    const auto found = memberships.find(main);
    if (found != memberships.end() && found->second.contains(main)) {
      result.groups.push_back(readGroup(connection, main, year, memberships, question));
    }
  }
  if (memberships.contains(company)) {
    const std::int32_t chosen = question.of(company, year).group;
    const auto rank = [&](const Group& group) {
      return group.main == chosen ? 0 : (isIn(group, company) ? 1 : 2);
    };
    std::stable_sort(
        result.groups.begin(), result.groups.end(),
        [&](const Group& left, const Group& right) { return rank(left) < rank(right); });
  }
  return result;
}

}  // namespace

bool stopsPropagation(const Variant& accountingType) {
  return !accountingType.isNull() && !accountingType.isEmpty() && accountingType.toInt64() == 1;
}

bool isIn(const Group& group, std::int32_t company) {
  return std::any_of(group.members.begin(), group.members.end(),
                     [company](const GroupMember& member) { return member.company == company; });
}

GroupView readGroups(const std::shared_ptr<Connection>& connection, std::int32_t company,
                     const YearRange& years) {
  GroupView view{company, readCompanyNames(*connection), {}, {}};
  requireCompany(company, view.names);
  const std::vector<Link> links = readLinks(*connection);
  std::set<std::int32_t> linkedYears;
  std::set<std::int32_t> mains;
  for (const Link& link : links) {
    if (link.main == company || link.linked == company) {
      linkedYears.insert(link.year);
      if (link.year >= years.first && link.year <= years.last) {
        mains.insert(link.main);
      }
    }
  }
  view.linkedYears.assign(linkedYears.begin(), linkedYears.end());
  for (std::int32_t year = years.first; year <= years.last; ++year) {
    view.years.push_back(readYear(connection, company, year, mains, membershipsOf(links, year)));
  }
  return view;
}

}  // namespace azcoll::views
