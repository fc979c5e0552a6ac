#include <memory>
#include <string>

#include "activity_fixture.h"

namespace azcoll::test {
namespace {

const Lines kSectionals{
    "SELECT CG32_DITTA_CG18, CG32_ANNO, CG32_SEZIONALE, CG86_CODATTIVITA",
    " FROM   CG32_ANADITTAPSEZ WITH (NOLOCK)",
    "    LEFT OUTER JOIN CG86_AZIENDECOLL WITH (NOLOCK)",
    "       ON CG86_IDATTIVITA = CASE WHEN CG32_IDATTIVITA_CG86 IS NOT NULL",
    "                                 THEN CG32_IDATTIVITA_CG86",
    "                                 ELSE ( SELECT TOP 1 A.CG86_IDATTIVITA",
    "                                        FROM CG86_AZIENDECOLL A WITH (NOLOCK)",
    "                                        LEFT OUTER JOIN CG25_ANADITTAGEST WITH (NOLOCK)",
    "                                          ON CG25_DITTA_CG18 = A.CG86_DITTACOLL_CG18",
    "                                        WHERE A.CG86_DITTACOLL_CG18 = CG32_DITTA_CG18",
    "                                        AND A.CG86_ANNOIVA = CG32_ANNO",
    "                                        AND CG25_FLGIVAQUATER IN(0,1)",
    "                                        AND A.CG86_INDTIPO = 0",
    "                                      )",
    "                            END",
    " WHERE  CG32_DITTA_CG18 = 20",
    " ORDER BY CG32_DITTA_CG18, CG32_ANNO, CG32_SEZIONALE, CG86_CODATTIVITA"};

class ActivityRecordsetTest : public ActivityTest {
 protected:
  /// The statement of the query for the input as it stands.
  std::string text() {
    service.StringaSQLAttivitaCollegate();
    return service.CPOutput->GstrSQL_AttivitaCollegate;
  }
  /// Runs the query with `rows` as its answer; returns the statement it should have run.
  std::string read(const std::vector<Activity>& rows) {
    const std::string sql = text();
    connection->answer(sql, activities(rows));
    connection->operations.clear();
    service.RecordsetAttivitaCollegate();
    return sql;
  }
  void fillOutput() {
    CLSCO_OUTPUTAZCOLL& out = *service.CPOutput;
    out.IndTipoCont = "tipo";
    out.CodiceAttività = "codice";
    out.DescrAttività = "descrizione";
    out.IdAttività = "id";
  }
  void expectOutputUntouched() const {
    const CLSCO_OUTPUTAZCOLL& out = *service.CPOutput;
    EXPECT_EQ(out.IndTipoCont, Variant{"tipo"});
    EXPECT_EQ(out.CodiceAttività, Variant{"codice"});
    EXPECT_EQ(out.DescrAttività, Variant{"descrizione"});
    EXPECT_EQ(out.IdAttività, Variant{"id"});
  }
};

TEST_F(ActivityRecordsetTest, IsOpenedWithTheStandardPattern) {
  const std::string sql = read({{}});
  EXPECT_EQ(transcript(), (Lines{regimeOf("20"), "Open " + sql}));
  ASSERT_EQ(count("Open"), 1U);
  EXPECT_EQ(named("Open").front().options, (Ints{-1, -1, 1}));
  EXPECT_EQ(count("RecordsetConnection"), 1U);
  ASSERT_EQ(count("CursorLocation"), 1U);
  EXPECT_EQ(named("CursorLocation").front().options, Ints{3});
  ASSERT_EQ(count("CursorType"), 1U);
  EXPECT_EQ(named("CursorType").front().options, Ints{1});
  ASSERT_EQ(count("LockType"), 1U);
  EXPECT_EQ(named("LockType").front().options, Ints{4});
  EXPECT_EQ(count("Detach"), 0U);
  expectTextCommands();
  expectNoTransaction();
  expectState(0);
}

TEST_F(ActivityRecordsetTest, TheFirstRowGoesToTheOutput) {
  read({{.id = 31, .codice = std::int32_t{3001}}, {.id = 32, .codice = std::int32_t{3002}}});
  const CLSCO_OUTPUTAZCOLL& out = *service.CPOutput;
  EXPECT_EQ(out.IndTipoCont, Variant{std::int16_t{2}});
  EXPECT_EQ(out.CodiceAttività, Variant{std::int32_t{3001}});
  EXPECT_EQ(out.DescrAttività, Variant{"Attività di prova 3001"});
  EXPECT_EQ(out.IdAttività, Variant{std::int32_t{31}});
}

TEST_F(ActivityRecordsetTest, StaysOpenOnItsFirstRow) {
  read({{.id = 31}, {.id = 32}});
  const std::shared_ptr<Recordset> rows = service.CPOutput->Grst_AttivitaCollegate;
  ASSERT_NE(rows, nullptr);
  ASSERT_TRUE(rows->isOpen());
  EXPECT_EQ(rows->recordCount(), 2);
  EXPECT_EQ(rows->fields().item("CG86_IDATTIVITA").value(), Variant{std::int32_t{31}});
  rows->moveNext();
  EXPECT_EQ(rows->fields().item("CG86_IDATTIVITA").value(), Variant{std::int32_t{32}});
}

TEST_F(ActivityRecordsetTest, NullsOfTheFirstRowAreHandedOut) {
  const std::string sql = text();
  connection->answer(
      sql, rowSet({"CG86_INDTIPOCONT", "CG86_CODATTIVITA", "CG96_DESCRATTIVITA", "CG86_IDATTIVITA"},
                  {kNull, kNull, kNull, kNull}));
  fillOutput();
  service.RecordsetAttivitaCollegate();
  const CLSCO_OUTPUTAZCOLL& out = *service.CPOutput;
  EXPECT_TRUE(out.IndTipoCont.isNull());
  EXPECT_TRUE(out.CodiceAttività.isNull());
  EXPECT_TRUE(out.DescrAttività.isNull());
  EXPECT_TRUE(out.IdAttività.isNull());
  expectState(0);
}

TEST_F(ActivityRecordsetTest, WithoutRowsTheOutputKeepsItsValues) {
  fillOutput();
  read({});
  expectOutputUntouched();
  ASSERT_NE(service.CPOutput->Grst_AttivitaCollegate, nullptr);
  EXPECT_TRUE(service.CPOutput->Grst_AttivitaCollegate->isOpen());
  EXPECT_EQ(service.CPOutput->Grst_AttivitaCollegate->recordCount(), 0);
  expectState(0);
}

TEST_F(ActivityRecordsetTest, RegistryRowsAreNotHandedToTheOutput) {
  service.CPInput->SelezionaSoloAnagraficheAttività = true;
  fillOutput();
  read({{}});
  expectOutputUntouched();
  ASSERT_NE(service.CPOutput->Grst_AttivitaCollegate, nullptr);
  EXPECT_EQ(service.CPOutput->Grst_AttivitaCollegate->recordCount(), 1);
  expectState(0);
}

TEST_F(ActivityRecordsetTest, EveryCallGivesARecordsetOfItsOwn) {
  read({{}});
  const std::shared_ptr<Recordset> first = service.CPOutput->Grst_AttivitaCollegate;
  service.RecordsetAttivitaCollegate();
  EXPECT_NE(first, service.CPOutput->Grst_AttivitaCollegate);
  EXPECT_TRUE(first->isOpen());
}

TEST_F(ActivityRecordsetTest, TheSectionalRegistersAreASecondStatement) {
  for (const bool registryOnly : {false, true}) {
    for (const std::string columns : {"", "CG86_CODATTIVITA"}) {
      service.CPInput->SelezionaSoloAnagraficheAttività = registryOnly;
      service.CPInput->StrSelectSQLAttività = columns;
      const std::string sql = text();
      service.CPInput->Pbol_ValorizzaRecordsetSezionali = true;
      connection->operations.clear();
      service.RecordsetAttivitaCollegate();
      ASSERT_EQ(count("Open"), 1U);
      EXPECT_EQ(named("Open").front().sql, sql + ";" + crlf(kSectionals));
      service.CPInput->Pbol_ValorizzaRecordsetSezionali = false;
    }
  }
}

TEST_F(ActivityRecordsetTest, TheSectionalRegistersAreNotPartOfTheTextHandedOut) {
  const std::string sql = text();
  service.CPInput->Pbol_ValorizzaRecordsetSezionali = true;
  service.StringaSQLAttivitaCollegate();
  EXPECT_EQ(service.CPOutput->GstrSQL_AttivitaCollegate, sql);
  service.RecordsetAttivitaCollegate();
  EXPECT_EQ(service.CPOutput->GstrSQL_AttivitaCollegate, sql);
}

TEST_F(ActivityRecordsetTest, TheSectionalRegistersAreThoseOfTheCompany) {
  service.CPInput->Pvar_Ditta = std::int32_t{7};
  service.CPInput->Pbol_ValorizzaRecordsetSezionali = true;
  service.RecordsetAttivitaCollegate();
  EXPECT_NE(named("Open").front().sql.find("\r\n WHERE  CG32_DITTA_CG18 = 7\r\n"),
            std::string::npos);
}

TEST_F(ActivityRecordsetTest, AYearWithoutRowsIsSeededBeforeItIsRead) {
  regime(std::int16_t{0});
  financialYears(1);
  connection->answerPrefix(" SELECT COUNT(1) AS NUM", rowSet({"NUM"}, {1}));
  const std::string sql = text();
  connection->answer(sql, activities({{}}));
  connection->operations.clear();
  service.RecordsetAttivitaCollegate();
  const Lines steps = transcript();
  ASSERT_EQ(steps.size(), 7U);
  EXPECT_EQ(steps[0], regimeOf("20"));
  EXPECT_TRUE(steps[1].starts_with(" SELECT COUNT(1)\r FROM   CG19_ANADITTAESER"));
  EXPECT_TRUE(steps[2].starts_with(" SELECT *\r\n FROM   CG86_AZIENDECOLL AS CG86 "));
  EXPECT_TRUE(steps[3].starts_with(" SELECT *\r\n FROM   CG86_AZIENDECOLL WITH(NOLOCK)"));
  EXPECT_TRUE(steps[4].starts_with(" SELECT COUNT(1) AS NUM\r\n FROM   CG96_ANAGATTIVITA"));
  EXPECT_TRUE(steps[5].starts_with(" IF NOT EXISTS(SELECT 1"));
  EXPECT_EQ(steps[6], "Open " + sql);
  expectState(0);
}

TEST_F(ActivityRecordsetTest, AFailedSeedingIsToldAndTheRowsAreReadAllTheSame) {
  service.CPInput->InserisciAttivitàDaPeriodoPrecedente = true;
  financialYears(1);
  connection->fail(" SELECT *\r\n FROM   CG86_AZIENDECOLL AS CG86 ", Failure::Provider, "guasto");
  read({{.id = 31}});
  EXPECT_EQ(count("Open"), 1U);
  EXPECT_EQ(service.CPOutput->IdAttività, Variant{std::int32_t{31}});
  expectTrapped("guasto in InserisciAttività");
}

TEST_F(ActivityRecordsetTest, ARowThatCannotBeSeededDoesNotChangeWhatIsRead) {
  service.CPInput->InserisciAttivitàDaPeriodoPrecedente = true;
  financialYears(1);
  connection->answerPrefix(
      " SELECT *\r\n FROM   CG86_AZIENDECOLL AS CG86 WITH(NOLOCK)\r\n WHERE  "
      "CG86.CG86_INDTIPO = 0\r\n   AND  CG86.CG86_ANNOIVA < ",
      activities({{.anno = 2023, .ditta = 10, .dittaColl = 12}}));
  connection->fail(" SELECT *\r\n FROM   CG86_AZIENDECOLL WITH(NOLOCK)", Failure::Provider,
                   "guasto");
  const std::string sql = text();
  connection->operations.clear();
  service.RecordsetAttivitaCollegate();
  EXPECT_EQ(lines("Open "), Lines{"Open " + sql});
  expectTrapped("guasto in InserisciAttività");
  EXPECT_EQ(service.CPInput->Pvar_Ditta, Variant{std::int32_t{12}});
}

TEST_F(ActivityRecordsetTest, AFailureIsReportedUnderTheMethodsName) {
  connection->fail(text(), Failure::Provider, "Invalid column name 'X'.");
  service.RecordsetAttivitaCollegate();
  expectTrapped("Invalid column name 'X'. in RecordsetAttivitaCollegate");
  expectNoTransaction();
}

TEST_F(ActivityRecordsetTest, FailuresOutsideTheDatabaseAreTrappedToo) {
  for (const Failure failure : {Failure::Own, Failure::Foreign}) {
    connection->fail(text(), failure, "guasto");
    service.RecordsetAttivitaCollegate();
    expectTrapped("guasto in RecordsetAttivitaCollegate");
  }
}

TEST_F(ActivityRecordsetTest, AColumnMissingInTheFirstRowIsAFailure) {
  connection->answer(text(), rowSet({"CG86_INDTIPOCONT"}, {std::int16_t{1}}));
  service.RecordsetAttivitaCollegate();
  expectState(99);
  EXPECT_TRUE(errore().ends_with(" in RecordsetAttivitaCollegate")) << errore();
}

TEST_F(ActivityRecordsetTest, ASuccessClearsTheStateButNotTheMessage) {
  service.Stato = std::int16_t{99};
  service.Errore = "di prima";
  service.RecordsetAttivitaCollegate();
  expectState(0);
  EXPECT_EQ(errore(), "di prima");
}

TEST_F(ActivityRecordsetTest, WithoutACompanyNothingIsRead) {
  service.CPInput->Pvar_Ditta = Variant{};
  service.RecordsetAttivitaCollegate();
  expectRefused("Codice azienda mancante!");
  EXPECT_TRUE(connection->operations.empty());
  EXPECT_EQ(service.CPOutput->Grst_AttivitaCollegate, nullptr);
}

TEST_F(ActivityRecordsetTest, WithoutAConnectionNothingIsRead) {
  service.CPInput->Connessione = nullptr;
  service.RecordsetAttivitaCollegate();
  expectRefused("Stringa di connessione mancante!");
}

}  // namespace
}  // namespace azcoll::test
