#include <memory>
#include <string>

#include "activity_fixture.h"

namespace azcoll::test {
namespace {

const std::string kRegistryCount = " SELECT COUNT(1) AS NUM\r\n FROM   CG96_ANAGATTIVITA\r\n";
const std::string kRegistryInsert = " INSERT INTO CG96_ANAGATTIVITA(";
const std::string kAllColumns =
    "CG86_INDTIPO, CG86_ANNOIVA, CG86_INDTIPOCONT, CG86_DITTA_CG18, CG86_DITTACOLL_CG18, "
    "CG86_CODATTIVITA, " +
    columnList(kOtherRowColumns, "CG86");

/// The row made of the company's data, in any layout.
std::string defaultRow(const std::string& company, const std::string& code,
                       const std::string& year) {
  std::string settings;
  for (const std::string& name : kSettings) {
    if (name != "INDIVAACQAGRIC" && name != "FLGIVAPER") {
      settings += "CG25_" + name + " AS CG86_" + name + ", ";
    }
  }
  return "SELECT 0 AS CG86_INDTIPO, " + year +
         " AS CG86_ANNOIVA, 0 AS CG86_INDTIPOCONT, CG18_DITTA AS CG86_DITTA_CG18, CG18_DITTA AS "
         "CG86_DITTACOLL_CG18, " +
         code + " AS CG86_CODATTIVITA, " + settings +
         "1 AS CG86_FLGATTIVITAPRINC, CG25_INDIVAACQAGRIC AS CG86_INDIVAACQAGRIC, CG25_FLGIVAPER "
         "AS CG86_FLGIVAPER, 0 AS CG86_INDCOMLETTINT, 30 AS CG86_INDNOITAEXP, NULL AS "
         "CG86_DATAININOITAEXP FROM CG25_ANADITTAGEST WITH(NOLOCK) INNER JOIN CG18_ANADITTABASE "
         "WITH(NOLOCK) ON CG18_DITTA = CG25_DITTA_CG18 WHERE CG18_DITTA = " +
         company;
}

/// The copy of the row `id`, in any layout.
std::string copiedRow(const std::string& id, const std::string& year) {
  return "SELECT CG86_INDTIPO, " + year +
         ", CG86_INDTIPOCONT, CG86_DITTA_CG18, CG86_DITTACOLL_CG18, CG86_CODATTIVITA, " +
         columnList(kOtherRowColumns, "CG86") +
         " FROM CG86_AZIENDECOLL WITH(NOLOCK) WHERE CG86_IDATTIVITA = " + id;
}

class InsertionTest : public ActivityTest {
 protected:
  InsertionTest() {
    registered(1);
    service.CPOutput->CodiceAttività = "codice";
  }
  void registered(std::int32_t number) {
    connection->answerPrefix(kRegistryCount, rowSet({"NUM"}, {number}));
  }
  void candidates(const std::vector<Activity>& rows) {
    connection->answerPrefix(kCandidates, activities(rows));
  }
  const Variant& handedOut() const { return service.CPOutput->CodiceAttività; }

  static std::string registryCount(const std::string& company, const std::string& code) {
    return crlf({" SELECT COUNT(1) AS NUM", " FROM   CG96_ANAGATTIVITA",
                 " WHERE  CG96_DITTA_CG18 = " + company, "   AND  CG96_CODATTIVITA = " + code});
  }
  static void expectDefaultRow(const std::string& sql, const std::string& company,
                               const std::string& code, const std::string& year) {
    EXPECT_TRUE(sql.starts_with(
        crlf({" SELECT 0 AS CG86_INDTIPO, " + year +
                  " AS CG86_ANNOIVA, 0 AS CG86_INDTIPOCONT, CG18_DITTA AS CG86_DITTA_CG18, "
                  "CG18_DITTA AS CG86_DITTACOLL_CG18,",
              " " + code + " AS CG86_CODATTIVITA,"})))
        << sql;
    EXPECT_TRUE(sql.ends_with(crlf(
        {"1 AS CG86_FLGATTIVITAPRINC, CG25_INDIVAACQAGRIC AS CG86_INDIVAACQAGRIC, "
         "CG25_FLGIVAPER AS CG86_FLGIVAPER, 0 AS CG86_INDCOMLETTINT ",
         " , 30 AS CG86_INDNOITAEXP, NULL AS CG86_DATAININOITAEXP ",
         " FROM   CG25_ANADITTAGEST WITH(NOLOCK)", " INNER  JOIN CG18_ANADITTABASE WITH(NOLOCK)",
         "    ON  CG18_DITTA = CG25_DITTA_CG18", " WHERE  CG18_DITTA = " + company})))
        << sql;
    EXPECT_EQ(squeezed(sql), squeezed(defaultRow(company, code, year)));
  }
  static void expectDefaultBatch(const std::string& sql, const std::string& company,
                                 const std::string& code, const std::string& year) {
    EXPECT_TRUE(sql.starts_with(
        crlf({" IF NOT EXISTS(SELECT 1", "               FROM   CG86_AZIENDECOLL WITH(NOLOCK)",
              "               WHERE  CG86_INDTIPO = 0",
              "                  AND CG86_DITTA_CG18 = " + company,
              "                  AND CG86_DITTACOLL_CG18 = " + company,
              "                  AND CG86_CODATTIVITA = " + code,
              "                  AND CG86_ANNOIVA = " + year, ")", " BEGIN",
              " INSERT INTO CG86_AZIENDECOLL("})))
        << sql;
    EXPECT_TRUE(sql.ends_with("\r\n END")) << sql;
    EXPECT_EQ(squeezed(sql),
              squeezed("IF NOT EXISTS(SELECT 1 FROM CG86_AZIENDECOLL WITH(NOLOCK) WHERE "
                       "CG86_INDTIPO = 0 AND CG86_DITTA_CG18 = " +
                       company + " AND CG86_DITTACOLL_CG18 = " + company +
                       " AND CG86_CODATTIVITA = " + code + " AND CG86_ANNOIVA = " + year +
                       ") BEGIN INSERT INTO CG86_AZIENDECOLL(" + kAllColumns + ") " +
                       defaultRow(company, code, year) + " END"));
  }
  static void expectCopiedRow(const std::string& sql, const std::string& id,
                              const std::string& year) {
    EXPECT_TRUE(sql.starts_with(" SELECT CG86_INDTIPO, " + year +
                                ", CG86_INDTIPOCONT, CG86_DITTA_CG18, CG86_DITTACOLL_CG18, "
                                "CG86_CODATTIVITA, "))
        << sql;
    EXPECT_TRUE(sql.ends_with(
        crlf({"CG86_INDNOITAEXP, CG86_DATAININOITAEXP ", " FROM   CG86_AZIENDECOLL WITH(NOLOCK)",
              " WHERE  CG86_IDATTIVITA = " + id})))
        << sql;
    EXPECT_EQ(squeezed(sql), squeezed(copiedRow(id, year)));
  }
  static void expectCopyBatch(const std::string& sql, const std::string& id,
                              const std::string& year) {
    std::string guard = "IF NOT EXISTS(SELECT 1 FROM CG86_AZIENDECOLL WITH(NOLOCK)";
    std::string before = " WHERE ";
    for (const std::string column :
         {"CG86_INDTIPO", "CG86_DITTA_CG18", "CG86_DITTACOLL_CG18", "CG86_CODATTIVITA"}) {
      guard += before + column + " = (SELECT TOP 1 " + column +
               " FROM CG86_AZIENDECOLL WITH(NOLOCK) WHERE CG86_IDATTIVITA = " + id + ")";
      before = " AND ";
    }
    EXPECT_TRUE(sql.starts_with(" IF NOT EXISTS(SELECT 1\r\n")) << sql;
    EXPECT_NE(sql.find("\r\n BEGIN\r\n INSERT INTO CG86_AZIENDECOLL ("), std::string::npos) << sql;
    EXPECT_TRUE(sql.ends_with("\r\n WHERE  CG86_IDATTIVITA = " + id + "\r\n END")) << sql;
    EXPECT_EQ(squeezed(sql), squeezed(guard + " AND CG86_ANNOIVA = " + year +
                                      ") BEGIN INSERT INTO CG86_AZIENDECOLL (" + kAllColumns +
                                      ") " + copiedRow(id, year) + " END"));
  }
};

TEST_F(InsertionTest, TheCandidatesFollowTheFilters) {
  for (const std::string& flags : everySet("YSAIP")) {
    TextCase which = give(flags);
    which.on += 'C';
    connection->operations.clear();
    service.InserisciAttività();
    EXPECT_EQ(transcript().at(0),
              composed(Text{{"", " SELECT *"}, {"", " FROM   CG86_AZIENDECOLL WITH(NOLOCK)"}} +
                           kWhere + Text{{"", " ORDER BY CG86_ANNOIVA DESC"}},
                       which))
        << "flags: " << flags;
  }
  EXPECT_EQ(count("Open"), 0U);
  expectTextCommands();
  expectNoTransaction();
}

// No rows: the default activity.

TEST_F(InsertionTest, ARegisteredDefaultActivityGetsItsRow) {
  service.InserisciAttività();
  const Lines steps = transcript();
  ASSERT_EQ(steps.size(), 3U);
  EXPECT_EQ(steps[1], registryCount("20", "20"));
  expectDefaultBatch(steps[2], "20", "20", "2024");
  EXPECT_EQ(handedOut(), Variant{"codice"});
  expectState(0);
}

TEST_F(InsertionTest, ThereAreThirtyFourColumns) { EXPECT_EQ(kOtherRowColumns.size() + 6, 34U); }

TEST_F(InsertionTest, AnActivityNotYetRegisteredIsRegisteredFirst) {
  registered(0);
  service.CPInput->Pvar_Ditta = std::int32_t{12};
  service.InserisciAttività();
  const Lines steps = transcript();
  ASSERT_EQ(steps.size(), 4U);
  EXPECT_EQ(steps[1], registryCount("12", "12"));
  const std::string& sql = steps[2];
  EXPECT_TRUE(sql.starts_with(kRegistryInsert)) << sql;
  EXPECT_NE(sql.find(crlf({")", " SELECT CG18_DITTA AS CG96_DITTA_CG18, 12 AS CG96_CODATTIVITA,",
                           "        N'Attività 12 (azienda 12)' AS CG96_DESCRATTIVITA,",
                           "        CG18_ATECOCOD_CG6A, CG25_INDCATPART, CG25_FLGIVAEDIT, "
                           "CG25_INDAGRIC,\r\n"})),
            std::string::npos)
      << sql;
  const std::string tail =
      crlf({" FROM   CG25_ANADITTAGEST WITH(NOLOCK)", " INNER  JOIN CG18_ANADITTABASE WITH(NOLOCK)",
            "    ON  CG18_DITTA = CG25_DITTA_CG18", " LEFT   OUTER JOIN CG30_ANADITTADATE",
            "    ON  CG30_DITTA_CG18 = CG18_DITTA", " WHERE  CG18_DITTA = 12"});
  EXPECT_TRUE(sql.ends_with("\r\n" + tail)) << sql;
  EXPECT_EQ(squeezed(sql),
            squeezed("INSERT INTO CG96_ANAGATTIVITA(CG96_DITTA_CG18, CG96_CODATTIVITA, "
                     "CG96_DESCRATTIVITA, CG96_CODICE_CG6A, CG96_INDCATPART, CG96_FLGIVAEDIT, "
                     "CG96_INDAGRIC, " +
                     columnList(kDates, "CG96") +
                     ") SELECT CG18_DITTA AS CG96_DITTA_CG18, 12 AS CG96_CODATTIVITA, N'Attività "
                     "12 (azienda 12)' AS CG96_DESCRATTIVITA, CG18_ATECOCOD_CG6A, "
                     "CG25_INDCATPART, CG25_FLGIVAEDIT, CG25_INDAGRIC, " +
                     columnList(kDates, "CG30") + " " + tail));
  expectDefaultBatch(steps[3], "12", "12", "2024");
  expectTextCommands();
  expectState(0);
}

TEST_F(InsertionTest, AGivenCodeIsTheDefaultActivitysCode) {
  registered(0);
  for (const Variant& given : {Variant{std::int32_t{5}}, Variant{"5"}}) {
    service.CPInput->CodiceAttività = given;
    connection->operations.clear();
    service.InserisciAttività();
    const Lines steps = transcript();
    ASSERT_EQ(steps.size(), 4U);
    EXPECT_EQ(steps[1], registryCount("20", "5"));
    EXPECT_NE(steps[2].find(", 5 AS CG96_CODATTIVITA,"), std::string::npos);
    EXPECT_NE(steps[2].find("N'Attività 5 (azienda 20)'"), std::string::npos);
    expectDefaultBatch(steps[3], "20", "5", "2024");
  }
}

TEST_F(InsertionTest, TheDefaultRowIsOfTheReferenceYear) {
  service.CPInput->AnnoSolare = kNull;
  service.CPInput->DataInizioElaborazione = Date{.year = 2019, .month = 7, .day = 1};
  service.InserisciAttività();
  expectDefaultBatch(transcript().back(), "20", "20", "2019");
}

TEST_F(InsertionTest, TheDefaultRowCanBeHandedOutInstead) {
  for (const std::int32_t number : {0, 1}) {
    registered(number);
    service.CPInput->PopolaRecordsetInserimentoAttivitàMultiAzienda = true;
    connection->answerPrefix(" SELECT 0 AS CG86_INDTIPO", activities({{.id = 5}}));
    connection->operations.clear();
    service.InserisciAttività();
    // The registry entry is written all the same.
    EXPECT_EQ(lines(kRegistryInsert).size(), number == 0 ? 1U : 0U);
    EXPECT_TRUE(lines(" IF NOT EXISTS").empty());
    expectDefaultRow(transcript().back(), "20", "20", "2024");
    const std::shared_ptr<Recordset> rows = service.CPOutput->Grst_AttivitaCollegate;
    ASSERT_NE(rows, nullptr);
    EXPECT_EQ(rows->recordCount(), 1);
    EXPECT_EQ(handedOut(), Variant{"codice"});
    expectTextCommands();
    expectState(0);
  }
}

TEST_F(InsertionTest, TheBatchHoldsTheRowThatWouldBeHandedOut) {
  service.InserisciAttività();
  const std::string batch = transcript().back();
  service.CPInput->PopolaRecordsetInserimentoAttivitàMultiAzienda = true;
  service.InserisciAttività();
  EXPECT_TRUE(batch.ends_with("\r\n" + transcript().back() + "\r\n END")) << batch;
}

TEST_F(InsertionTest, AnInsertionLeavesTheRecordsetAlone) {
  service.InserisciAttività();
  EXPECT_EQ(service.CPOutput->Grst_AttivitaCollegate, nullptr);
  candidates({{.anno = 2022}});
  service.InserisciAttività();
  EXPECT_EQ(service.CPOutput->Grst_AttivitaCollegate, nullptr);
}

// Rows exist.

TEST_F(InsertionTest, AYearThatHasTheActivityIsLeftAsItIs) {
  service.CPInput->AnnoSolareDaDuplicare = std::int16_t{2023};
  candidates({{.id = 8, .anno = 2024, .codice = std::int32_t{2002}},
              {.id = 7, .anno = 2024, .codice = std::int32_t{2003}},
              {.id = 6, .anno = 2023, .codice = std::int32_t{2001}}});
  service.InserisciAttività();
  EXPECT_EQ(count("Execute"), 1U);
  EXPECT_EQ(handedOut(), Variant{std::int32_t{2002}});
  expectState(0);
}

TEST_F(InsertionTest, TheLatestRowIsCopiedIntoTheYear) {
  service.CPInput->AnnoSolareDaDuplicare = std::int16_t{2022};
  candidates({{.id = 9, .anno = 2022, .codice = std::int32_t{2002}},
              {.id = 8, .anno = 2022, .codice = std::int32_t{2001}}});
  service.InserisciAttività();
  const Lines steps = transcript();
  ASSERT_EQ(steps.size(), 2U);
  expectCopyBatch(steps[1], "9", "2024");
  EXPECT_EQ(handedOut(), Variant{std::int32_t{2002}});
  EXPECT_EQ(service.CPInput->AnnoSolare, Variant{std::int32_t{2024}});
  expectTextCommands();
  expectState(0);
}

TEST_F(InsertionTest, ARowWithoutActivityCodeIsCopiedToo) {
  candidates({{.id = 9, .anno = 2022, .codice = kNull}});
  service.InserisciAttività();
  expectCopyBatch(transcript().back(), "9", "2024");
  EXPECT_TRUE(handedOut().isNull());
}

TEST_F(InsertionTest, TheCopyCanBeHandedOutInstead) {
  service.CPInput->PopolaRecordsetInserimentoAttivitàMultiAzienda = true;
  // The year's own row does not end the call: it is the latest one and is handed out.
  for (const std::int16_t year : {std::int16_t{2022}, std::int16_t{2024}}) {
    candidates({{.id = 9, .anno = year, .codice = std::int32_t{2002}},
                {.id = 8, .anno = 2021, .codice = std::int32_t{2001}}});
    connection->answerPrefix(" SELECT CG86_INDTIPO, 2024, ", activities({{.id = 5}}));
    connection->operations.clear();
    service.CPOutput->Grst_AttivitaCollegate = nullptr;
    service.InserisciAttività();
    const Lines steps = transcript();
    ASSERT_EQ(steps.size(), 2U);
    expectCopiedRow(steps[1], "9", "2024");
    ASSERT_NE(service.CPOutput->Grst_AttivitaCollegate, nullptr);
    EXPECT_EQ(service.CPOutput->Grst_AttivitaCollegate->recordCount(), 1);
    EXPECT_EQ(handedOut(), Variant{std::int32_t{2002}});
    expectState(0);
  }
}

TEST_F(InsertionTest, ACopyBatchHoldsTheRowThatWouldBeHandedOut) {
  candidates({{.id = 9, .anno = 2022}});
  service.InserisciAttività();
  const std::string batch = transcript().back();
  service.CPInput->PopolaRecordsetInserimentoAttivitàMultiAzienda = true;
  service.InserisciAttività();
  EXPECT_TRUE(batch.ends_with("\r\n" + transcript().back() + "\r\n END")) << batch;
}

TEST_F(InsertionTest, WithoutAUsableYearTheOneAfterTheLatestIsTaken) {
  service.CPInput->AnnoSolare = std::int32_t{-3};
  candidates({{.id = 9, .anno = 2022, .codice = std::int32_t{2002}}, {.id = 8, .anno = 2021}});
  service.InserisciAttività();
  EXPECT_TRUE(sameValue(service.CPInput->AnnoSolare, Variant{std::int32_t{2023}}))
      << service.CPInput->AnnoSolare.text();
  const Lines steps = transcript();
  ASSERT_EQ(steps.size(), 2U);
  EXPECT_EQ(steps[0].find("CG86_ANNOIVA IN("), std::string::npos);
  expectCopyBatch(steps[1], "9", "2023");
  EXPECT_EQ(handedOut(), Variant{std::int32_t{2002}});
}

TEST_F(InsertionTest, FailuresAreReportedUnderTheMethodsName) {
  registered(0);
  for (const std::string& statement :
       {std::string{" IF NOT EXISTS"}, kRegistryInsert, kRegistryCount, kCandidates}) {
    for (const Failure failure : {Failure::Provider, Failure::Own, Failure::Foreign}) {
      connection->fail(statement, failure, "guasto");
      connection->operations.clear();
      service.InserisciAttività();
      expectTrapped("guasto in InserisciAttività");
      EXPECT_TRUE(transcript().back().starts_with(statement));
    }
  }
  expectNoTransaction();
}

TEST_F(InsertionTest, WithoutACompanyNothingIsInserted) {
  service.CPInput->Pvar_Ditta = Variant{};
  service.InserisciAttività();
  expectRefused("Codice azienda mancante!");
  service.InserisciAttivitàDaPeriodoPrecedente();
  expectRefused("Codice azienda mancante!");
  EXPECT_TRUE(connection->operations.empty());
}

}  // namespace
}  // namespace azcoll::test
