#pragma once

#include <optional>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include "data/connection.h"

/// What the duplication of a year has to leave behind, worked out from the rows themselves.
namespace azcoll::test {

/// A row of CG86_AZIENDECOLL.
struct ActivityRow {
  int id = 0;
  int kind = 0;
  int year = 0;
  std::optional<int> accounting;  ///< CG86_INDTIPOCONT
  int main = 0;
  int linked = 0;
  std::optional<int> code;
  bool flagged = false;  ///< the main activity
  int letters = 0;       ///< CG86_INDCOMLETTINT, which the copying statement leaves out
  std::string settings;  ///< every other column, as text

  [[nodiscard]] bool isLink() const { return main != linked; }
};

/// All rows of CG86_AZIENDECOLL, by identity.
[[nodiscard]] std::vector<ActivityRow> activityRows(Connection& connection);

/// A row as text without identity and main-activity mark, to be compared with others.
[[nodiscard]] std::string contentOf(const ActivityRow& row);

/// A call of DuplicaAttività.
struct YearCopy {
  int company = 0;
  int from = 0;
  int to = 0;
  bool overSeveral = false;
  std::optional<int> code{};
  std::optional<int> id{};

  [[nodiscard]] bool selects(const ActivityRow& row) const {
    return (!code || row.code == code) && (!id || row.id == *id);
  }
  [[nodiscard]] bool isTarget(const ActivityRow& row) const {
    return row.kind == 0 && row.year == to && row.main == company;
  }
  [[nodiscard]] bool isSource(const ActivityRow& row) const {
    return row.kind == 0 && row.year == from && row.main == company &&
           row.isLink() == overSeveral && selects(row);
  }
};

/// Company and activity code of every entry of the registry.
using Registry = std::set<std::pair<int, int>>;

/// What a duplication leaves, when no reading adds activities of its own.
struct CopiedYear {
  bool refused = false;
  std::vector<ActivityRow> kept;    ///< with their identities; marks of the target year cleared
  std::vector<ActivityRow> copies;  ///< of the target year; their identities are the source's
  std::set<int> remembered;         ///< codes of the target year's main activities before
  std::set<int> yielding;  ///< linked companies whose own activities give way, in both years
};

[[nodiscard]] CopiedYear copiedYear(const std::vector<ActivityRow>& rows, const Registry& registry,
                                    const YearCopy& copy);

}  // namespace azcoll::test
