#include "cli_test.h"

namespace azcoll::cli {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

class Crea : public FolderTest {};

TEST_F(Crea, MakesADatabaseWithTablesAndProcedure) {
  const std::string db = path("nuovo.db");
  const Outcome outcome = azcoll("crea", "--db", db);
  EXPECT_EQ(outcome.code, ExitCode::Ok) << outcome.err;
  EXPECT_THAT(outcome.out, IsEmpty());
  EXPECT_THAT(outcome.err, HasSubstr("Creato il database"));
  EXPECT_THAT(filesLeft(), ElementsAre("nuovo.db"));
  const Outcome rows = azcoll("sql", "--db", db, "--csv", "SELECT COUNT(*) AS N FROM CG44_CLIFOR");
  EXPECT_EQ(rows.out, "N\r\n0\r\n") << rows.err;
  const Outcome method = azcoll("esegui", "GetDittaPrincipale", "--db", db, "--imposta",
                                "Pvar_Ditta=10", "--imposta", "AnnoSolare=2024");
  EXPECT_EQ(method.code, ExitCode::Ok) << method.err;
}

TEST_F(Crea, AddsTheExampleWhenAsked) {
  const std::string db = path("nuovo.db");
  EXPECT_EQ(azcoll("crea", "--esempio", "--db", db).code, ExitCode::Ok);
  const Outcome rows =
      azcoll("sql", "--db", db, "--csv", "SELECT COUNT(*) AS N FROM CG18_ANADITTABASE");
  EXPECT_EQ(rows.out, "N\r\n8\r\n") << rows.err;
}

TEST_F(Crea, DoesNotOverwriteAFile) {
  const std::string db = path("esiste.db");
  std::ofstream{db} << "contenuto";
  const Outcome outcome = azcoll("crea", "--db", db);
  EXPECT_EQ(outcome.code, ExitCode::Usage);
  EXPECT_THAT(outcome.err, HasSubstr("esiste già"));
  EXPECT_EQ(contents(db), "contenuto");
  EXPECT_THAT(filesLeft(), ElementsAre("esiste.db"));
}

TEST_F(Crea, DoesNotReplaceAFolderOrALinkThatLeadsNowhere) {
  EXPECT_EQ(azcoll("crea", "--db", folder_.path().string()).code, ExitCode::Usage);
  std::filesystem::create_symlink(path("altrove"), path("legame"));
  EXPECT_EQ(azcoll("crea", "--db", path("legame")).code, ExitCode::Usage);
  EXPECT_THAT(filesLeft(), ElementsAre("legame"));
}

TEST_F(Crea, ReportsAFolderThatDoesNotExist) {
  const Outcome outcome = azcoll("crea", "--db", path("manca/nuovo.db"));
  EXPECT_EQ(outcome.code, ExitCode::CannotOpen);
  EXPECT_THAT(outcome.err, HasSubstr("Impossibile creare il database"));
  EXPECT_THAT(filesLeft(), IsEmpty());
}

TEST_F(Crea, TakesEveryFileName) {
  for (const char* name : {"a;b.db", "a\"b.db", "l'archivio è questo.db ", " x", "a=b"}) {
    const Outcome made = azcoll("crea", "--db", path(name));
    EXPECT_EQ(made.code, ExitCode::Ok) << made.err;
    EXPECT_TRUE(std::filesystem::exists(path(name))) << name;
    EXPECT_EQ(azcoll("sql", "--db", path(name), "--csv", "SELECT 1 AS A").out, "A\r\n1\r\n");
  }
}

TEST_F(Crea, RefusesADatabaseInMemory) {
  const Outcome outcome = azcoll("crea", "--db", ":memory:");
  EXPECT_EQ(outcome.code, ExitCode::Usage);
  EXPECT_THAT(outcome.err, HasSubstr("in memoria"));
}

}  // namespace
}  // namespace azcoll::cli
