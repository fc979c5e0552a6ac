#pragma once

#include <cstddef>
#include <cstdint>
#include <gtest/gtest.h>
#include <map>
#include <memory>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "service_fixture.h"

namespace azcoll::test {

/// One line of a statement and the case in which it stands there. In `when` a capital letter is a
/// flag that must be on, a small letter one that must be off; "" always holds. Names in braces in
/// `text` are values of the case.
struct TextLine {
  std::string when;
  std::string text;
};
using Text = std::vector<TextLine>;

/// A text that ends with it ends with a line break.
inline const Text kLineBreak{{"", ""}};

/// How the question for the activities that are still to be inserted begins.
inline const std::string kCandidates =
    " SELECT *\r\n FROM   CG86_AZIENDECOLL WITH(NOLOCK)\r\n WHERE ";

/// The flags that are on and the values that stand in a statement.
struct TextCase {
  std::string on{};
  std::map<std::string, std::string> values{};

  [[nodiscard]] bool has(char flag) const { return on.find(flag) != std::string::npos; }
  [[nodiscard]] bool holds(std::string_view when) const {
    for (const char letter : when) {
      const bool wanted = letter >= 'A' && letter <= 'Z';
      const char flag = wanted ? letter : static_cast<char>(letter - 'a' + 'A');
      if (has(flag) != wanted) {
        return false;
      }
    }
    return true;
  }
  [[nodiscard]] std::string filled(std::string text) const {
    for (const auto& [name, value] : values) {
      const std::string mark = "{" + name + "}";
      for (std::size_t at = text.find(mark); at != std::string::npos;
           at = text.find(mark, at + value.size())) {
        text.replace(at, mark.size(), value);
      }
    }
    return text;
  }
};

/// The lines that stand in `which`, joined with CR LF. An empty last line gives a text that ends
/// with a line break.
[[nodiscard]] inline std::string composed(const Text& lines, const TextCase& which) {
  std::string text;
  bool first = true;
  for (const TextLine& line : lines) {
    if (which.holds(line.when)) {
      text += (first ? "" : "\r\n") + which.filled(line.text);
      first = false;
    }
  }
  return text;
}

/// Lines that always stand there.
[[nodiscard]] inline std::string crlf(const Lines& lines) {
  std::string text;
  for (std::size_t index = 0; index < lines.size(); ++index) {
    text += (index == 0 ? "" : "\r\n") + lines[index];
  }
  return text;
}

/// `head` followed by `tail`.
[[nodiscard]] inline Text operator+(Text head, const Text& tail) {
  head.insert(head.end(), tail.begin(), tail.end());
  return head;
}

/// Every run of blanks and line breaks as one blank; none at the ends, behind "(" and before ")"
/// and
/// ",", always one behind ",": for the texts whose layout is free.
[[nodiscard]] inline std::string squeezed(std::string_view text) {
  std::string words;
  bool gap = false;
  for (const char character : text) {
    if (character == ' ' || character == '\r' || character == '\n') {
      gap = true;
      continue;
    }
    const bool glued = words.empty() || words.back() == '(' || character == ')' || character == ',';
    gap = gap || (!words.empty() && words.back() == ',');
    words += gap && !glued ? " " : "";
    words += character;
    gap = false;
  }
  return words;
}

[[nodiscard]] inline Lines squeezed(Lines lines) {
  for (std::string& line : lines) {
    line = squeezed(line);
  }
  return lines;
}

/// Expects every part in `text`, each behind the one before it.
inline void expectInOrder(const std::string& text, const Lines& parts) {
  std::size_t from = 0;
  for (const std::string& part : parts) {
    const std::size_t at = text.find(part, from);
    ASSERT_NE(at, std::string::npos) << "missing or out of order: " << part << "\nin: " << text;
    from = at + part.size();
  }
}

/// "target_NAME = source_NAME" for every name, as one list.
[[nodiscard]] inline std::string assignments(const Lines& names, const std::string& target,
                                             const std::string& source) {
  std::string list;
  for (const std::string& name : names) {
    list += (list.empty() ? "" : ", ") + target + "_" + name + " = " + source + "_" + name;
  }
  return list;
}

/// VAT settings that an activity row and the company both hold.
inline const Lines kSettings{"INDBENIUS",        "PERCFORIVA",   "PERCDETRIVA",    "PERCDETRRED",
                             "INDPRORATA",       "PERCPRORATA",  "PERCFINEANNO",   "INDPLAFOND",
                             "DATAINPLAFOND",    "INDTIPODEN",   "FLGGESBENZ",     "INDREGDEN",
                             "INDREGAUT",        "INDCALCIVA",   "FLGR38BIS",      "INDVENT",
                             "FLGGRANDEDISTRIB", "CODICE_CG28",  "ALQCOR1_CG28",   "ALQCOR2_CG28",
                             "ALQCOR3_CG28",     "ALQCOR4_CG28", "INDIVAACQAGRIC", "FLGIVAPER"};

/// Columns of an activity row behind its activity code, in the order in which one is inserted.
inline const Lines kOtherRowColumns{
    "INDBENIUS",     "PERCFORIVA",       "PERCDETRIVA",      "PERCDETRRED",    "INDPRORATA",
    "PERCPRORATA",   "PERCFINEANNO",     "INDPLAFOND",       "DATAINPLAFOND",  "INDTIPODEN",
    "FLGGESBENZ",    "INDREGDEN",        "INDREGAUT",        "INDCALCIVA",     "FLGR38BIS",
    "INDVENT",       "FLGGRANDEDISTRIB", "CODICE_CG28",      "ALQCOR1_CG28",   "ALQCOR2_CG28",
    "ALQCOR3_CG28",  "ALQCOR4_CG28",     "FLGATTIVITAPRINC", "INDIVAACQAGRIC", "FLGIVAPER",
    "INDCOMLETTINT", "INDNOITAEXP",      "DATAININOITAEXP"};

/// `names` with the table's prefix, parted by ", ".
[[nodiscard]] inline std::string columnList(const Lines& names, const std::string& prefix) {
  std::string list;
  for (const std::string& name : names) {
    list += (list.empty() ? "" : ", ") + prefix + "_" + name;
  }
  return list;
}

/// Register print dates that the registry and the company both hold.
inline const Lines kDates{"DATASTPREGACQ",     "DATASTPREGVEN",     "DATASTPREGCOR",
                          "DATASTPREGRIE",     "DATASTPLIQIVA",     "ANNOLIQ",
                          "DATASTPPLAFON",     "DATASTPREGACQGLOB", "DATASTPREGVENGLOB",
                          "DATASTPREGUNICANAL"};

/// The common condition on activity rows; every line ends with a line break, the last one too.
/// Flags: C company, Y year above 0, A activity code, I identity, P main activity. Values: p the
/// column prefix, ditta, anno, dup, codice, id.
inline const Text kWhere{
    {"", " WHERE {p}CG86_INDTIPO = 0"},
    {"C", " AND {p}CG86_DITTACOLL_CG18 = {ditta}"},
    {"Y", " AND {p}CG86_ANNOIVA IN({anno}, {dup})"},
    {"A", " AND {p}CG86_CODATTIVITA = {codice}"},
    {"I", " AND {p}CG86_IDATTIVITA = {id}"},
    {"P", " AND {p}CG86_FLGATTIVITAPRINC = 1"},
};

/// The main-activity expression over the table called `name`, from its first line on; the first
/// line is put behind `before`, the last one stays open.
[[nodiscard]] inline Lines mainActivity(const std::string& before, const std::string& name) {
  return {before + "CASE WHEN " + name + ".CG86_CODATTIVITA = (SELECT TOP 1 A.CG86_CODATTIVITA",
          "                                           FROM   CG86_AZIENDECOLL AS A WITH(NOLOCK)",
          "                                           WHERE  A.CG86_INDTIPO = " + name +
              ".CG86_INDTIPO",
          "                                             AND  A.CG86_ANNOIVA = " + name +
              ".CG86_ANNOIVA",
          "                                             AND  A.CG86_DITTACOLL_CG18 = " + name +
              ".CG86_DITTACOLL_CG18",
          "                                             AND EXISTS (SELECT 1",
          "                                                         FROM   CG86_AZIENDECOLL AS B "
          "WITH(NOLOCK)",
          "                                                         WHERE  B.CG86_INDTIPO = "
          "A.CG86_INDTIPO",
          "                                                           AND  B.CG86_ANNOIVA = "
          "A.CG86_ANNOIVA",
          "                                                           AND  B.CG86_DITTA_CG18 = "
          "A.CG86_DITTACOLL_CG18",
          "                                                         )",
          "                                           ORDER BY A.CG86_FLGATTIVITAPRINC DESC, "
          "A.CG86_CODATTIVITA)",
          "             THEN 1",
          "             ELSE 0",
          "        END"};
}

/// What a test needs of an activity row.
struct Activity {
  std::int32_t id = 1;
  std::int16_t anno = 2024;
  std::int32_t ditta = 20;
  std::int32_t dittaColl = 20;
  Variant codice = std::int32_t{2001};
  std::int16_t principale = 0;
};

/// A service whose company 20 works on the year 2024. Its regime is 1 until a test says otherwise,
/// so that nothing is seeded before a read.
class ActivityTest : public ServiceTest {
 protected:
  ActivityTest() { regime(std::int16_t{1}); }

  /// `CG25_FLGIVAQUATER` of every company.
  void regime(const Variant& flag) {
    connection->answerPrefix(" SELECT CG25_FLGIVAQUATER", rowSet({"CG25_FLGIVAQUATER"}, {flag}));
  }
  /// Financial years of the company that touch the year.
  void financialYears(std::int32_t number) {
    connection->answerPrefix(" SELECT COUNT(1)\r FROM   CG19_ANADITTAESER", rowSet({""}, {number}));
  }

  static ResultSet activities(const std::vector<Activity>& rows) {
    ResultSet set = rowSet(
        {"CG86_IDATTIVITA", "CG86_INDTIPO", "CG86_ANNOIVA", "CG86_INDTIPOCONT", "CG86_DITTA_CG18",
         "CG86_DITTACOLL_CG18", "CG86_CODATTIVITA", "CG86_FLGATTIVITAPRINC", "CG96_DESCRATTIVITA"},
        {}, "CG86_AZIENDECOLL");
    for (const Activity& row : rows) {
      const std::string name =
          row.codice.isNull() ? std::string{} : "Attività di prova " + row.codice.text();
      for (const Variant& value :
           {Variant{row.id}, Variant{std::int16_t{0}}, Variant{row.anno}, Variant{std::int16_t{2}},
            Variant{row.ditta}, Variant{row.dittaColl}, row.codice, Variant{row.principale},
            Variant{name}}) {
        set.values.push_back(value);
      }
    }
    return set;
  }

  static std::string regimeOf(const std::string& company) {
    return crlf({" SELECT CG25_FLGIVAQUATER", " FROM   CG25_ANADITTAGEST WITH(NOLOCK)",
                 " WHERE  CG25_DITTA_CG18 = " + company});
  }

  /// Every statement reached the database as command text.
  void expectTextCommands() const {
    for (const Operation& operation : named("Execute")) {
      EXPECT_EQ(operation.options, Ints{1}) << operation.sql;
    }
  }
  void expectState(int state) const {
    EXPECT_EQ(service.Stato, Variant{static_cast<std::int16_t>(state)}) << errore();
  }
  void expectRefused(const std::string& message) const {
    expectState(1);
    EXPECT_EQ(errore(), message);
  }
  void expectTrapped(const std::string& message) const {
    expectState(99);
    EXPECT_EQ(errore(), message);
  }
  void expectNoTransaction() const {
    EXPECT_EQ(count("BeginTrans"), 0U);
    EXPECT_EQ(count("CommitTrans"), 0U);
    EXPECT_EQ(count("RollbackTrans"), 0U);
  }

  /// Fills the input for a case of `kWhere`; the values of the case follow.
  TextCase give(const std::string& on) {
    CLSCO_INPUTAZCOLL& in = *service.CPInput;
    const TextCase which{on,
                         {{"p", ""},
                          {"ditta", "20"},
                          {"anno", "2024"},
                          {"dup", on.find('S') == std::string::npos ? "0" : "2022"},
                          {"codice", "2001"},
                          {"id", "77"}}};
    in.AnnoSolare = which.has('Y') ? std::int32_t{2024} : std::int32_t{-3};
    in.AnnoSolareDaDuplicare = which.has('S') ? Variant{std::int16_t{2022}} : Variant{};
    in.CodiceAttività = which.has('A') ? Variant{std::int32_t{2001}} : Variant{kNull};
    in.IdAttività = which.has('I') ? Variant{std::int32_t{77}} : Variant{""};
    in.SelezionaAttivitàPrincipale = which.has('P');
    return which;
  }

  /// Every set of the given flags, from none to all.
  static std::vector<std::string> everySet(std::string_view flags) {
    std::vector<std::string> sets;
    for (std::size_t bits = 0; bits < (std::size_t{1} << flags.size()); ++bits) {
      std::string set;
      for (std::size_t index = 0; index < flags.size(); ++index) {
        if ((bits >> index & 1U) != 0) {
          set += flags[index];
        }
      }
      sets.push_back(set);
    }
    return sets;
  }
};

}  // namespace azcoll::test
