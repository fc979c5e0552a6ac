// The diagnosis of a server's database: the catalogue answers as a test writes it down.

#include <algorithm>
#include <cctype>
#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "gmock/gmock.h"
#include "gtest/gtest.h"

#include "data/error.h"
#include "deployment/diagnosis.h"
#include "deployment/rights.h"
#include "deployment/schema.h"
#include "support/scripted_connection.h"

namespace azcoll::deployment {
namespace {

using azcoll::test::Failure;
using azcoll::test::rowSet;
using azcoll::test::ScriptedConnection;
using ::testing::AllOf;
using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::SizeIs;
using ::testing::StartsWith;
using ::testing::ThrowsMessage;

/// A server's catalogue, as its views would report a schema. Made from the scripts, then changed.
class DiagnosisOnAServer : public ::testing::Test {
 protected:
  Schema there = expectedSchema();
  std::vector<Grant> held = expectedRights().grants;
  std::string user = "servizio";
  std::string defaultSchema = "dbo";
  Variant inRole = 1;
  int seesEverything = 1;
  int ignoresCase = 1;
  std::shared_ptr<ScriptedConnection> server = std::make_shared<ScriptedConnection>();

  static std::string ownerOf(const std::string& owner) { return owner.empty() ? "dbo" : owner; }

  static std::string lower(std::string text) {
    std::ranges::transform(text, text.begin(),
                           [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
    return text;
  }

  static void addType(std::vector<Variant>& row, const ColumnType& type) {
    const bool wide = type.name.starts_with("N") && type.length > 0;
    const bool decimal = type.name == "DECIMAL" || type.name == "NUMERIC";
    row.emplace_back(lower(type.name));
    row.emplace_back(static_cast<std::int16_t>(decimal ? 9 : type.length * (wide ? 2 : 1)));
    row.emplace_back(static_cast<std::int16_t>(decimal ? type.length : 0));
    row.emplace_back(static_cast<std::int16_t>(type.scale));
  }

  void answerObjects() {
    std::vector<Variant> rows;
    for (const SchemaTable& table : there.tables) {
      rows.insert(rows.end(), {ownerOf(table.owner), table.name, "U "});
    }
    for (const SchemaRoutine& routine : there.routines) {
      rows.insert(rows.end(),
                  {ownerOf(routine.owner), routine.name, routine.isFunction ? "IF" : "P "});
    }
    server->answerPrefix("SELECT S.name AS PROPRIETARIO, O.name AS OGGETTO, O.type",
                         rowSet({"PROPRIETARIO", "OGGETTO", "TIPO"}, rows));
  }

  void answerColumns() {
    std::vector<Variant> rows;
    for (const SchemaTable& each : there.tables) {
      for (const SchemaColumn& column : each.columns) {
        rows.insert(rows.end(), {ownerOf(each.owner), each.name, column.name});
        addType(rows, column.type);
        rows.insert(rows.end(),
                    {column.nullable ? 1 : 0, column.identity ? 1 : 0, column.hasDefault ? 1 : 0});
      }
    }
    server->answerPrefix("SELECT S.name AS PROPRIETARIO, O.name AS OGGETTO, C.name",
                         rowSet({"PROPRIETARIO", "OGGETTO", "NOME", "TIPO", "BYTE_MAX", "CIFRE",
                                 "DECIMALI", "AMMETTE_NULL", "IDENTITA", "HA_DEFAULT"},
                                rows));
  }

  void answerParameters() {
    std::vector<Variant> rows;
    for (const SchemaRoutine& routine : there.routines) {
      for (const SchemaParameter& parameter : routine.parameters) {
        rows.insert(rows.end(), {ownerOf(routine.owner), routine.name, parameter.name});
        addType(rows, parameter.type);
        rows.emplace_back(parameter.output ? 1 : 0);
      }
    }
    server->answerPrefix("SELECT S.name AS PROPRIETARIO, O.name AS OGGETTO, P.name",
                         rowSet({"PROPRIETARIO", "OGGETTO", "NOME", "TIPO", "BYTE_MAX", "CIFRE",
                                 "DECIMALI", "USCITA"},
                                rows));
  }

  /// What a function gives, without a row.
  void answerFunctions() {
    for (const SchemaRoutine& routine : there.routines) {
      if (routine.isFunction) {
        std::vector<std::string> names;
        for (const SchemaColumn& column : routine.columns) {
          names.push_back(column.name);
        }
        server->answerPrefix("SELECT * FROM [" + ownerOf(routine.owner) + "].[" + routine.name +
                                 "](NULL, NULL) WHERE 1 = 0",
                             rowSet(names, {}));
      }
    }
  }

  /// Numbers as they are asked: one for each right on an object that is there, in the order of the
  /// script.
  void answerRights() {
    std::vector<Variant> rows;
    std::int32_t number = 0;
    for (const Grant& grant : expectedRights().grants) {
      if (there.table(grant.object) != nullptr || there.routine(grant.object) != nullptr) {
        const bool has = std::ranges::find(held, grant) != held.end();
        rows.insert(rows.end(), {number++, has ? 1 : 0});
      }
    }
    server->answerPrefix("SELECT 0 AS NUMERO, HAS_PERMS_BY_NAME",
                         rowSet({"NUMERO", "CONCESSO"}, rows));
  }

  Diagnosis diagnosed() {
    server->answerPrefix(
        "SELECT USER_NAME()",
        rowSet({"UTENTE", "SCHEMA_UTENTE", "NEL_RUOLO", "VEDE_TUTTO", "SENZA_MAIUSCOLE"},
               {user, defaultSchema, inRole, seesEverything, ignoresCase}));
    answerObjects();
    answerColumns();
    answerParameters();
    answerFunctions();
    answerRights();
    return diagnose(*server);
  }

  /// The one finding that there is.
  Finding only(const Diagnosis& diagnosis) {
    EXPECT_THAT(diagnosis.findings, SizeIs(1));
    return diagnosis.findings.empty() ? Finding{} : diagnosis.findings.front();
  }

  SchemaTable& table(const std::string& name) {
    return *std::ranges::find(there.tables, name, &SchemaTable::name);
  }
  static SchemaColumn& column(SchemaTable& table, const std::string& name) {
    return *std::ranges::find(table.columns, name, &SchemaColumn::name);
  }
  SchemaRoutine& procedure() {
    return *std::ranges::find(there.routines, "PC_GetDitteCollegate", &SchemaRoutine::name);
  }
};

TEST_F(DiagnosisOnAServer, FindsNothingWhenEverythingIsThere) {
  const Diagnosis diagnosis = diagnosed();
  EXPECT_THAT(diagnosis.findings, IsEmpty());
  EXPECT_THAT(diagnosis.notes, IsEmpty());
  EXPECT_EQ(diagnosis.tables, expectedSchema().tables.size());
  EXPECT_EQ(diagnosis.routines, 2U);
  EXPECT_EQ(diagnosis.rights, expectedRights().grants.size());
  EXPECT_TRUE(diagnosis.hasUsers);
  EXPECT_EQ(diagnosis.user, "servizio");
}

TEST_F(DiagnosisOnAServer, OnlyAsks) {
  diagnosed();
  for (const auto& operation : server->operations) {
    EXPECT_EQ(operation.name, "Execute");
    EXPECT_THAT(operation.sql, StartsWith("SELECT "));
  }
  EXPECT_THAT(server->operations, SizeIs(6));
}

TEST_F(DiagnosisOnAServer, AsksForTheRightsUnderQuotedNames) {
  diagnosed();
  const std::string& question = server->operations.back().sql;
  EXPECT_THAT(question,
              AllOf(StartsWith("SELECT 0 AS NUMERO, HAS_PERMS_BY_NAME(N'[dbo].[CG16_ANAGGEN]', "
                               "N'OBJECT', N'SELECT') AS CONCESSO UNION ALL SELECT 1 AS NUMERO"),
                    HasSubstr("HAS_PERMS_BY_NAME(N'[dbo].[PC_GetDitteCollegate]', N'OBJECT', "
                              "N'EXECUTE')")));
}

TEST_F(DiagnosisOnAServer, ReportsAMissingTableWithItsIndexes) {
  std::erase_if(there.tables, [](const SchemaTable& each) { return each.name == "MG17_AGENTI"; });
  const Finding finding = only(diagnosed());
  EXPECT_EQ(finding.kind, "tabella");
  EXPECT_EQ(finding.message, "Manca la tabella MG17_AGENTI.");
  EXPECT_THAT(finding.remedy, AllOf(StartsWith("CREATE TABLE MG17_AGENTI ("),
                                    HasSubstr("CREATE INDEX IX_MG17_CG18 ON MG17_AGENTI")));
}

TEST_F(DiagnosisOnAServer, ReportsAMissingColumnWithTheStatementThatAddsIt) {
  std::erase_if(table("CG38_PARCOGE").columns,
                [](const SchemaColumn& each) { return each.name == "CG38_GGCALACCIVA"; });
  EXPECT_EQ(only(diagnosed()).remedy,
            "ALTER TABLE dbo.CG38_PARCOGE ADD CG38_GGCALACCIVA SMALLINT NULL");
}

TEST_F(DiagnosisOnAServer, AddsAColumnWithItsDefault) {
  std::erase_if(table("CG44_CLIFOR").columns,
                [](const SchemaColumn& each) { return each.name == "CG44_FLGATTIVO"; });
  EXPECT_EQ(only(diagnosed()).remedy,
            "ALTER TABLE dbo.CG44_CLIFOR ADD CG44_FLGATTIVO SMALLINT NOT NULL CONSTRAINT "
            "DF_CG44_FLGATTIVO DEFAULT (1)");
}

TEST_F(DiagnosisOnAServer, ReportsAWrongTypeWithTheStatementThatChangesIt) {
  column(table("CG16_ANAGGEN"), "CG16_RAGSOANAG").type.length = 40;
  const Finding finding = only(diagnosed());
  EXPECT_EQ(finding.message,
            "La colonna CG16_RAGSOANAG di CG16_ANAGGEN è NVARCHAR(40), serve NVARCHAR(80).");
  EXPECT_EQ(finding.remedy,
            "ALTER TABLE dbo.CG16_ANAGGEN ALTER COLUMN CG16_RAGSOANAG NVARCHAR(80) NOT NULL");
}

TEST_F(DiagnosisOnAServer, TakesNumericForDecimalAndALongTextForAShortOne) {
  column(table("CG38_PARCOGE"), "CG38_PERCACCIVA").type.name = "NUMERIC";
  column(table("CG38_PARCOGE"), "CG38_PERCACCIVA").type.length = 9;
  column(table("CG16_ANAGGEN"), "CG16_RAGSOANAG").type.length = -1;
  EXPECT_THAT(diagnosed().findings, IsEmpty());
}

TEST_F(DiagnosisOnAServer, ReportsWhatTheServiceCouldNotWrite) {
  column(table("CG86_AZIENDECOLL"), "CG86_INDCOMLETTINT").hasDefault = false;
  EXPECT_EQ(only(diagnosed()).remedy,
            "ALTER TABLE dbo.CG86_AZIENDECOLL ADD CONSTRAINT DF_CG86_INDCOMLETTINT DEFAULT (0) "
            "FOR CG86_INDCOMLETTINT");
}

TEST_F(DiagnosisOnAServer, ReportsAParameterThatTheProcedureLacksAndKeepsItsRights) {
  procedure().parameters.erase(procedure().parameters.begin() + 7);
  procedure().parameters.back().output = false;
  const Finding finding = only(diagnosed());
  EXPECT_EQ(finding.message,
            "In procedura PC_GetDitteCollegate: manca il parametro @CodSede; il parametro "
            "@DitteCollegate non è OUTPUT.");
  EXPECT_THAT(finding.remedy, StartsWith("ALTER PROCEDURE PC_GetDitteCollegate\n"));
}

TEST_F(DiagnosisOnAServer, ReportsARightThatAMemberOfTheRoleLacks) {
  std::erase(held, Grant{"UPDATE", "dbo", "CG44_CLIFOR"});
  std::erase(held, Grant{"DELETE", "dbo", "CG44_CLIFOR"});
  const Diagnosis diagnosis = diagnosed();
  const Finding finding = only(diagnosis);
  EXPECT_EQ(finding.message, "All'utente servizio manca su dbo.CG44_CLIFOR: UPDATE, DELETE.");
  EXPECT_EQ(finding.remedy, "GRANT UPDATE, DELETE ON dbo.CG44_CLIFOR TO azcoll_servizio");
  EXPECT_THAT(diagnosis.notes, IsEmpty());
}

TEST_F(DiagnosisOnAServer, CountsAFunctionThatCanBeReadAsGranted) {
  std::erase(held, Grant{"SELECT", "dbo", "FNCG28_TABCODIVA"});
  EXPECT_THAT(diagnosed().findings, IsEmpty());
  server->fail("SELECT 1 AS LETTA FROM [dbo].[FNCG28_TABCODIVA](0, 0)", Failure::Provider,
               "permission denied");
  const Finding finding = only(diagnose(*server));
  EXPECT_EQ(finding.message, "All'utente servizio manca su dbo.FNCG28_TABCODIVA: SELECT.");
  EXPECT_THAT(finding.remedy,
              AllOf(StartsWith("GRANT SELECT ON dbo.FNCG28_TABCODIVA TO azcoll_servizio\n"),
                    HasSubstr("\nGRANT EXECUTE ON dbo.FNCG28_TABCODIVA TO azcoll_servizio")));
}

TEST_F(DiagnosisOnAServer, SendsAUserWithoutRightsIntoTheRole) {
  std::erase(held, Grant{"EXECUTE", "dbo", "PC_GetDitteCollegate"});
  inRole = 0;
  Diagnosis diagnosis = diagnosed();
  EXPECT_EQ(only(diagnosis).remedy, "GRANT EXECUTE ON dbo.PC_GetDitteCollegate TO [servizio]");
  EXPECT_THAT(diagnosis.notes,
              ElementsAre(HasSubstr(": ALTER ROLE azcoll_servizio ADD MEMBER [servizio]")));
  inRole = kNull;
  EXPECT_THAT(diagnosed().notes, ElementsAre(HasSubstr("eseguire schema/permessi.sql")));
}

TEST_F(DiagnosisOnAServer, DoesNotTakeForMissingWhatTheUserNeitherSeesNorNeeds) {
  std::erase_if(there.tables,
                [](const SchemaTable& each) { return each.name == "CG28_TABCODIVA"; });
  seesEverything = 0;
  const Diagnosis diagnosis = diagnosed();
  EXPECT_THAT(diagnosis.findings, IsEmpty());
  EXPECT_THAT(diagnosis.notes, ElementsAre(HasSubstr("la tabella CG28_TABCODIVA")));
  seesEverything = 1;
  EXPECT_EQ(only(diagnosed()).message, "Manca la tabella CG28_TABCODIVA.");
}

TEST_F(DiagnosisOnAServer, SaysThatATableMayOnlyBeHidden) {
  std::erase_if(there.tables, [](const SchemaTable& each) { return each.name == "CG44_CLIFOR"; });
  seesEverything = 0;
  const Finding finding = only(diagnosed());
  EXPECT_EQ(finding.message, "Manca la tabella CG44_CLIFOR, o l'utente non ha diritti su di essa.");
  EXPECT_THAT(finding.remedy,
              AllOf(StartsWith("-- Se c'è e l'utente non la vede:\n"
                               "GRANT SELECT ON dbo.CG44_CLIFOR TO azcoll_servizio\n"),
                    HasSubstr("-- Se non c'è:\nCREATE TABLE CG44_CLIFOR (")));
}

TEST_F(DiagnosisOnAServer, ReportsAUserWhoSeesNothingAboutRights) {
  there = {};
  seesEverything = 0;
  inRole = 0;
  const Finding finding = only(diagnosed());
  EXPECT_EQ(finding.message,
            "L'utente servizio non vede nessuna delle tabelle aziendali: il database è vuoto, o "
            "mancano i diritti.");
  EXPECT_THAT(finding.remedy, HasSubstr("ALTER ROLE azcoll_servizio ADD MEMBER [servizio]"));
}

TEST_F(DiagnosisOnAServer, LooksWhereAStatementFindsItsTables) {
  defaultSchema = "contabilita";
  SchemaTable own = table("CG16_ANAGGEN");
  own.owner = "contabilita";
  own.columns.pop_back();
  there.tables.insert(there.tables.begin(), own);
  EXPECT_THAT(only(diagnosed()).remedy,
              StartsWith("ALTER TABLE contabilita.CG16_ANAGGEN ADD CG16_RAGSOANAG"));
  std::rotate(there.tables.begin(), there.tables.begin() + 1, there.tables.end());
  EXPECT_THAT(only(diagnosed()).remedy, StartsWith("ALTER TABLE contabilita.CG16_ANAGGEN ADD"));
}

TEST_F(DiagnosisOnAServer, ReportsADatabaseThatMindsTheLetterCase) {
  ignoresCase = 0;
  EXPECT_EQ(only(diagnosed()).kind, "confronto");
}

TEST_F(DiagnosisOnAServer, SendsANewcomerToCreaWhenNothingIsThere) {
  there = {};
  const Finding finding = only(diagnosed());
  EXPECT_EQ(finding.kind, "vuoto");
  EXPECT_THAT(finding.remedy, StartsWith("azcoll crea --connessione"));
}

constexpr const char* kUserQuestion = "SELECT USER_NAME()";
constexpr const char* kObjectsQuestion = "SELECT S.name AS PROPRIETARIO, O.name AS OGGETTO, O.type";
constexpr const char* kColumnsQuestion = "SELECT S.name AS PROPRIETARIO, O.name AS OGGETTO, C.name";
constexpr const char* kParametersQuestion =
    "SELECT S.name AS PROPRIETARIO, O.name AS OGGETTO, P.name";
constexpr const char* kFunctionQuestion = "SELECT * FROM [dbo].[FNCG28_TABCODIVA](NULL, NULL)";
constexpr const char* kRightsQuestion = "SELECT 0 AS NUMERO, HAS_PERMS_BY_NAME";

TEST_F(DiagnosisOnAServer, ReportsAColumnThatTheFunctionDoesNotGive) {
  std::ranges::find(there.routines, "FNCG28_TABCODIVA", &SchemaRoutine::name)->columns.pop_back();
  EXPECT_EQ(only(diagnosed()).message,
            "In funzione FNCG28_TABCODIVA: non restituisce la colonna CG28_PERCIVA.");
}

TEST_F(DiagnosisOnAServer, FindsAFunctionThatIsUsableThoughNotListed) {
  diagnosed();
  std::erase_if(there.routines, [](const SchemaRoutine& each) { return each.isFunction; });
  answerObjects();
  answerParameters();
  const Diagnosis usable = diagnose(*server);
  EXPECT_THAT(usable.findings, IsEmpty());
  EXPECT_THAT(usable.unchecked, IsEmpty());
  server->fail(kFunctionQuestion, Failure::Provider, "Invalid object name");
  EXPECT_THAT(only(diagnose(*server)).message, StartsWith("Manca la funzione FNCG28_TABCODIVA"));
}

TEST_F(DiagnosisOnAServer, PassesOnThatTheListOfObjectsIsRefused) {
  diagnosed();
  server->fail(kObjectsQuestion, Failure::Provider, "The SELECT permission was denied");
  EXPECT_THAT([&] { static_cast<void>(diagnose(*server)); },
              ThrowsMessage<Error>(HasSubstr("The SELECT permission was denied")));
}

/// A question that the server refuses, what is said of it, and a fault that is found all the same.
TEST_F(DiagnosisOnAServer, ReportsWhatTheServerDoesNotSayAndChecksTheRest) {
  struct Refused {
    const char* question;
    const char* reported;
  };
  std::erase_if(there.tables, [](const SchemaTable& each) { return each.name == "MG17_AGENTI"; });
  for (const Refused& refused :
       {Refused{kUserQuestion, "chi è l'utente, e se il database distingue le maiuscole"},
        Refused{kColumnsQuestion, "le colonne delle tabelle"},
        Refused{kParametersQuestion, "i parametri della procedura e della funzione"},
        Refused{kFunctionQuestion, "le colonne della funzione FNCG28_TABCODIVA"},
        Refused{kRightsQuestion, "i diritti dell'utente"}}) {
    server = std::make_shared<ScriptedConnection>();
    diagnosed();
    server->fail(refused.question, Failure::Provider, "relation does not exist");
    const Diagnosis diagnosis = diagnose(*server);
    EXPECT_THAT(diagnosis.unchecked,
                ElementsAre(std::string{refused.reported} +
                            ": Errore 50000 (HY000): relation does not exist"));
    EXPECT_THAT(only(diagnosis).message, StartsWith("Manca la tabella MG17_AGENTI"));
  }
}

TEST_F(DiagnosisOnAServer, SaysWhatItCouldNotCheckThoughNothingElseIsWrong) {
  diagnosed();
  server->fail(kParametersQuestion, Failure::Provider, "relation does not exist");
  const Diagnosis diagnosis = diagnose(*server);
  EXPECT_THAT(diagnosis.findings, IsEmpty());
  EXPECT_THAT(diagnosis.unchecked, SizeIs(1));
}

TEST_F(DiagnosisOnAServer, DoesNotTakeALostConnectionForARefusal) {
  for (const char* question :
       {kUserQuestion, kColumnsQuestion, kParametersQuestion, kFunctionQuestion, kRightsQuestion}) {
    server = std::make_shared<ScriptedConnection>();
    diagnosed();
    server->fail(question, Failure::Lost, "caduta");
    EXPECT_THAT([&] { static_cast<void>(diagnose(*server)); },
                ThrowsMessage<Error>(HasSubstr("caduta")))
        << question;
  }
}

TEST_F(DiagnosisOnAServer, DoesNotGuessWhoTheUserIs) {
  diagnosed();
  server->answerPrefix(kUserQuestion, rowSet({"ALTRO"}, {1}));
  const Diagnosis diagnosis = diagnose(*server);
  EXPECT_THAT(diagnosis.unchecked, ElementsAre(HasSubstr("Il risultato non ha la colonna")));
  EXPECT_EQ(diagnosis.user, "");
}

}  // namespace
}  // namespace azcoll::deployment
