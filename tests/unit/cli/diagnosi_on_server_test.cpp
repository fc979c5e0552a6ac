// `azcoll diagnosi` and `azcoll crea --permessi` on a real server.

#include "deployment/rights.h"
#include "deployment/schema.h"
#include "server_test.h"

namespace azcoll::cli {
namespace {

using ::testing::AllOf;
using ::testing::AnyOf;
using ::testing::Contains;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::Not;
using ::testing::SizeIs;

class DiagnosisOfAServersDatabase : public ServerTest {
 protected:
  [[nodiscard]] Outcome diagnosed() const {
    return azcoll("diagnosi", "--connessione", server_, "--json");
  }

  static std::vector<std::string> messagesOf(const Outcome& outcome) {
    std::vector<std::string> messages;
    const auto json = outcome.json();
    for (const auto& problem : json["problemi"]) {
      messages.push_back(problem["messaggio"]);
    }
    return messages;
  }
};

TEST_F(DiagnosisOfAServersDatabase, TellsEachThingThatIsMissingAndMendsItWithWhatItSays) {
  installSchema();
  const Outcome whole = diagnosed();
  EXPECT_EQ(whole.code, ExitCode::Ok) << whole.out << whole.err;
  EXPECT_EQ(whole.json()["trovati"]["tabelle"], deployment::expectedSchema().tables.size());
  EXPECT_EQ(whole.json()["trovati"]["diritti"], deployment::expectedRights().grants.size());
  EXPECT_TRUE(whole.json()["note"].is_array() && whole.json()["note"].empty());

  // An older schema: a column less, a shorter text, a function of three columns, a procedure
  // without its last input, a table that only the function reads.
  run("ALTER TABLE CG38_PARCOGE DROP COLUMN CG38_GGCALACCIVA");
  run("DROP FUNCTION DBO.FNCG28_TABCODIVA");
  run("DROP TABLE CG28_TABCODIVA");
  run("CREATE FUNCTION DBO.FNCG28_TABCODIVA(@CODICE NVARCHAR(4), @DITTA INT) RETURNS TABLE AS "
      "RETURN"
      " SELECT CG18_DITTA AS CG28_DITTA_CG18, @CODICE AS CG28_CODICE, 1 AS CG28_PERCIVA"
      " FROM CG18_ANADITTABASE");
  run("DROP PROCEDURE PC_GetDitteCollegate");
  run("CREATE PROCEDURE PC_GetDitteCollegate @CodiceDitta INT, @DitteCollegate VARCHAR(8000) OUTPUT"
      " AS BEGIN SELECT @DitteCollegate = '' END");
  run("DROP TABLE MG41_CLIFORVETT");
  const Outcome older = diagnosed();
  EXPECT_EQ(older.code, ExitCode::Failed);
  EXPECT_THAT(messagesOf(older),
              ::testing::UnorderedElementsAre(
                  "Manca la tabella CG28_TABCODIVA.", "Manca la tabella MG41_CLIFORVETT.",
                  "Nella tabella CG38_PARCOGE manca la colonna CG38_GGCALACCIVA.",
                  AllOf(HasSubstr("In procedura PC_GetDitteCollegate: manca il parametro "
                                  "@DataInizioElaborazione;"),
                        Not(HasSubstr("@DitteCollegate"))),
                  "In funzione FNCG28_TABCODIVA: non restituisce la colonna CG28_DESCR."))
      << older.err;
  const auto json = older.json();
  for (const auto& problem : json["problemi"]) {
    std::string remedy = problem["rimedio"];
    if (remedy.starts_with("ALTER FUNCTION")) {  // not every server knows it
      run("DROP FUNCTION DBO.FNCG28_TABCODIVA");
      remedy.replace(0, std::string{"ALTER"}.size(), "CREATE");
    }
    run(remedy);
  }
  const Outcome fixed = diagnosed();
  EXPECT_EQ(fixed.code, ExitCode::Ok) << fixed.out;
}

TEST_F(DiagnosisOfAServersDatabase, SendsTheOwnerOfAnEmptyDatabaseToCrea) {
  const Outcome outcome = diagnosed();
  EXPECT_EQ(outcome.code, ExitCode::Failed);
  EXPECT_THAT(messagesOf(outcome),
              Contains("Il database non contiene nessuna delle tabelle aziendali."));
  EXPECT_THAT(outcome.json()["problemi"][0]["rimedio"], HasSubstr("azcoll crea --connessione"));
}

TEST_F(DiagnosisOfAServersDatabase, TellsAUserWithoutRightsHowToGetThemAndFindsThemInTheRole) {
  const Outcome made = azcoll("crea", "--connessione", server_, "--permessi");
  EXPECT_THAT(made.err, HasSubstr("Installati nel database: tabelle.sql, procedure.sql, "
                                  "permessi.sql"));
  if (made.code == ExitCode::Failed) {  // a server that takes no such grant on a function
    EXPECT_THAT(made.err, AllOf(HasSubstr("Diritti rifiutati dal server: 1 di "),
                                HasSubstr("SELECT su dbo.FNCG28_TABCODIVA: ")));
  } else {
    EXPECT_EQ(made.code, ExitCode::Ok) << made.err;
    EXPECT_THAT(made.err, Not(HasSubstr("rifiutati")));
  }

  const test::ServerLogin login{server_};
  const auto asUser = [&] {
    return azcoll("diagnosi", "--connessione", login.connectionString(), "--json");
  };
  const Outcome before = asUser();
  EXPECT_EQ(before.code, ExitCode::Failed);
  EXPECT_EQ(before.json()["utente"], login.name());
  const std::string remedy = before.json()["problemi"][0]["rimedio"];
  EXPECT_THAT(remedy, HasSubstr("ALTER ROLE azcoll_servizio ADD MEMBER [" + login.name() + "]"));
  EXPECT_THAT(before.out, Not(HasSubstr(test::ServerLogin::kPassword)));

  login.join("azcoll_servizio");
  if (made.code == ExitCode::Failed) {
    const Outcome withoutFunction = asUser();
    EXPECT_THAT(messagesOf(withoutFunction),
                Contains("All'utente " + login.name() + " manca su dbo.FNCG28_TABCODIVA: SELECT."));
    run("GRANT EXECUTE ON dbo.FNCG28_TABCODIVA TO azcoll_servizio");
    run("GRANT SELECT ON dbo.CG28_TABCODIVA TO azcoll_servizio");
  }
  const Outcome member = asUser();
  EXPECT_EQ(member.code, ExitCode::Ok) << member.out << member.err;
  EXPECT_EQ(member.json()["trovati"]["diritti"], deployment::expectedRights().grants.size());

  run("REVOKE UPDATE ON dbo.CG44_CLIFOR FROM azcoll_servizio");
  const Outcome less = asUser();
  EXPECT_EQ(less.code, ExitCode::Failed);
  EXPECT_THAT(messagesOf(less), ::testing::ElementsAre("All'utente " + login.name() +
                                                       " manca su dbo.CG44_CLIFOR: UPDATE."));
}

}  // namespace
}  // namespace azcoll::cli
