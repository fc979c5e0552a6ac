// Whatever the groups, years and activities are: a year copied onto another one reads as the
// source.

#include <algorithm>
#include <map>

#include "scenarios/company_database.h"
#include "scenarios/random_activities.h"
#include "scenarios/year_copy_model.h"

namespace azcoll::test {
namespace {

constexpr std::uint32_t kSeed = 20'240'229;
#ifdef AZCOLL_TEST_ADO
constexpr std::uint32_t kCases = 50;  // every statement crosses the automation interfaces
#else
constexpr std::uint32_t kCases = 500;
#endif

/// What is compared before and after a call.
struct State {
  std::vector<ActivityRow> rows;
  Registry registry;
  Lines registryRows;
  Lines others;
};

Lines sorted(Lines lines) {
  std::ranges::sort(lines);
  return lines;
}

Lines contents(const std::vector<ActivityRow>& rows) {
  Lines lines;
  for (const ActivityRow& row : rows) {
    lines.push_back(contentOf(row));
  }
  return sorted(lines);
}

/// Rows with what tells each from every other one.
Lines identities(const std::vector<ActivityRow>& rows) {
  Lines lines;
  for (const ActivityRow& row : rows) {
    lines.push_back(join(row.id, ": ", contentOf(row)));
  }
  return sorted(lines);
}

std::string shown(const std::optional<int>& value) { return value ? std::to_string(*value) : "-"; }

/// A database of six companies whose activities are drawn anew for every case.
class ActivityDuplicationProperty : public ::testing::Test {
 protected:
  std::shared_ptr<Connection> connection = openSchema();
  CLSCO_AZIENDECOLL service;
  std::size_t copied = 0;   ///< cases that were not refused
  std::size_t carried = 0;  ///< rows that were copied in them

  ActivityDuplicationProperty() {
    for (const std::string& statement : RandomActivities::companies()) {
      run(statement);
    }
    service.CPInput->Connessione = connection;
  }

  void run(const std::string& sql) {
    std::int64_t affected = 0;
    connection->execute(sql, affected, CommandOption::Text);
  }
  Lines rows(const std::string& sql) { return rowsOf(*connection, sql); }

  void fill(const std::vector<std::string>& statements) {
    connection->beginTrans();
    for (const std::string& statement : statements) {
      run(statement);
    }
    connection->commitTrans();
  }

  State state() {
    State now{.rows = activityRows(*connection), .registry = {}, .registryRows = {}, .others = {}};
    for (const std::string& line :
         rows("SELECT CG96_DITTA_CG18, CG96_CODATTIVITA FROM CG96_ANAGATTIVITA")) {
      const std::size_t bar = line.find('|');
      now.registry.emplace(std::stoi(line.substr(0, bar)), std::stoi(line.substr(bar + 1)));
    }
    now.registryRows = pictureOf(*connection, std::vector{"CG96_ANAGATTIVITA"});
    now.others = pictureOf(*connection, std::vector{"CG18_ANADITTABASE", "CG19_ANADITTAESER",
                                                    "CG25_ANADITTAGEST", "CG30_ANADITTADATE"});
    return now;
  }

  void duplicate(const YearCopy& copy) {
    CLSCO_INPUTAZCOLL& in = *service.CPInput;
    in.Pvar_Ditta = copy.company;
    in.AnnoSolare = copy.to;
    in.AnnoSolareDaDuplicare = copy.from;
    in.IndProvenienzaMultiAziende = copy.overSeveral;
    in.CodiceAttività = copy.code ? Variant{*copy.code} : Variant{};
    in.IdAttività = copy.id ? Variant{*copy.id} : Variant{};
    service.DuplicaAttività();
  }

  /// Whether reading the activities of the year fills it when it is empty: that adds rows of its
  /// own.
  bool readingFills(const YearCopy& copy) {
    return rows(join("SELECT 1 FROM CG25_ANADITTAGEST WHERE CG25_FLGIVAQUATER <> 0 AND"
                     " CG25_DITTA_CG18 = ",
                     copy.company))
               .empty() &&
           !rows(join("SELECT 1 FROM CG19_ANADITTAESER WHERE CG19_DITTA_CG18 = ", copy.company))
                .empty();
  }

  /// What the activity query shows of the company's configuration in a year, descriptions included,
  /// without keys and year.
  Lines asRead(const YearCopy& copy, int year) {
    CLSCO_AZIENDECOLL reader;
    reader.CPInput->Pvar_Ditta = copy.company;
    reader.CPInput->AnnoSolare = year;
    reader.StringaSQLAttivitaCollegate();
    std::int64_t affected = 0;
    const std::shared_ptr<Recordset> found = connection->execute(
        reader.CPOutput->GstrSQL_AttivitaCollegate, affected, CommandOption::Text);
    Lines lines;
    for (; !found->atEnd(); found->moveNext()) {
      Fields& fields = found->fields();
      const int main = fields.item("CG86_DITTA_CG18").value().toInt32();
      const int linked = fields.item("CG86_DITTACOLL_CG18").value().toInt32();
      const Variant code = fields.item("CG86_CODATTIVITA").value();
      if (main != copy.company || (main != linked) != copy.overSeveral ||
          (copy.code && code.toInt32() != *copy.code)) {
        continue;
      }
      std::string line;
      for (std::size_t index = 0; index < fields.count(); ++index) {
        const Field& field = fields.item(index);
        const std::string name = field.name();
        const Variant value = field.value();
        if (name != "ATTIVITAPRINCIPALE" && name != "CG86_IDATTIVITA" && name != "CG86_ANNOIVA" &&
            name != "CG86_FLGATTIVITAPRINC") {
          line += join(value.isNull() ? "NULL" : value.text(), "|");
        }
      }
      lines.push_back(line);
    }
    return sorted(lines);
  }

  void expectCase(const YearCopy& copy);
  static void expectRows(const CopiedYear& expected, const State& before, const State& after,
                         const YearCopy& copy);
  static void expectFilledRows(const CopiedYear& expected, const State& before, const State& after,
                               const YearCopy& copy);
  static void expectMainActivity(const CopiedYear& expected, const State& after,
                                 const YearCopy& copy, bool fills);
  void expectSecondRunTheSame(const State& first, const YearCopy& copy);
};

/// Rows of the state before that are still there, and those that came.
std::pair<std::vector<ActivityRow>, std::vector<ActivityRow>> parted(const State& before,
                                                                     const State& after) {
  std::set<int> old;
  for (const ActivityRow& row : before.rows) {
    old.insert(row.id);
  }
  std::pair<std::vector<ActivityRow>, std::vector<ActivityRow>> result;
  for (const ActivityRow& row : after.rows) {
    (old.contains(row.id) ? result.first : result.second).push_back(row);
  }
  return result;
}

/// Every row that has to stay is there with its values, and nothing is new but the copies.
void ActivityDuplicationProperty::expectRows(const CopiedYear& expected, const State& before,
                                             const State& after, const YearCopy& copy) {
  const auto [kept, come] = parted(before, after);
  EXPECT_EQ(identities(kept), identities(expected.kept));
  EXPECT_EQ(contents(come), contents(expected.copies));
  EXPECT_EQ(after.registryRows, before.registryRows);
  // Marks of other companies and years stay as they are.
  for (const ActivityRow& row : kept) {
    const auto same = std::ranges::find(before.rows, row.id, &ActivityRow::id);
    if (!copy.isTarget(row) || copy.from == copy.to) {
      EXPECT_EQ(row.flagged, same->flagged) << contentOf(row);
    }
  }
}

/// The same where reading fills an empty year: rows may have come to the target year, too.
void ActivityDuplicationProperty::expectFilledRows(const CopiedYear& expected, const State& before,
                                                   const State& after, const YearCopy& copy) {
  const auto [kept, come] = parted(before, after);
  Lines missing = difference(contents(expected.copies), contents(come)).gone;
  EXPECT_EQ(missing, Lines{});
  for (const ActivityRow& row : come) {
    EXPECT_TRUE(row.kind == 0 && row.year == copy.to) << contentOf(row);
  }
  const Difference change = difference(identities(expected.kept), identities(kept));
  EXPECT_EQ(change.come, Lines{});
  // A filled year can let own activities of linked companies give way that had no link before.
  for (const ActivityRow& row : expected.kept) {
    if (std::ranges::find(kept, row.id, &ActivityRow::id) == kept.end()) {
      EXPECT_TRUE(!row.isLink() && row.main != copy.company && row.kind == 0 &&
                  (row.year == copy.from || row.year == copy.to))
          << contentOf(row);
    }
  }
  EXPECT_EQ(difference(before.registryRows, after.registryRows).gone, Lines{});
}

/// The source's main activities, else those of the target year before, else the lowest code.
void ActivityDuplicationProperty::expectMainActivity(const CopiedYear& expected, const State& after,
                                                     const YearCopy& copy, bool fills) {
  std::vector<ActivityRow> target;
  std::vector<ActivityRow> marked;
  for (const ActivityRow& row : after.rows) {
    if (copy.isTarget(row)) {
      target.push_back(row);
      if (row.flagged) {
        marked.push_back(row);
      }
    }
  }
  std::vector<ActivityRow> source;
  std::ranges::copy_if(expected.copies, std::back_inserter(source), &ActivityRow::flagged);
  EXPECT_EQ(marked.empty(), target.empty());
  if (fills) {
    EXPECT_EQ(difference(contents(source), contents(marked)).gone, Lines{});
    return;
  }
  if (!source.empty()) {
    EXPECT_EQ(contents(marked), contents(source));
    return;
  }
  std::vector<ActivityRow> remembered;
  std::ranges::copy_if(target, std::back_inserter(remembered), [&](const ActivityRow& row) {
    return row.code && expected.remembered.contains(*row.code);
  });
  if (!remembered.empty()) {
    EXPECT_EQ(identities(marked), identities(remembered));
    return;
  }
  if (!target.empty()) {
    // A link without code comes before every code.
    const auto lowest = std::ranges::min_element(target, {}, &ActivityRow::code);
    ASSERT_EQ(marked.size(), 1U);
    EXPECT_EQ(marked.front().code, lowest->code);
  }
}

/// Once more: every row is replaced by its like.
void ActivityDuplicationProperty::expectSecondRunTheSame(const State& first, const YearCopy& copy) {
  duplicate(copy);
  EXPECT_EQ(join(service.Stato), "0") << join(service.Errore);
  const State second = state();
  EXPECT_EQ(contents(second.rows), contents(first.rows));
  EXPECT_EQ(second.registryRows, first.registryRows);
  const auto markedCodes = [&](const State& state) {
    std::set<std::optional<int>> codes;
    for (const ActivityRow& row : state.rows) {
      if (copy.isTarget(row) && row.flagged) {
        codes.insert(row.code);
      }
    }
    return codes;
  };
  EXPECT_EQ(markedCodes(second), markedCodes(first));
}

void ActivityDuplicationProperty::expectCase(const YearCopy& copy) {
  const State before = state();
  const CopiedYear expected = copiedYear(before.rows, before.registry, copy);
  const bool fills = readingFills(copy);
  const Lines source = asRead(copy, copy.from);
  duplicate(copy);
  EXPECT_FALSE(endOpenTransaction(*connection));
  ASSERT_EQ(join(service.Stato), expected.refused ? "1" : "0") << join(service.Errore);
  const State after = state();
  EXPECT_EQ(after.others, before.others);
  if (expected.refused) {
    EXPECT_EQ(identities(after.rows), identities(before.rows));
    EXPECT_EQ(after.registryRows, before.registryRows);
    return;
  }
  ++copied;
  carried += expected.copies.size();
  if (fills) {
    expectFilledRows(expected, before, after, copy);
  } else {
    expectRows(expected, before, after, copy);
  }
  if (copy.from != copy.to) {
    expectMainActivity(expected, after, copy, fills);
  }
  if (!fills && !copy.id) {
    EXPECT_EQ(asRead(copy, copy.to), source);
    expectSecondRunTheSame(after, copy);
  }
}

TEST_F(ActivityDuplicationProperty, TheTargetYearReadsAsTheSourceAndNothingElseChanges) {
  const std::uint32_t cases = serverConnectionString().empty() ? kCases : 16;
  for (std::uint32_t number = 0; number < cases; ++number) {
    RandomActivities random{kSeed + number};
    fill(random.statements());
    const YearCopy copy = random.call(activityRows(*connection));
    SCOPED_TRACE(join("seed ", kSeed + number, ": company ", copy.company, " from ", copy.from,
                      " to ", copy.to, copy.overSeveral ? ", links" : ", own activities", ", code ",
                      shown(copy.code), ", identity ", shown(copy.id)));
    expectCase(copy);
    if (HasFatalFailure() || HasNonfatalFailure()) {
      return;  // the first case that fails tells enough
    }
  }
  RecordProperty("copied", static_cast<int>(copied));
  RecordProperty("rows", static_cast<int>(carried));
  // Not every drawn call may be refused, or have nothing to copy.
  EXPECT_GT(copied, cases / 4);
  EXPECT_GT(carried, cases / 4);
}

}  // namespace
}  // namespace azcoll::test
