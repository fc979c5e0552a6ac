#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "data/tracing.h"
#include "scenarios/company_database.h"

namespace azcoll::test {

/// The example database seen by the methods on activities. Every operation that reaches it is kept
/// in `operations`.
class ActivityDatabase : public CompanyDatabase {
 protected:
  std::vector<TraceEntry> operations;
  /// A statement that holds this text is reported as failed ("guasto") after it ran; "" for none.
  std::string failOn;

  ActivityDatabase() {
    service.CPInput->Connessione =
        std::make_shared<ConnessioneTracciata>(connection, [this](const TraceEntry& entry) {
          operations.push_back(entry);
          if (!failOn.empty() && entry.sql.find(failOn) != std::string::npos) {
            throw Error("guasto");
          }
        });
  }

  CLSCO_INPUTAZCOLL& in() { return *service.CPInput; }
  CLSCO_OUTPUTAZCOLL& out() { return *service.CPOutput; }

  void ask(int company, const Variant& year) {
    in().Pvar_Ditta = company;
    in().AnnoSolare = year;
  }

  void expectState(int state, std::string_view message = "") {
    EXPECT_TRUE(sameValue(service.Stato, state)) << join(service.Stato, " ", service.Errore);
    if (!message.empty()) {
      EXPECT_EQ(join(service.Errore), message);
    }
  }
  void expectFailure(std::string_view suffix) {
    expectState(99);
    EXPECT_TRUE(join(service.Errore).ends_with(suffix)) << join(service.Errore);
  }

  /// Rows of links and activities of a year as "main|company|code|main activity", in order.
  Lines year(int year) {
    return rows(
        join("SELECT CG86_DITTA_CG18, CG86_DITTACOLL_CG18, CG86_CODATTIVITA,"
             " CG86_FLGATTIVITAPRINC FROM CG86_AZIENDECOLL WHERE CG86_INDTIPO = 0"
             " AND CG86_ANNOIVA = ",
             year,
             " ORDER BY CG86_DITTA_CG18, CG86_DITTACOLL_CG18, CG86_CODATTIVITA,"
             " CG86_IDATTIVITA"));
  }

  /// Every row of the tables that the methods on activities can touch, in order.
  Lines activityPicture() {
    Lines all;
    for (const char* table : {"CG86_AZIENDECOLL", "CG96_ANAGATTIVITA", "CG25_ANADITTAGEST",
                              "CG18_ANADITTABASE", "CG30_ANADITTADATE"}) {
      for (const std::string& line : rows(join("SELECT * FROM ", table))) {
        all.push_back(join(table, "|", line));
      }
    }
    std::ranges::sort(all);
    return all;
  }

  /// Values of `column` in every row of a recordset.
  static Lines column(Recordset& recordset, std::string_view column) {
    Lines values;
    if (recordset.recordCount() != 0) {
      recordset.moveFirst();
    }
    for (; !recordset.atEnd(); recordset.moveNext()) {
      values.push_back(join(recordset.fields().item(column).value()));
    }
    return values;
  }

  /// Statements so far that begin with `start`.
  Lines statements(std::string_view start) {
    Lines found;
    for (const TraceEntry& entry : operations) {
      if (entry.sql.starts_with(start)) {
        found.push_back(entry.sql);
      }
    }
    return found;
  }
  std::size_t count(std::string_view operation) {
    return static_cast<std::size_t>(std::ranges::count_if(
        operations, [&](const TraceEntry& entry) { return entry.operation == operation; }));
  }
};

}  // namespace azcoll::test
