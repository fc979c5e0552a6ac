#pragma once

#include <string>
#include <vector>

#include "activity_fixture.h"

namespace azcoll::test {

/// A row of the configuration that is copied.
struct Configured {
  std::int32_t id = 1;
  std::int16_t anno = 2022;
  std::int32_t ditta = 20;
  std::int32_t dittaColl = 20;
  std::int32_t codice = 2001;
  std::int16_t indComLettInt = 0;
  std::int16_t indTipoCont = 0;
  std::int32_t attivitaPrincipale = 0;
};

/// The company 20 copies 2022 onto 2024. Nothing stands in the way, both years have no rows, and
/// the target year has its main activity, until a test says otherwise.
class YearDuplicationTest : public ActivityTest {
 protected:
  YearDuplicationTest() {
    service.CPInput->AnnoSolareDaDuplicare = std::int16_t{2022};
    // The count of the rows that the deletion for a linked company means.
    connection->answerPrefix(" SELECT COUNT(", rowSet({"NUM"}, {1}));
    connection->answerPrefix("SELECT COUNT(", rowSet({"NUM"}, {1}));
    ownRows(0);
    links(0);
    mainActivities(1);
    remembered({});
    configuration({});
  }

  // Statements, their lines parted by a line feed.
  static std::string joined(const Lines& lines) {
    std::string text;
    for (const std::string& line : lines) {
      text += (text.empty() ? "" : "\n") + line;
    }
    return text;
  }
  static Lines ownRowsLines() {
    return {" SELECT COUNT(1) AS NUM",     " FROM   CG86_AZIENDECOLL WITH(NOLOCK)",
            " WHERE  CG86_INDTIPO = 0",    "   AND  CG86_DITTACOLL_CG18 = 20",
            "   AND  CG86_ANNOIVA = 2024", "   AND  CG86_DITTA_CG18 = CG86_DITTACOLL_CG18"};
  }
  static Lines linksLines() {
    return {" SELECT COUNT(1) AS NUM",
            " FROM   CG86_AZIENDECOLL WITH(NOLOCK)",
            " WHERE  CG86_INDTIPO = 0",
            "   AND ( CG86_DITTACOLL_CG18 = 20",
            "         OR CG86_DITTA_CG18 = 20)",
            "   AND CG86_ANNOIVA = 2024",
            "   AND CG86_DITTA_CG18 <> CG86_DITTACOLL_CG18"};
  }
  static Lines ofTheYear(const Lines& head) {
    Lines lines = head;
    for (const char* const line : {" FROM   CG86_AZIENDECOLL", " WHERE  CG86_INDTIPO = 0",
                                   "   AND  CG86_ANNOIVA = 2024", "   AND  CG86_DITTA_CG18 = 20"}) {
      lines.emplace_back(line);
    }
    return lines;
  }
  static Lines with(Lines lines, const std::string& last) {
    lines.push_back(last);
    return lines;
  }
  static Lines rememberedLines() {
    return with(ofTheYear({" SELECT *"}), "   AND  CG86_FLGATTIVITAPRINC = 1");
  }
  static Lines countLines() {
    return with(ofTheYear({" SELECT COUNT(1)"}), "   AND  CG86_FLGATTIVITAPRINC = 1");
  }
  static Lines clearLines() {
    return ofTheYear({" UPDATE CG86_AZIENDECOLL", "    SET CG86_FLGATTIVITAPRINC = 0"});
  }
  static Lines restoreLines(const std::string& code) {
    return with(ofTheYear({" UPDATE CG86_AZIENDECOLL", "    SET CG86_FLGATTIVITAPRINC = 1"}),
                "   AND  CG86_CODATTIVITA = " + code);
  }

  // Script.
  /// Answers a statement whichever way its lines are parted.
  void answerLines(const Lines& lines, const ResultSet& rows) {
    for (const std::string separator : {"\n", "\r", "\r\n"}) {
      std::string text;
      for (const std::string& line : lines) {
        text += (text.empty() ? "" : separator) + line;
      }
      connection->answer(text, rows);
    }
  }
  void ownRows(std::int32_t number) { answerLines(ownRowsLines(), rowSet({"NUM"}, {number})); }
  void links(std::int32_t number) { answerLines(linksLines(), rowSet({"NUM"}, {number})); }
  /// Main activities of the target year, as the fix-up counts them.
  void mainActivities(std::int32_t number) { answerLines(countLines(), rowSet({""}, {number})); }
  /// Codes of the target year's main activities before the copy.
  void remembered(const std::vector<Variant>& codes) {
    answerLines(rememberedLines(), rowSet({"CG86_CODATTIVITA"}, codes, "CG86_AZIENDECOLL"));
  }
  /// Rows of both years, as the activity query gives them each time.
  void configuration(const std::vector<Configured>& rows) {
    ResultSet set = rowSet({"ATTIVITAPRINCIPALE", "CG86_IDATTIVITA", "CG86_INDTIPO", "CG86_ANNOIVA",
                            "CG86_INDTIPOCONT", "CG86_DITTA_CG18", "CG86_DITTACOLL_CG18",
                            "CG86_CODATTIVITA", "CG86_INDCOMLETTINT", "CG96_DESCRATTIVITA"},
                           {}, "CG86_AZIENDECOLL");
    std::vector<ColumnInfo> columns = set.columns.all();
    columns.front() = ColumnInfo{.name = "ATTIVITAPRINCIPALE"};
    columns[1].isKey = true;
    columns[1].isIdentity = true;
    columns.back().baseTable = "CG96_ANAGATTIVITA";
    set.columns = std::move(columns);
    for (const Configured& row : rows) {
      for (const Variant& value :
           {Variant{row.attivitaPrincipale}, Variant{row.id}, Variant{std::int16_t{0}},
            Variant{row.anno}, Variant{row.indTipoCont}, Variant{row.ditta}, Variant{row.dittaColl},
            Variant{row.codice}, Variant{row.indComLettInt},
            Variant{"Attività di prova " + std::to_string(row.codice)}}) {
        set.values.push_back(value);
      }
    }
    connection->answerPrefix(" SELECT CASE WHEN CG86_AZIENDECOLL.CG86_CODATTIVITA", set);
  }

  // Record.
  /// The transcript with every kind of line break as a line feed.
  [[nodiscard]] Lines steps() const {
    Lines found = transcript();
    for (std::string& line : found) {
      for (std::size_t at = line.find("\r\n"); at != std::string::npos; at = line.find("\r\n")) {
        line.erase(at, 1);
      }
      for (char& character : line) {
        character = character == '\r' ? '\n' : character;
      }
    }
    return found;
  }
  [[nodiscard]] Lines stepsLike(std::string_view prefix) const {
    Lines found;
    for (const std::string& line : steps()) {
      if (line.starts_with(prefix)) {
        found.push_back(line);
      }
    }
    return found;
  }
  void expectDone() const {
    expectState(0);
    EXPECT_EQ(count("BeginTrans"), 1U);
    EXPECT_EQ(count("CommitTrans"), 1U);
    EXPECT_EQ(count("RollbackTrans"), 0U);
    EXPECT_EQ(transcript().back(), "CommitTrans");
  }
};

}  // namespace azcoll::test
