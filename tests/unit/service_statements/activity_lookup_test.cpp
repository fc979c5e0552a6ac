#include <string>
#include <utility>
#include <vector>

#include "activity_fixture.h"

namespace azcoll::test {
namespace {

ResultSet found(const Variant& code, const Variant& description, const Variant& id) {
  return rowSet({"CG86_CODATTIVITA", "CG96_DESCRATTIVITA", "CG86_IDATTIVITA"},
                {code, description, id});
}

class LookupTest : public ActivityTest {
 protected:
  LookupTest() {
    CLSCO_OUTPUTAZCOLL& out = *service.CPOutput;
    out.CodiceAttività = "codice";
    out.DescrAttività = "descrizione";
    out.IdAttività = "id";
  }
  void expectNothingFound() const {
    const CLSCO_OUTPUTAZCOLL& out = *service.CPOutput;
    EXPECT_TRUE(out.CodiceAttività.isNull());
    EXPECT_TRUE(out.DescrAttività.isNull());
    EXPECT_TRUE(out.IdAttività.isNull());
  }
  void expectFound(const Variant& code, const Variant& description, const Variant& id) const {
    const CLSCO_OUTPUTAZCOLL& out = *service.CPOutput;
    EXPECT_EQ(out.CodiceAttività, code);
    EXPECT_EQ(out.DescrAttività, description);
    EXPECT_EQ(out.IdAttività, id);
  }
};

// The activity of a sectional register.

const std::string kSectional =
    " SELECT CG86_CODATTIVITA, CG96_DESCRATTIVITA, CG86_IDATTIVITA\r\n"
    " FROM   CG32_ANADITTAPSEZ";

class SectionalLookupTest : public LookupTest {
 protected:
  SectionalLookupTest() { service.CPInput->Sezionale = "01"; }

  static std::string statement(const std::string& company, const std::string& year,
                               const std::string& section) {
    return crlf({" SELECT CG86_CODATTIVITA, CG96_DESCRATTIVITA, CG86_IDATTIVITA",
                 " FROM   CG32_ANADITTAPSEZ WITH (NOLOCK)",
                 "    LEFT OUTER JOIN CG86_AZIENDECOLL WITH (NOLOCK)",
                 "       ON CG86_IDATTIVITA = CASE WHEN CG32_IDATTIVITA_CG86 IS NOT NULL",
                 "                                 THEN CG32_IDATTIVITA_CG86",
                 "                                 ELSE ( SELECT TOP 1 A.CG86_IDATTIVITA",
                 "                                        FROM CG86_AZIENDECOLL A WITH (NOLOCK)",
                 "                                         LEFT OUTER JOIN CG25_ANADITTAGEST WITH "
                 "(NOLOCK)",
                 "                                           ON CG25_DITTA_CG18 = "
                 "A.CG86_DITTACOLL_CG18",
                 "                                         WHERE A.CG86_DITTACOLL_CG18 = "
                 "CG32_DITTA_CG18",
                 "                                          AND A.CG86_ANNOIVA = CG32_ANNO",
                 "                                          AND CG25_FLGIVAQUATER IN(0,1)",
                 "                                          AND A.CG86_INDTIPO = 0",
                 "                                      )",
                 "                            END",
                 "   LEFT OUTER JOIN CG96_ANAGATTIVITA WITH(NOLOCK)",
                 "      ON CG96_DITTA_CG18 = CG86_DITTACOLL_CG18",
                 "     AND CG96_CODATTIVITA = CG86_CODATTIVITA",
                 " WHERE  CG32_DITTA_CG18 = " + company,
                 " AND    CG32_ANNO = " + year,
                 " AND    CG32_SEZIONALE = '" + section + "'"});
  }
  void expectRefusedUntouched(const std::string& message) {
    connection->operations.clear();
    service.CPOutput->CodiceAttività = "codice";
    service.CPOutput->DescrAttività = "descrizione";
    service.CPOutput->IdAttività = "id";
    service.GetCodiceAttivitàDaSezionale();
    expectRefused(message);
    expectNothingFound();
    EXPECT_TRUE(connection->operations.empty());
  }
};

TEST_F(SectionalLookupTest, ReadsTheRegisterAfterTheSeeding) {
  service.GetCodiceAttivitàDaSezionale();
  EXPECT_EQ(transcript(), (Lines{regimeOf("20"), statement("20", "2024", "01")}));
  EXPECT_EQ(count("Open"), 0U);
  expectTextCommands();
  expectNoTransaction();
  expectNothingFound();
  expectState(0);
}

TEST_F(SectionalLookupTest, TheRegistersActivityIsHandedOut) {
  connection->answerPrefix(kSectional, found(std::int32_t{2001}, "Editoria", std::int32_t{77}));
  service.GetCodiceAttivitàDaSezionale();
  expectFound(std::int32_t{2001}, "Editoria", std::int32_t{77});
  expectState(0);
}

TEST_F(SectionalLookupTest, AnActivityWithoutDescriptionHasAnEmptyText) {
  connection->answerPrefix(kSectional, found(std::int32_t{2001}, kNull, std::int32_t{77}));
  service.GetCodiceAttivitàDaSezionale();
  expectFound(std::int32_t{2001}, "", std::int32_t{77});
}

TEST_F(SectionalLookupTest, ARegisterWithoutActivityGivesNulls) {
  connection->answerPrefix(kSectional, found(kNull, kNull, kNull));
  service.GetCodiceAttivitàDaSezionale();
  expectFound(kNull, "", kNull);
  expectState(0);
}

TEST_F(SectionalLookupTest, OnlyTheFirstRowCounts) {
  ResultSet rows = found(std::int32_t{1}, "uno", std::int32_t{11});
  for (const Variant& value :
       {Variant{std::int32_t{2}}, Variant{"due"}, Variant{std::int32_t{22}}}) {
    rows.values.push_back(value);
  }
  connection->answerPrefix(kSectional, rows);
  service.GetCodiceAttivitàDaSezionale();
  expectFound(std::int32_t{1}, "uno", std::int32_t{11});
}

TEST_F(SectionalLookupTest, TheSectionHasTwoCharacters) {
  const std::vector<std::pair<Variant, std::string>> sections{{Variant{std::int16_t{1}}, "1 "},
                                                              {"1", "1 "},
                                                              {"ABC", "AB"},
                                                              {"AB", "AB"},
                                                              {"  7", "7 "},
                                                              {" A B ", "A "},
                                                              {"  ", "  "},
                                                              {"à", "à "},
                                                              {"àèì", "àè"},
                                                              {std::int32_t{0}, "0 "}};
  for (const auto& [given, written] : sections) {
    service.CPInput->Sezionale = given;
    connection->operations.clear();
    service.GetCodiceAttivitàDaSezionale();
    EXPECT_EQ(lines(kSectional), Lines{statement("20", "2024", written)}) << given.text();
  }
}

TEST_F(SectionalLookupTest, CompanyAndYearStandInTheTextAsTheyAre) {
  service.CPInput->Pvar_Ditta = "020";
  service.CPInput->AnnoSolare = "2023";
  service.GetCodiceAttivitàDaSezionale();
  EXPECT_EQ(lines(kSectional), Lines{statement("020", "2023", "01")});
  service.CPInput->AnnoSolare = std::int32_t{0};
  connection->operations.clear();
  service.GetCodiceAttivitàDaSezionale();
  EXPECT_EQ(lines(kSectional), Lines{statement("020", "0", "01")});
}

TEST_F(SectionalLookupTest, MissingInputIsRefusedInOrder) {
  CLSCO_INPUTAZCOLL& in = *service.CPInput;
  for (const Variant& missing : {Variant{}, Variant{kNull}, Variant{""}}) {
    in.Connessione = nullptr;
    in.StringaConnessione = "Provider=embedded;Data Source=:memory:";
    in.Pvar_Ditta = missing;
    in.AnnoSolare = missing;
    in.Sezionale = missing;
    in.DataInizioElaborazione = Date{.year = 2024, .month = 1, .day = 1};
    expectRefusedUntouched("Non è stata definita la connessione.");
    in.Connessione = connection;
    expectRefusedUntouched("Non è stato definito il codice azienda.");
    in.Pvar_Ditta = std::int32_t{20};
    expectRefusedUntouched("Non è stato definito l'anno solare.");
    in.AnnoSolare = std::int32_t{2024};
    expectRefusedUntouched("Non è stato definito il codice sezionale");
    in.Sezionale = "01";
    service.GetCodiceAttivitàDaSezionale();
    expectState(0);
  }
}

TEST_F(SectionalLookupTest, ARefusalDoesNotRunThePreamble) {
  service.CPOutput->DitteCollegate = "1, 2";
  service.CPInput->Sezionale = Variant{};
  service.GetCodiceAttivitàDaSezionale();
  EXPECT_EQ(service.CPOutput->DitteCollegate, Variant{"1, 2"});
}

TEST_F(SectionalLookupTest, AnActivityFromTheSeedingIsNotHandedOut) {
  regime(std::int16_t{0});
  financialYears(1);
  connection->answerPrefix(" SELECT *\r\n FROM   CG86_AZIENDECOLL", activities({{}}));
  service.GetCodiceAttivitàDaSezionale();
  EXPECT_EQ(transcript().back(), statement("20", "2024", "01"));
  expectNothingFound();
}

TEST_F(SectionalLookupTest, AFailedSeedingIsToldAndTheRegisterIsReadAllTheSame) {
  service.CPInput->InserisciAttivitàDaPeriodoPrecedente = true;
  financialYears(1);
  connection->fail(" SELECT *\r\n FROM   CG86_AZIENDECOLL", Failure::Provider, "guasto");
  connection->answerPrefix(kSectional, found(std::int32_t{2001}, "Editoria", std::int32_t{77}));
  service.GetCodiceAttivitàDaSezionale();
  expectFound(std::int32_t{2001}, "Editoria", std::int32_t{77});
  expectTrapped("guasto in InserisciAttività");
}

TEST_F(SectionalLookupTest, ASeedingThatStopsAtAnotherCompanyDoesNotChangeWhoseRegisterIsRead) {
  service.CPInput->InserisciAttivitàDaPeriodoPrecedente = true;
  financialYears(1);
  // The earlier rows lack the activity code: reading it fails in the walk, at company 12.
  connection->answerPrefix(
      " SELECT *\r\n FROM   CG86_AZIENDECOLL AS CG86 WITH(NOLOCK)\r\n WHERE  "
      "CG86.CG86_INDTIPO = 0\r\n   AND  CG86.CG86_ANNOIVA < ",
      rowSet({"CG86_ANNOIVA", "CG86_DITTACOLL_CG18"}, {std::int16_t{2023}, std::int32_t{12}}));
  service.GetCodiceAttivitàDaSezionale();
  EXPECT_EQ(service.CPInput->Pvar_Ditta, Variant{std::int32_t{12}});
  EXPECT_EQ(lines(kSectional), Lines{statement("20", "2024", "01")});
  expectState(99);
}

TEST_F(SectionalLookupTest, AFailureIsReportedUnderTheMethodsName) {
  for (const Failure failure : {Failure::Provider, Failure::Own, Failure::Foreign}) {
    connection->fail(kSectional, failure, "guasto");
    service.GetCodiceAttivitàDaSezionale();
    expectTrapped("guasto in GetCodiceAttivitàDaSezionale");
    expectNothingFound();
  }
}

// The activity that the filters select.

const std::string kFiltered =
    " SELECT CG86_CODATTIVITA, CG96_DESCRATTIVITA, CG86_IDATTIVITA\r\n"
    " FROM   CG86_AZIENDECOLL WITH(NOLOCK)\r\n";
const Text kFilteredSelect{
    {"", " SELECT CG86_CODATTIVITA, CG96_DESCRATTIVITA, CG86_IDATTIVITA"},
    {"", " FROM   CG86_AZIENDECOLL WITH(NOLOCK)"},
    {"", " LEFT OUTER JOIN CG96_ANAGATTIVITA WITH(NOLOCK)"},
    {"", "   ON  CG96_DITTA_CG18 = CG86_DITTACOLL_CG18"},
    {"", "  AND  CG96_CODATTIVITA = CG86_CODATTIVITA"},
};

class FilterLookupTest : public LookupTest {};

TEST_F(FilterLookupTest, TheStatementFollowsTheFilters) {
  for (const std::string& flags : everySet("YSAIP")) {
    TextCase which = give(flags);
    which.on += 'C';
    connection->operations.clear();
    service.GetCodiceAttività();
    EXPECT_EQ(transcript(), Lines{composed(kFilteredSelect + kWhere + Text{{"", ""}}, which)})
        << "flags: " << flags;
    EXPECT_EQ(count("Execute"), 1U);
    expectTextCommands();
    expectState(0);
  }
  expectNothingFound();
}

TEST_F(FilterLookupTest, TheFirstRowIsHandedOut) {
  ResultSet rows = found(std::int32_t{1}, "uno", std::int32_t{11});
  for (const Variant& value :
       {Variant{std::int32_t{2}}, Variant{"due"}, Variant{std::int32_t{22}}}) {
    rows.values.push_back(value);
  }
  connection->answerPrefix(kFiltered, rows);
  service.GetCodiceAttività();
  expectFound(std::int32_t{1}, "uno", std::int32_t{11});
}

TEST_F(FilterLookupTest, AMissingDescriptionIsAnEmptyText) {
  connection->answerPrefix(kFiltered, found(std::int32_t{1}, kNull, std::int32_t{11}));
  service.GetCodiceAttività();
  expectFound(std::int32_t{1}, "", std::int32_t{11});
}

TEST_F(FilterLookupTest, ARefusedCallHandsOutNulls) {
  service.CPInput->Pvar_Ditta = kNull;
  service.GetCodiceAttività();
  expectRefused("Codice azienda mancante!");
  expectNothingFound();
  EXPECT_TRUE(connection->operations.empty());
}

TEST_F(FilterLookupTest, AFailureIsReportedUnderTheMethodsName) {
  for (const Failure failure : {Failure::Provider, Failure::Own, Failure::Foreign}) {
    connection->fail(kFiltered, failure, "guasto");
    service.GetCodiceAttività();
    expectTrapped("guasto in GetCodiceAttività");
    expectNothingFound();
  }
}

// Whether the activity exists.

class ExistenceTest : public LookupTest {
 protected:
  ExistenceTest() { service.CPInput->CodiceAttività = std::int32_t{2001}; }

  /// Rows that lack their configuration, as the check of the regime counts them.
  void missingConfigurations(std::int32_t number) {
    connection->answerPrefix(" SELECT COUNT(1) AS NUM FROM   CG25_ANADITTAGEST",
                             rowSet({"NUM"}, {number}));
  }
};

TEST_F(ExistenceTest, WithoutACodeThereIsNothingToLookFor) {
  for (const Variant& missing : {Variant{}, Variant{kNull}, Variant{""}}) {
    service.CPInput->CodiceAttività = missing;
    EXPECT_TRUE(service.VerificaEsistenzaAttivita());
    expectFound("codice", "descrizione", "id");
    expectState(0);
  }
  EXPECT_TRUE(connection->operations.empty());
}

TEST_F(ExistenceTest, AnActivityThatIsFoundExists) {
  connection->answerPrefix(kFiltered, found(std::int32_t{2001}, "Editoria", std::int32_t{77}));
  EXPECT_TRUE(service.VerificaEsistenzaAttivita());
  ASSERT_EQ(transcript().size(), 1U);
  EXPECT_TRUE(transcript().front().starts_with(kFiltered));
  expectFound(std::int32_t{2001}, "Editoria", std::int32_t{77});
  expectState(0);
}

TEST_F(ExistenceTest, AFoundRowWithoutACodeCountsAsMissing) {
  for (const Variant& code : {Variant{kNull}, Variant{""}}) {
    connection->answerPrefix(kFiltered, found(code, kNull, std::int32_t{77}));
    regime(std::int16_t{3});
    connection->operations.clear();
    EXPECT_TRUE(service.VerificaEsistenzaAttivita());
    EXPECT_EQ(transcript().back(), regimeOf("20"));
  }
}

TEST_F(ExistenceTest, WithoutARegimeTheYearIsSeeded) {
  financialYears(0);
  for (const ResultSet& answer :
       {rowSet({"CG25_FLGIVAQUATER"}, {std::int16_t{0}}), rowSet({"CG25_FLGIVAQUATER"}, {kNull}),
        rowSet({"CG25_FLGIVAQUATER"}, {})}) {
    connection->answerPrefix(" SELECT CG25_FLGIVAQUATER", answer);
    connection->operations.clear();
    EXPECT_TRUE(service.VerificaEsistenzaAttivita());
    const Lines steps = transcript();
    ASSERT_EQ(steps.size(), 4U);
    EXPECT_TRUE(steps[0].starts_with(kFiltered));
    EXPECT_EQ(steps[1], regimeOf("20"));
    EXPECT_EQ(steps[2], regimeOf("20"));
    EXPECT_TRUE(steps[3].starts_with(" SELECT COUNT(1)\r FROM   CG19_ANADITTAESER"));
    expectState(0);
  }
}

TEST_F(ExistenceTest, RegimesOneAndTwoAskTheirConfigurationCheck) {
  for (const std::int16_t flag : {std::int16_t{1}, std::int16_t{2}}) {
    for (const bool configured : {true, false}) {
      regime(flag);
      missingConfigurations(configured ? 0 : 1);
      connection->operations.clear();
      // The prompt is answered No.
      EXPECT_EQ(service.VerificaEsistenzaAttivita(), configured) << flag;
      const Lines steps = transcript();
      ASSERT_EQ(steps.size(), 3U);
      EXPECT_TRUE(steps[0].starts_with(kFiltered));
      EXPECT_EQ(steps[1], regimeOf("20"));
      EXPECT_NE(steps[2].find("    AND CG25_FLGIVAQUATER = " + std::to_string(flag) + "    AND"),
                std::string::npos)
          << steps[2];
      expectState(0);
      expectNothingFound();
    }
  }
}

TEST_F(ExistenceTest, OtherRegimesAskNothing) {
  for (const std::int16_t flag : {std::int16_t{3}, std::int16_t{-1}, std::int16_t{99}}) {
    regime(flag);
    connection->operations.clear();
    EXPECT_TRUE(service.VerificaEsistenzaAttivita());
    EXPECT_EQ(count("Execute"), 2U);
    EXPECT_EQ(transcript().back(), regimeOf("20"));
    expectState(0);
  }
}

TEST_F(ExistenceTest, ARefusedCallSaysNo) {
  service.CPInput->Pvar_Ditta = "";
  EXPECT_FALSE(service.VerificaEsistenzaAttivita());
  expectRefused("Codice azienda mancante!");
  EXPECT_TRUE(connection->operations.empty());
}

TEST_F(ExistenceTest, AFailedLookupIsReportedUnderItsOwnName) {
  regime(std::int16_t{3});
  connection->fail(kFiltered, Failure::Provider, "guasto");
  static_cast<void>(service.VerificaEsistenzaAttivita());
  expectTrapped("guasto in GetCodiceAttività");
}

TEST_F(ExistenceTest, AFailedLookupCountsAsAMissingActivityAndIsToldInTheEnd) {
  connection->fail(kFiltered, Failure::Provider, "guasto");
  for (const bool configured : {true, false}) {
    missingConfigurations(configured ? 0 : 1);
    EXPECT_EQ(service.VerificaEsistenzaAttivita(), configured);
    expectTrapped("guasto in GetCodiceAttività");
  }
}

TEST_F(ExistenceTest, AFailureOfItsOwnKeepsTheResultReached) {
  service.CPInput = nullptr;
  EXPECT_TRUE(service.VerificaEsistenzaAttivita());
  expectState(99);
  EXPECT_TRUE(errore().ends_with(" in VerificaEsistenzaAttivita")) << errore();
}

}  // namespace
}  // namespace azcoll::test
