#include <algorithm>
#include <string>

#include "activity_fixture.h"

namespace azcoll::test {
namespace {

// From an activity back onto the company.

const std::string kQualifyingHead =
    " SELECT *\r\n FROM   CG86_AZIENDECOLL AS CG86 WITH(NOLOCK)\r\n";
const Text kCompanyUpdateTail{
    {"", " FROM   CG25_ANADITTAGEST WITH(NOLOCK)"},
    {"", " INNER  JOIN CG86_AZIENDECOLL WITH(NOLOCK)"},
    {"", "        ON CG86_DITTACOLL_CG18 = CG25_DITTA_CG18"},
    {"", " INNER  JOIN CG18_ANADITTABASE WITH(NOLOCK)"},
    {"", "    ON  CG18_DITTA = CG25_DITTA_CG18"},
};

class WriteBackTest : public ActivityTest {
 protected:
  void qualify(std::size_t number) {
    connection->answerPrefix(kQualifyingHead, activities(std::vector<Activity>(number)));
  }
  TextCase giveCompany(const std::string& on) {
    TextCase which = give(on);
    which.on += 'C';
    return which;
  }
  /// The query of the qualifying rows for the input as it stands.
  std::string query() {
    connection->operations.clear();
    service.AggiornaDatiGestionaliPerAttività();
    const Lines steps = transcript();
    return steps.empty() ? std::string{} : steps.front();
  }
};

TEST_F(WriteBackTest, TheQualifyingRowsAreRead) {
  const std::string sql = query();
  EXPECT_TRUE(
      sql.starts_with(crlf({" SELECT *", " FROM   CG86_AZIENDECOLL AS CG86 WITH(NOLOCK)",
                            " INNER  JOIN CG25_ANADITTAGEST WITH(NOLOCK)",
                            "        ON CG86_DITTACOLL_CG18 = CG25_DITTA_CG18",
                            "    AND (((SELECT CASE WHEN CG86.CG86_CODATTIVITA = (SELECT TOP 1 "
                            "A.CG86_CODATTIVITA\r\n"})))
      << sql;
  Lines parts = mainActivity("(SELECT ", "CG86");
  for (const char* const part :
       {"\r\n        ) = 1 AND CG25_FLGIVAQUATER = 2)\r\n",
        "        OR CG25_FLGIVAQUATER <> 2)\r\n", "    AND NOT EXISTS(\r\n", " SELECT 1\r\n",
        " FROM   CG86_AZIENDECOLL AS CG86_2 WITH(NOLOCK)\r\n",
        " INNER  JOIN CG25_ANADITTAGEST WITH(NOLOCK)\r\n",
        "        ON CG86_DITTACOLL_CG18 = CG25_DITTA_CG18\r\n"}) {
    parts.emplace_back(part);
  }
  for (const std::string& line : mainActivity("(SELECT ", "CG86_2")) {
    parts.push_back(line);
  }
  for (const char* const part :
       {"        ) = 1 AND CG25_FLGIVAQUATER = 2)",
        "    AND CG86_2.CG86_ANNOIVA > CG86.CG86_ANNOIVA", "    AND CG86_2.CG86_INDTIPO = 0",
        " AND CG86_2.CG86_DITTACOLL_CG18 = 20", " )", " WHERE CG86.CG86_INDTIPO = 0\r\n"}) {
    parts.emplace_back(part);
  }
  expectInOrder(sql, parts);
  expectTextCommands();
}

TEST_F(WriteBackTest, TheParenthesesOfTheQueryAreBalanced) {
  const std::string sql = query();
  int depth = 0;
  for (const char character : sql) {
    depth += character == '(' ? 1 : 0;
    depth -= character == ')' ? 1 : 0;
    ASSERT_GE(depth, 0) << sql;
  }
  EXPECT_EQ(depth, 0) << sql;
  EXPECT_GT(std::count(sql.begin(), sql.end(), '('), 10);
}

TEST_F(WriteBackTest, TheSelectionFollowsTheFilters) {
  for (const std::string& flags : everySet("YSAIP")) {
    TextCase which = giveCompany(flags);
    which.values["p"] = "CG86.";
    const std::string sql = query();
    EXPECT_TRUE(sql.ends_with("\r\n" + composed(kWhere + kLineBreak, which)))
        << "flags: " << flags << "\n"
        << sql;
  }
}

TEST_F(WriteBackTest, TheCompanyTakesTheSettingsOfTheSelectedRows) {
  qualify(1);
  for (const std::string& flags : everySet("YSAIP")) {
    const TextCase which = giveCompany(flags);
    connection->operations.clear();
    service.AggiornaDatiGestionaliPerAttività();
    const Lines steps = transcript();
    ASSERT_EQ(steps.size(), 2U) << "flags: " << flags;
    EXPECT_TRUE(steps[0].starts_with(kQualifyingHead));
    const std::string tail = composed(kCompanyUpdateTail + kWhere + kLineBreak, which);
    EXPECT_TRUE(steps[1].starts_with(" UPDATE CG25_ANADITTAGEST\r\n")) << steps[1];
    EXPECT_TRUE(steps[1].ends_with("\r\n" + tail)) << steps[1];
    EXPECT_EQ(squeezed(steps[1]), squeezed("UPDATE CG25_ANADITTAGEST SET " +
                                           assignments(kSettings, "CG25", "CG86") + " " + tail));
    expectState(0);
  }
  expectTextCommands();
  expectNoTransaction();
}

TEST_F(WriteBackTest, NoQualifyingRowWritesNothing) {
  qualify(0);
  service.AggiornaDatiGestionaliPerAttività();
  EXPECT_EQ(transcript().size(), 1U);
  expectState(0);
}

TEST_F(WriteBackTest, TheRegimeIsPartOfTheQueryNotAGuard) {
  regime(std::int16_t{2});
  qualify(1);
  service.AggiornaDatiGestionaliPerAttività();
  EXPECT_TRUE(lines(" SELECT CG25_FLGIVAQUATER").empty());
  EXPECT_EQ(lines(" UPDATE CG25_ANADITTAGEST").size(), 1U);
}

TEST_F(WriteBackTest, FailuresOfTheSettingsHaveTheirOwnName) {
  qualify(1);
  connection->fail(" UPDATE CG25_ANADITTAGEST", Failure::Provider, "guasto");
  service.AggiornaDatiGestionaliPerAttività();
  expectTrapped("guasto in AggiornaDatiGestionaliPerAttività");
  connection->fail(kQualifyingHead, Failure::Foreign, "altro guasto");
  service.AggiornaDatiGestionaliPerAttività();
  expectTrapped("altro guasto in AggiornaDatiGestionaliPerAttività");
  expectNoTransaction();
}

// The registry entry of the main activity back onto the company.

class RegistryWriteBackTest : public ActivityTest {
 protected:
  RegistryWriteBackTest() { service.CPInput->CodiceAttività = std::int32_t{2001}; }
};

TEST_F(RegistryWriteBackTest, OneBatchWritesTheThreeTables) {
  service.AggiornaDatiGestionaliPerAnagraficaAttività();
  const Lines steps = transcript();
  ASSERT_EQ(steps.size(), 1U);
  const std::string& sql = steps.front();
  EXPECT_TRUE(sql.starts_with(crlf(
      {"DECLARE @CodAzienda   as int = 20", "      , @CodAttivita  as int = 2001",
       "IF (SELECT TOP(1) CG86_CODATTIVITA ", "    FROM CG86_AZIENDECOLL ",
       "    WHERE CG86_DITTACOLL_CG18 = @CodAzienda ", "      AND CG86_FLGATTIVITAPRINC = 1 ",
       "    ORDER BY CG86_ANNOIVA DESC ", "   ) = @CodAttivita ", "BEGIN ", "  UPDATE CG25 "})))
      << sql;
  const Lines selection{"INNER JOIN CG96_ANAGATTIVITA WITH(NOLOCK)",
                        "WHERE CG96_DITTA_CG18  = @CodAzienda\r\nAND CG96_CODATTIVITA = "
                        "@CodAttivita"};
  expectInOrder(
      sql, {"\r\n  UPDATE CG25 \r\n", "\r\n  FROM  CG25_ANADITTAGEST AS CG25 \r\n", selection[0],
            selection[1], "\r\n  UPDATE CG18 \r\n", "\r\n  FROM CG18_ANADITTABASE AS CG18 \r\n",
            selection[0], selection[1], "\r\nUPDATE CG30 \r\n",
            "\r\n  FROM CG30_ANADITTADATE AS CG30 \r\n", selection[0], selection[1]});
  EXPECT_TRUE(sql.ends_with("\r\nEND ")) << sql;
  expectTextCommands();
  expectNoTransaction();
  expectState(0);
}

TEST_F(RegistryWriteBackTest, EveryColumnComesFromItsNamesake) {
  service.AggiornaDatiGestionaliPerAnagraficaAttività();
  const std::string sql = squeezed(transcript().at(0));
  expectInOrder(
      sql,
      {"UPDATE CG25 SET CG25_FLGIVAEDIT = CG96_FLGIVAEDIT, CG25_INDAGRIC = CG96_INDAGRIC, "
       "CG25_INDCATPART = CG96_INDCATPART FROM CG25_ANADITTAGEST AS CG25 INNER JOIN "
       "CG96_ANAGATTIVITA WITH(NOLOCK) ON",
       "CG25_DITTA_CG18", "WHERE",
       "UPDATE CG18 SET CG18_ATECOCOD_CG6A = CG96_CODICE_CG6A FROM CG18_ANADITTABASE AS CG18 INNER "
       "JOIN CG96_ANAGATTIVITA WITH(NOLOCK) ON",
       "CG18_DITTA", "WHERE",
       "UPDATE CG30 SET " + assignments(kDates, "CG30", "CG96") +
           " FROM CG30_ANADITTADATE AS CG30 INNER JOIN CG96_ANAGATTIVITA WITH(NOLOCK) ON",
       "CG30_DITTA_CG18", "WHERE"});
}

TEST_F(RegistryWriteBackTest, WithoutAnActivityCodeNothingIsDone) {
  for (const Variant& missing : {Variant{}, Variant{kNull}, Variant{""}}) {
    service.CPInput->CodiceAttività = missing;
    service.AggiornaDatiGestionaliPerAnagraficaAttività();
    expectState(0);
  }
  EXPECT_TRUE(connection->operations.empty());
}

TEST_F(RegistryWriteBackTest, ZeroIsAnActivityCode) {
  service.CPInput->CodiceAttività = std::int32_t{0};
  service.AggiornaDatiGestionaliPerAnagraficaAttività();
  ASSERT_EQ(count("Execute"), 1U);
  EXPECT_NE(transcript().front().find("@CodAttivita  as int = 0\r\n"), std::string::npos);
}

TEST_F(RegistryWriteBackTest, AFailureIsReportedUnderTheMethodsName) {
  for (const Failure failure : {Failure::Provider, Failure::Own, Failure::Foreign}) {
    connection->fail("DECLARE ", failure, "guasto");
    service.AggiornaDatiGestionaliPerAnagraficaAttività();
    expectTrapped("guasto in AggiornaDatiGestionaliPerAnagraficaAttività");
    expectNoTransaction();
  }
}

}  // namespace
}  // namespace azcoll::test
