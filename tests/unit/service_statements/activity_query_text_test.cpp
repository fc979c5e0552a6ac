#include <string>

#include "activity_fixture.h"

namespace azcoll::test {
namespace {

// Flags of the whole statement, beside those of the common condition:
//   W the caller's own columns      R registry only       D decoded columns
//   C only the single company       E linked companies left out
//   S a year to duplicate is given (it shows in the value `dup` only)
Text selectLines() {
  Text lines{{"W", " SELECT {colonne} FROM ("}, {"R", " SELECT CG96_ANAGATTIVITA.*"}};
  Lines expression = mainActivity(" SELECT ", "CG86_AZIENDECOLL");
  expression.back() += " AS ATTIVITAPRINCIPALE,";
  for (const std::string& line : expression) {
    lines.push_back({"r", line});
  }
  lines.push_back({"r", "        CG86_AZIENDECOLL.*"});
  return lines;
}

const Text kDecodedColumns{
    {"D", "      , CG35.CG35_IVADEBITO,"},
    {"D", "        CG35.CG35_PERCINTIVA,"},
    {"D", "        CG35.CG35_FLGINTULTPER,"},
    {"D", "        ISNULL(CG38.CG38_PERCACCIVA, CG35.CG35_PERCACCIVA) AS CG38_PERCACCIVA,"},
    {"D", "        ISNULL(CG38.CG38_GGCALACCIVA, CG35.CG35_GGCALACCIVA) AS CG38_GGCALACCIVA,"},
    {"D",
     "        ISNULL(CG38.CG38_IMPMINVERSACC, CG35.CG35_IMPMINVERSACC) AS CG38_IMPMINVERSACC,"},
    {"D",
     "        ISNULL(CG38.CG38_PERCFORFIVAEDIT, CG35.CG35_PERCFORFIVAEDIT) AS "
     "CG38_PERCFORFIVAEDIT,"},
    {"D", "        CG35.CG35_A38BISLIMMIN,"},
    {"D", "        CG35.CG35_A38BISMAXCOMP,"},
    {"D", "        CG35.CG35_MAXCOMPNOVICO,"},
    {"D", "        CG35.CG35_MAXCOMPNODICH,"},
    {"D", "        CG35.CG35_NUMGGCOMPPOST,"},
    {"D", "        CG35.CG35_MAXRIMBNOVICO,"},
    {"D", "        CG16.CG16_RAGSOANAG AS RAGSOCDITTA,"},
    {"D", "        CG6A.CG6A_DESCRIZ AS DESCRCODATECO2007,"},
    {"D", "        CG28_A.CG28_DESCR AS DESCRCODIVAPREF,"},
    {"D", "        CG28_B.CG28_DESCR AS DESCRCODIVA1,"},
    {"D", "        CG28_C.CG28_DESCR AS DESCRCODIVA2,"},
    {"D", "        CG28_D.CG28_DESCR AS DESCRCODIVA3,"},
    {"D", "        CG28_E.CG28_DESCR AS DESCRCODIVA4,"},
    {"D", "        CG25.CG25_FLGIVAQUATER AS CG25_FLGIVAQUATER,"},
    {"D", "        CG25.CG25_FLGRIEPIVASEP AS CG25_FLGRIEPIVASEP,"},
    {"D", "        CG25.CG25_FLGSEZ AS CG25_FLGSEZ,"},
    {"D", "        CG25.CG25_DATAINISEZ AS CG25_DATAINISEZ,"},
    {"D", "        CG25.CG25_FLGASSIVARIEP AS CG25_FLGASSIVARIEP,"},
    {"D", "        CG25.CG25_TIPOCONT AS CG25_TIPOCONT,"},
    {"D", "        CG25.CG25_INDCREDIVAF24 AS CG25_INDCREDIVAF24,"},
    {"D", "        CG25.CG25_FLGCREDIVAACCF24 AS CG25_FLGCREDIVAACCF24,"},
    {"D", "        CG25.CG25_FLGR38BIS AS CG25_FLGR38BIS,"},
    {"D", "        CG25.CG25_FLGMONOFASERSM AS CG25_FLGMONOFASERSM"},
};

const Text kFrom{
    {"r", "      , CG96_ANAGATTIVITA.*"},
    {"R", " FROM   CG96_ANAGATTIVITA AS CG96_ANAGATTIVITA WITH(NOLOCK)"},
    {"R", " LEFT  OUTER JOIN CG86_AZIENDECOLL AS CG86_AZIENDECOLL WITH(NOLOCK)"},
    {"R", "   ON  0 = 1"},
    {"r", " FROM   CG86_AZIENDECOLL AS CG86_AZIENDECOLL WITH(NOLOCK)"},
    {"r", " INNER  JOIN CG96_ANAGATTIVITA AS CG96_ANAGATTIVITA WITH(NOLOCK)"},
    {"r", "    ON  CG96_ANAGATTIVITA.CG96_DITTA_CG18 = CG86_AZIENDECOLL.CG86_DITTACOLL_CG18"},
    {"r", "   AND  CG96_ANAGATTIVITA.CG96_CODATTIVITA = CG86_AZIENDECOLL.CG86_CODATTIVITA"},
};

const Text kDecodedJoins{
    {"D", "   INNER JOIN CG18_ANADITTABASE AS CG18 WITH(NOLOCK)"},
    {"D",
     "      ON CG18.CG18_DITTA = ISNULL(CG86_AZIENDECOLL.CG86_DITTACOLL_CG18, "
     "CG96_ANAGATTIVITA.CG96_DITTA_CG18)"},
    {"D", "   CROSS JOIN CG35_PRSDATIPROC AS CG35 WITH(NOLOCK)"},
    {"D", "   LEFT OUTER JOIN CG38_PARCOGE AS CG38 WITH(NOLOCK)"},
    {"D",
     "      ON CG38_DITTA_CG18 = ISNULL(CG86_AZIENDECOLL.CG86_DITTACOLL_CG18, "
     "CG96_ANAGATTIVITA.CG96_DITTA_CG18)"},
    {"D", "   INNER JOIN CG16_ANAGGEN AS CG16 WITH(NOLOCK)"},
    {"D", "      ON CG18.CG18_CODICE_CG16 = CG16.CG16_CODICE"},
    {"D", "   INNER JOIN CG25_ANADITTAGEST AS CG25 WITH(NOLOCK)"},
    {"D", "      ON CG18.CG18_DITTA = CG25.CG25_DITTA_CG18"},
    {"D",
     "   OUTER APPLY DBO.FNCG28_TABCODIVA(CG86_AZIENDECOLL.CG86_CODICE_CG28, "
     "CG96_ANAGATTIVITA.CG96_DITTA_CG18) AS CG28_A"},
    {"D",
     "   OUTER APPLY DBO.FNCG28_TABCODIVA(CG86_AZIENDECOLL.CG86_ALQCOR1_CG28, "
     "CG96_ANAGATTIVITA.CG96_DITTA_CG18) AS CG28_B"},
    {"D",
     "   OUTER APPLY DBO.FNCG28_TABCODIVA(CG86_AZIENDECOLL.CG86_ALQCOR2_CG28, "
     "CG96_ANAGATTIVITA.CG96_DITTA_CG18) AS CG28_C"},
    {"D",
     "   OUTER APPLY DBO.FNCG28_TABCODIVA(CG86_AZIENDECOLL.CG86_ALQCOR3_CG28, "
     "CG96_ANAGATTIVITA.CG96_DITTA_CG18) AS CG28_D"},
    {"D",
     "   OUTER APPLY DBO.FNCG28_TABCODIVA(CG86_AZIENDECOLL.CG86_ALQCOR4_CG28, "
     "CG96_ANAGATTIVITA.CG96_DITTA_CG18) AS CG28_E"},
    {"D", "   LEFT OUTER JOIN CG6A_TABATECO2007 AS CG6A WITH(NOLOCK)"},
    {"D", "      ON CG6A.CG6A_CODICE = CG96_ANAGATTIVITA.CG96_CODICE_CG6A"},
};

const Text kSelection{
    {"R", " WHERE  CG96_ANAGATTIVITA.CG96_DITTA_CG18 = {ditta}"},
    {"RA", " AND CG96_ANAGATTIVITA.CG96_CODATTIVITA = {codice}"},
    {"r", " WHERE CG86_AZIENDECOLL.CG86_INDTIPO = 0"},
    {"rC", " AND CG86_AZIENDECOLL.CG86_DITTACOLL_CG18 = {ditta}"},
    {"rY", " AND CG86_AZIENDECOLL.CG86_ANNOIVA IN({anno}, {dup})"},
    {"rA", " AND CG86_AZIENDECOLL.CG86_CODATTIVITA = {codice}"},
    {"rI", " AND CG86_AZIENDECOLL.CG86_IDATTIVITA = {id}"},
    {"rP", " AND CG86_AZIENDECOLL.CG86_FLGATTIVITAPRINC = 1"},
    {"rE", "   AND  CG86_AZIENDECOLL.CG86_DITTACOLL_CG18 = {ditta}"},
    {"re", "   AND  CG86_AZIENDECOLL.CG86_DITTA_CG18 IN (SELECT C.CG86_DITTA_CG18"},
    {"re", "FROM"},
    {"re", "CG86_AZIENDECOLL AS C WITH(NOLOCK)"},
    {"re",
     "                                 WHERE  C.CG86_INDTIPO = CG86_AZIENDECOLL.CG86_INDTIPO"},
    {"re",
     "                                   AND  C.CG86_ANNOIVA = CG86_AZIENDECOLL.CG86_ANNOIVA"},
    {"re", "                                   AND ( C.CG86_DITTACOLL_CG18 = {ditta}"},
    {"re", "                                         OR C.CG86_DITTA_CG18 = {ditta})"},
    {"re", "                                 )"},
    {"W", ") AS CG86_AZIENDECOLL"},
    {"rW",
     " ORDER BY CG86_AZIENDECOLL.CG86_ANNOIVA, CASE WHEN CG86_AZIENDECOLL.CG86_DITTACOLL_CG18 = "
     "{ditta} THEN CG86_AZIENDECOLL.ATTIVITAPRINCIPALE ELSE -1 END DESC, "
     "CG86_AZIENDECOLL.CG86_CODATTIVITA"},
    {"rw",
     " ORDER BY CG86_AZIENDECOLL.CG86_ANNOIVA, CASE WHEN CG86_AZIENDECOLL.CG86_DITTACOLL_CG18 = "
     "{ditta} THEN CG86_AZIENDECOLL.CG86_FLGATTIVITAPRINC ELSE -1 END DESC, "
     "CG86_AZIENDECOLL.CG86_CODATTIVITA"},
};

class ActivityQueryTextTest : public ActivityTest {
 protected:
  ActivityQueryTextTest()
      : lines_{selectLines() + kDecodedColumns + kFrom + kDecodedJoins + kSelection} {}

  TextCase giveAll(const std::string& on) {
    TextCase which = give(on);
    which.values["colonne"] = "CG86_CODATTIVITA, ATTIVITAPRINCIPALE AS P";
    CLSCO_INPUTAZCOLL& in = *service.CPInput;
    in.StrSelectSQLAttività = which.has('W') ? which.values["colonne"] : "";
    in.SelezionaSoloAnagraficheAttività = which.has('R');
    in.Pbol_AggiungiCampiDecodificheAttività = which.has('D');
    in.SelezionaAttivitàSingolaAzienda = which.has('C');
    in.MultiAziendaEscludiCollegate = which.has('E');
    return which;
  }
  std::string run() {
    service.CPOutput->GstrSQL_AttivitaCollegate = "rimasto";
    service.StringaSQLAttivitaCollegate();
    return service.CPOutput->GstrSQL_AttivitaCollegate;
  }
  [[nodiscard]] std::string expected(const TextCase& which) const {
    return composed(lines_, which);
  }

  Text lines_;
};

TEST_F(ActivityQueryTextTest, EveryCombinationOfFlagsGivesItsText) {
  for (const std::string& flags : everySet("WRDCEAIPYS")) {
    const TextCase which = giveAll(flags);
    ASSERT_EQ(run(), expected(which)) << "flags: " << flags;
    ASSERT_EQ(service.Stato, Variant{std::int16_t{0}}) << flags;
  }
  EXPECT_TRUE(connection->operations.empty());
  EXPECT_TRUE(service.Errore.isEmpty());
}

TEST_F(ActivityQueryTextTest, TheTableOfLinesHasTheMarksOfEachFlag) {
  // The expectation of the test above, checked in its turn by counts that are easily verified.
  EXPECT_EQ(expected(give("R")),
            " SELECT CG96_ANAGATTIVITA.*\r\n"
            " FROM   CG96_ANAGATTIVITA AS CG96_ANAGATTIVITA WITH(NOLOCK)\r\n"
            " LEFT  OUTER JOIN CG86_AZIENDECOLL AS CG86_AZIENDECOLL WITH(NOLOCK)\r\n"
            "   ON  0 = 1\r\n"
            " WHERE  CG96_ANAGATTIVITA.CG96_DITTA_CG18 = 20");
  EXPECT_EQ(kDecodedColumns.size(), 30U);
  EXPECT_EQ(kDecodedJoins.size(), 16U);
}

TEST_F(ActivityQueryTextTest, TheTextIsComposedWithoutAConnection) {
  service.CPInput->Connessione = nullptr;
  const TextCase which = giveAll("Y");
  EXPECT_EQ(run(), expected(which));
  EXPECT_EQ(service.CPInput->Connessione, nullptr);
  EXPECT_TRUE(connection->operations.empty());
  expectState(0);
}

TEST_F(ActivityQueryTextTest, TheStateOfTheCallBeforeIsInherited) {
  service.Stato = std::int16_t{99};
  service.Errore = "di prima";
  const TextCase which = giveAll("Y");
  EXPECT_EQ(run(), expected(which));
  expectState(99);
  EXPECT_EQ(errore(), "di prima");
}

TEST_F(ActivityQueryTextTest, WithoutACompanyNothingIsComposed) {
  for (const Variant& missing : {Variant{}, Variant{kNull}, Variant{""}}) {
    service.Stato = std::int16_t{0};
    service.Errore = Variant{};
    service.CPInput->Pvar_Ditta = missing;
    EXPECT_EQ(run(), "rimasto");
    expectRefused("Codice azienda mancante!");
  }
}

TEST_F(ActivityQueryTextTest, MissingFiltersAreNullEmptyOrAnEmptyText) {
  const TextCase which = giveAll("Y");
  for (const Variant& missing : {Variant{}, Variant{kNull}, Variant{""}}) {
    service.CPInput->CodiceAttività = missing;
    service.CPInput->IdAttività = missing;
    service.CPInput->AnnoSolareDaDuplicare = missing;
    EXPECT_EQ(run(), expected(which));
  }
}

TEST_F(ActivityQueryTextTest, ValuesStandInTheTextAsTheyAre) {
  TextCase which = giveAll("YAISCE");
  service.CPInput->Pvar_Ditta = "020";
  service.CPInput->AnnoSolare = "2023";
  service.CPInput->AnnoSolareDaDuplicare = "2021";
  service.CPInput->CodiceAttività = "0";
  service.CPInput->IdAttività = std::int64_t{5000000000};
  which.values["ditta"] = "020";
  which.values["anno"] = "2023";
  which.values["dup"] = "2021";
  which.values["codice"] = "0";
  which.values["id"] = "5000000000";
  EXPECT_EQ(run(), expected(which));
}

TEST_F(ActivityQueryTextTest, ZeroIsAnActivityCodeAndAnIdentity) {
  TextCase which = giveAll("YAI");
  service.CPInput->CodiceAttività = std::int32_t{0};
  service.CPInput->IdAttività = std::int32_t{0};
  which.values["codice"] = "0";
  which.values["id"] = "0";
  EXPECT_EQ(run(), expected(which));
}

TEST_F(ActivityQueryTextTest, ColumnsOfBlanksCountAsGiven) {
  TextCase which = giveAll("YW");
  service.CPInput->StrSelectSQLAttività = " ";
  which.values["colonne"] = " ";
  EXPECT_EQ(run(), expected(which));
}

TEST_F(ActivityQueryTextTest, TheYearComesFromTheProcessingDateThenFromToday) {
  TextCase which = giveAll("Y");
  for (const Variant& missing : {Variant{}, Variant{kNull}, Variant{""}}) {
    service.CPInput->AnnoSolare = missing;
    service.CPInput->DataInizioElaborazione = Date{.year = 2019, .month = 7, .day = 1};
    which.values["anno"] = "2019";
    EXPECT_EQ(run(), expected(which));
    service.CPInput->DataInizioElaborazione = missing;
    platform->now = Date{.year = 2031, .month = 12, .day = 31};
    which.values["anno"] = "2031";
    EXPECT_EQ(run(), expected(which));
  }
}

TEST_F(ActivityQueryTextTest, YearZeroCountsAsMissing) {
  TextCase which = giveAll("Y");
  service.CPInput->AnnoSolare = std::int32_t{0};
  service.CPInput->DataInizioElaborazione = Date{.year = 2019, .month = 7, .day = 1};
  which.values["anno"] = "2019";
  EXPECT_EQ(run(), expected(which));
}

TEST_F(ActivityQueryTextTest, TheInputStaysAsItWas) {
  giveAll("WRDCEAIPYS");
  const CLSCO_INPUTAZCOLL before = *service.CPInput;
  run();
  EXPECT_EQ(service.CPInput->AnnoSolare, before.AnnoSolare);
  EXPECT_EQ(service.CPInput->AnnoSolareDaDuplicare, before.AnnoSolareDaDuplicare);
  EXPECT_EQ(service.CPInput->CodiceAttività, before.CodiceAttività);
  EXPECT_EQ(service.CPInput->Pvar_Ditta, before.Pvar_Ditta);
  EXPECT_TRUE(service.CPInput->Pbol_AggiungiCampiDecodificheAttività);
}

TEST_F(ActivityQueryTextTest, OnlyTheTextAndTheListOfCompaniesAreWritten) {
  CLSCO_OUTPUTAZCOLL& out = *service.CPOutput;
  out.CodiceAttività = std::int32_t{5};
  out.DitteCollegate = "1, 2";
  giveAll("Y");
  run();
  EXPECT_EQ(out.CodiceAttività, Variant{std::int32_t{5}});
  EXPECT_EQ(out.DitteCollegate, Variant{""});
  EXPECT_EQ(out.Grst_AttivitaCollegate, nullptr);
}

TEST_F(ActivityQueryTextTest, AFailureIsReportedUnderTheMethodsName) {
  giveAll("Y");
  service.CPOutput = nullptr;
  service.StringaSQLAttivitaCollegate();
  expectState(99);
  EXPECT_TRUE(errore().ends_with(" in StringaSQLAttivitaCollegate")) << errore();
}

}  // namespace
}  // namespace azcoll::test
