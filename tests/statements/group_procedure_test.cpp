// PC_GetDitteCollegate against a second writing of the same rules, which collects the group in a
// table variable and takes out of it what is not asked for: same rows, same list, over groups drawn
// at random.

#include <algorithm>
#include <array>
#include <cstdint>
#include <gtest/gtest.h>
#include <memory>
#include <random>
#include <string>
#include <string_view>
#include <vector>

#include "data/connection.h"
#include "data/text.h"
#include "support/test_database.h"

namespace azcoll::statements {
namespace {

constexpr std::string_view kReference = R"(
CREATE PROCEDURE PC_Riferimento
    @CodiceDitta INT,
    @DataInizioElaborazione DATETIME,
    @GestioneDuplicazioneCliFor SMALLINT = 0,
    @EscludiDittaPrincipale SMALLINT = 0,
    @EscludiDittaCorrente SMALLINT = 0,
    @TipoCF INT = NULL,
    @CodIntermedio INT = NULL,
    @CodSede INT = NULL,
    @DitteCollegate VARCHAR(8000) = NULL OUTPUT
AS
BEGIN
    SET NOCOUNT ON
    DECLARE @Anno INT, @Principale INT, @Ditta INT, @IdLegame INT
    DECLARE @Gruppo TABLE (
        DITTA INT NOT NULL,
        PRINCIPALE SMALLINT NOT NULL,
        CG86_INDTIPOCONT SMALLINT NULL,
        PRIMARY KEY (PRINCIPALE, DITTA)
    )
    SET @Anno = YEAR(@DataInizioElaborazione)
    SET @DitteCollegate = ''
    SELECT @Principale = MIN(CG86_DITTA_CG18)
    FROM CG86_AZIENDECOLL
    WHERE CG86_INDTIPO = 0 AND CG86_ANNOIVA = @Anno
      AND CG86_DITTA_CG18 = @CodiceDitta AND CG86_DITTACOLL_CG18 <> CG86_DITTA_CG18
    IF @Principale IS NULL
        SELECT @Principale = MIN(CG86_DITTA_CG18)
        FROM CG86_AZIENDECOLL
        WHERE CG86_INDTIPO = 0 AND CG86_ANNOIVA = @Anno
          AND CG86_DITTACOLL_CG18 = @CodiceDitta AND CG86_DITTA_CG18 <> CG86_DITTACOLL_CG18
    IF @Principale IS NOT NULL
    BEGIN
        INSERT INTO @Gruppo (DITTA, PRINCIPALE, CG86_INDTIPOCONT)
        SELECT L.CG86_DITTACOLL_CG18, 0, L.CG86_INDTIPOCONT
        FROM CG86_AZIENDECOLL AS L
        WHERE L.CG86_INDTIPO = 0 AND L.CG86_ANNOIVA = @Anno
          AND L.CG86_DITTA_CG18 = @Principale AND L.CG86_DITTACOLL_CG18 <> @Principale
          AND NOT EXISTS (SELECT 1
                          FROM CG86_AZIENDECOLL AS P
                          WHERE P.CG86_INDTIPO = 0 AND P.CG86_ANNOIVA = @Anno
                            AND P.CG86_DITTA_CG18 = @Principale
                            AND P.CG86_DITTACOLL_CG18 = L.CG86_DITTACOLL_CG18
                            AND P.CG86_IDATTIVITA < L.CG86_IDATTIVITA)
        SELECT @IdLegame = MIN(CG86_IDATTIVITA)
        FROM CG86_AZIENDECOLL
        WHERE CG86_INDTIPO = 0 AND CG86_ANNOIVA = @Anno
          AND CG86_DITTA_CG18 = @Principale AND CG86_DITTACOLL_CG18 = @CodiceDitta
          AND CG86_DITTACOLL_CG18 <> @Principale
        IF @IdLegame IS NULL
        BEGIN
            SELECT @Ditta = MIN(DITTA) FROM @Gruppo
            SELECT @IdLegame = MIN(CG86_IDATTIVITA)
            FROM CG86_AZIENDECOLL
            WHERE CG86_INDTIPO = 0 AND CG86_ANNOIVA = @Anno
              AND CG86_DITTA_CG18 = @Principale AND CG86_DITTACOLL_CG18 = @Ditta
        END
        INSERT INTO @Gruppo (DITTA, PRINCIPALE, CG86_INDTIPOCONT)
        SELECT CG86_DITTA_CG18, 1, CG86_INDTIPOCONT
        FROM CG86_AZIENDECOLL
        WHERE CG86_IDATTIVITA = @IdLegame
    END
    IF @EscludiDittaPrincipale = 1
        DELETE FROM @Gruppo WHERE PRINCIPALE = 1
    IF @EscludiDittaCorrente = 1
        DELETE FROM @Gruppo WHERE DITTA = @CodiceDitta
    IF @CodIntermedio IS NOT NULL AND @TipoCF IS NOT NULL
        DELETE FROM @Gruppo
        WHERE NOT EXISTS (SELECT 1
                          FROM CG40_ANADITTAINTER
                          WHERE CG40_DITTA_CG18 = DITTA AND CG40_TIPOCF = @TipoCF
                            AND CG40_INTERMEDIO = @CodIntermedio)
    IF @CodSede IS NOT NULL
        DELETE FROM @Gruppo
        WHERE NOT EXISTS (SELECT 1
                          FROM CG31_ANADITTASEDI
                          WHERE CG31_DITTA_CG18 = DITTA AND CG31_CODICE = @CodSede)
    SELECT @Ditta = MIN(DITTA) FROM @Gruppo WHERE PRINCIPALE = 1
    IF @Ditta IS NOT NULL
        SET @DitteCollegate = CAST(@Ditta AS VARCHAR(11)) + ', '
    SELECT @Ditta = MIN(DITTA) FROM @Gruppo WHERE PRINCIPALE = 0
    WHILE @Ditta IS NOT NULL
    BEGIN
        SET @DitteCollegate = @DitteCollegate + CAST(@Ditta AS VARCHAR(11)) + ', '
        SELECT @Ditta = MIN(DITTA) FROM @Gruppo WHERE PRINCIPALE = 0 AND DITTA > @Ditta
    END
    IF @DitteCollegate <> ''
        SET @DitteCollegate = SUBSTRING(@DitteCollegate, 1, LEN(@DitteCollegate) - 1)
    SELECT DITTA, PRINCIPALE, CG86_INDTIPOCONT
    FROM @Gruppo
    ORDER BY PRINCIPALE DESC, DITTA
END)";

// The codes at both ends of INT, too: the procedure walks through them by size.
constexpr std::array<std::string_view, 8> kGroupCompanies{"-2147483648", "-7", "0",  "3",
                                                          "12",          "15", "40", "2147483647"};
constexpr std::array<int, 3> kGroupYears{2023, 2024, 2025};

void runText(Connection& connection, const std::string& text) {
  std::int64_t affected = 0;
  connection.execute(text, affected, CommandOption::Text);
}

/// Groups as bad data make them: several main companies of one company, several rows of one pair,
/// a company in two groups, rows of a company with itself, other kinds, missing accounting types.
void fillGroups(Connection& connection, unsigned seed) {
  std::minstd_rand random{seed};
  const auto below = [&random](unsigned limit) { return static_cast<unsigned>(random() % limit); };
  const auto company = [&] { return kGroupCompanies[below(kGroupCompanies.size())]; };
  runText(connection, "INSERT INTO CG16_ANAGGEN (CG16_CODICE, CG16_RAGSOANAG) VALUES (1, N'Una')");
  for (const std::string_view code : kGroupCompanies) {
    runText(connection,
            join("INSERT INTO CG18_ANADITTABASE (CG18_DITTA, CG18_CODICE_CG16) VALUES (", code,
                 ", 1)"));
    for (const int kind : {0, 1}) {
      if (below(2) == 0) {
        runText(connection, join("INSERT INTO CG40_ANADITTAINTER (CG40_DITTA_CG18, CG40_TIPOCF,"
                                 " CG40_INTERMEDIO) VALUES (",
                                 code, ", ", kind, ", 7)"));
      }
    }
    if (below(2) == 0) {
      runText(connection,
              join("INSERT INTO CG31_ANADITTASEDI (CG31_DITTA_CG18, CG31_CODICE) VALUES (", code,
                   ", 3)"));
    }
  }
  const unsigned links = below(40);
  const unsigned mains = 1 + below(kGroupCompanies.size());
  std::string rows;
  for (unsigned i = 0; i < links; ++i) {
    const std::string accounting = below(3) == 0 ? "NULL" : std::to_string(below(4));
    // The last year has hardly any links.
    const int year = kGroupYears[below(12) == 0 ? 2 : below(2)];
    const std::string_view main = kGroupCompanies[below(mains)];
    rows += join(rows.empty() ? "" : ", ", "(", below(5) == 0 ? 99 : 0, ", ", year, ", ",
                 accounting, ", ", main, ", ", below(6) == 0 ? main : company(), ")");
  }
  if (!rows.empty()) {
    runText(connection,
            "INSERT INTO CG86_AZIENDECOLL (CG86_INDTIPO, CG86_ANNOIVA, CG86_INDTIPOCONT,"
            " CG86_DITTA_CG18, CG86_DITTACOLL_CG18) VALUES " +
                rows);
  }
}

std::string tell(Recordset& recordset, bool withNames) {
  std::string text;
  Fields& fields = recordset.fields();
  for (std::size_t i = 0; withNames && i < fields.count(); ++i) {
    text += fields.item(i).name() + " ";
  }
  for (; !recordset.atEnd(); recordset.moveNext()) {
    text += "/";
    for (std::size_t i = 0; i < fields.count(); ++i) {
      const Variant value = fields.item(i).value();
      text +=
          join(" ", value.isNull() ? "NULL" : value.text(), ":", static_cast<int>(value.kind()));
    }
  }
  return text;
}

/// Everything that the call gives: the names, rows and kinds of its one result, and the list.
std::string called(Connection& connection, std::string_view procedure,
                   const std::string& arguments) {
  std::int64_t affected = 0;
  std::shared_ptr<Recordset> rows =
      connection.execute(join("DECLARE @Elenco VARCHAR(8000) EXEC ", procedure, " ", arguments,
                              ", @DitteCollegate = @Elenco OUTPUT SELECT @Elenco AS ELENCO"),
                         affected, CommandOption::Text);
  std::string text;
  for (int result = 0; rows; ++result, rows = rows->nextRecordset()) {
    text += tell(*rows, true) + "\n";
  }
  return text;
}

/// A session of its own: the server for tests loses table variables, which the reference uses, in
/// one that has checked a foreign key.
std::shared_ptr<Connection> freshSession(const std::shared_ptr<Connection>& filled) {
  if (test::serverConnectionString().empty()) {
    return filled;
  }
  std::shared_ptr<Connection> connection = newConnectionFor(test::serverConnectionString());
  connection->setCursorLocation(CursorLocation::Client);
  connection->open("", "", CommandOption::Unspecified);
  return connection;
}

std::shared_ptr<Connection> openGroups(unsigned seed) {
  const std::shared_ptr<Connection> filled = test::openSchema();
  test::detail::dropIfThere(*filled, "DROP PROCEDURE PC_Riferimento");
  filled->errors().clear();
  runText(*filled, std::string{kReference});
  fillGroups(*filled, seed);
  return freshSession(filled);
}

/// Calls both with everything that a caller can ask for; the companies in all answers together.
std::int64_t compareAll(Connection& connection) {
  std::int64_t rows = 0;
  for (const int year : kGroupYears) {
    for (const std::string_view company : kGroupCompanies) {
      for (const char* const exclusions : {"0, 0", "0, 1", "1, 0", "1, 1", "NULL, NULL"}) {
        for (const char* const filter :
             {"NULL, NULL, NULL", "0, 7, NULL", "1, 7, NULL", "NULL, NULL, 3", "0, 7, 3",
              "NULL, 7, NULL", "0, NULL, NULL", "0, 8, NULL"}) {
          const std::string arguments =
              join(company, ", '", year, "0101', 1, ", exclusions, ", ", filter);
          const std::string expected = called(connection, "PC_Riferimento", arguments);
          EXPECT_EQ(called(connection, "PC_GetDitteCollegate", arguments), expected) << arguments;
          rows += std::ranges::count(expected, '/') - 1;  // the list's own row
        }
      }
    }
  }
  return rows;
}

TEST(GroupProcedure, GivesTheRowsAndTheListOfItsRules) {
  // A call costs milliseconds on a server, and there are two times 960 for each seed.
  const unsigned seeds = test::serverConnectionString().empty() ? 25 : 2;
  std::int64_t rows = 0;
  for (unsigned seed = 1; seed <= seeds && !HasFailure(); ++seed) {
    SCOPED_TRACE(join("seed ", static_cast<std::int64_t>(seed)));
    rows += compareAll(*openGroups(seed));
  }
  EXPECT_GT(rows, 1000);
}

}  // namespace
}  // namespace azcoll::statements
