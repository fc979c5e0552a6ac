#include <map>
#include <string>
#include <vector>

#include "service_fixture.h"

namespace azcoll::test {
namespace {

class GroupStatementsTest : public ServiceTest {
 protected:
  static std::map<std::string, Variant> given(const Operation& command) {
    return {command.parameters.begin(), command.parameters.end()};
  }
  static std::map<std::string, Variant> procedureInputs(const Variant& company, std::int16_t year,
                                                        std::int16_t duplication,
                                                        std::int16_t exclude) {
    return {{"@CodiceDitta", company},
            {"@DataInizioElaborazione", Date{.year = year, .month = 1, .day = 1}},
            {"@GestioneDuplicazioneCliFor", duplication},
            {"@EscludiDittaPrincipale", exclude},
            {"@EscludiDittaCorrente", exclude},
            {"@TipoCF", kNull},
            {"@CodIntermedio", kNull},
            {"@CodSede", kNull}};
  }
  void procedureRows(const std::vector<Variant>& values) {
    connection->onProcedure = [values](Parameters&) {
      return ProcedureAnswer{rowSet({"DITTA", "PRINCIPALE", "CG86_INDTIPOCONT"}, values), {}};
    };
  }
  void expectReadPattern(const std::string& sql) {
    std::map<std::string, Ints> values;
    for (const Operation& operation : connection->operations) {
      values[operation.name] = operation.options;
    }
    EXPECT_EQ(transcript(), Lines{"Open " + sql});
    EXPECT_EQ(values["CursorLocation"], Ints{3});
    EXPECT_EQ(values["CursorType"], Ints{1});
    EXPECT_EQ(values["LockType"], Ints{4});
    EXPECT_EQ(values["Open"], (Ints{-1, -1, 1}));
    EXPECT_EQ(count("RecordsetConnection"), 1U);
  }

  const std::string kLinked =
      "SELECT * FROM CG86_AZIENDECOLL WHERE CG86_INDTIPO = 0 AND CG86_DITTA_CG18 <> "
      "CG86_DITTACOLL_CG18 AND CG86_ANNOIVA = 2024 AND (CG86_DITTA_CG18 = 20 OR "
      "CG86_DITTACOLL_CG18 = 20)";
  const std::string kList =
      "SELECT CG86_DITTACOLL_CG18 AS DITTA, CG86_INDTIPOCONT FROM CG86_AZIENDECOLL WHERE "
      "CG86_INDTIPO = 0 AND CG86_DITTA_CG18 <> CG86_DITTACOLL_CG18 AND CG86_ANNOIVA = 2024 AND "
      "CG86_DITTA_CG18 = 20";
};

TEST_F(GroupStatementsTest, TakingPartInALinkIsReadWithTheStandardPattern) {
  service.ControllaDittaCollegata();
  expectReadPattern(kLinked);
  EXPECT_FALSE(service.CPOutput->Gbol_DittaPrincipale);
  EXPECT_EQ(service.Stato, Variant{std::int16_t{0}});
}

TEST_F(GroupStatementsTest, TakingPartInALinkGivesTheFirstRow) {
  connection->answer(kLinked, rowSet({"CG86_IDATTIVITA", "CG86_DITTA_CG18", "CG86_INDTIPOCONT"},
                                     {1, 15, std::int16_t{2}, 2, 12, std::int16_t{0}}));
  service.ControllaDittaCollegata();
  EXPECT_TRUE(service.CPOutput->Gbol_DittaPrincipale);
  EXPECT_EQ(service.CPOutput->Gvar_DittaPrincipale.text(), "15");
  EXPECT_EQ(service.CPOutput->IndTipoCont.text(), "2");
}

TEST_F(GroupStatementsTest, ACompanyWithoutLinksLeavesTheEarlierAnswersAlone) {
  service.CPOutput->Gbol_DittaPrincipale = true;
  service.CPOutput->Gvar_DittaPrincipale = std::int32_t{77};
  service.CPOutput->IndTipoCont = std::int16_t{5};
  service.ControllaDittaCollegata();
  EXPECT_FALSE(service.CPOutput->Gbol_DittaPrincipale);
  EXPECT_EQ(service.CPOutput->Gvar_DittaPrincipale, Variant{std::int32_t{77}});
  EXPECT_EQ(service.CPOutput->IndTipoCont, Variant{std::int16_t{5}});
}

TEST_F(GroupStatementsTest, TheYearComesFromTheProcessingDateThenFromToday) {
  const auto yearAsked = [this] {
    connection->operations.clear();
    service.DitteCollegate();
    const std::string sql = named("Open").front().sql;
    const std::string_view marker = "CG86_ANNOIVA = ";
    return sql.substr(sql.find(marker) + marker.size(), 4);
  };
  service.CPInput->DataInizioElaborazione = Date{.year = 2019, .month = 7, .day = 1};
  EXPECT_EQ(yearAsked(), "2024");
  for (const Variant& missing : {Variant{}, Variant{kNull}, Variant{""}}) {
    service.CPInput->AnnoSolare = missing;
    EXPECT_EQ(yearAsked(), "2019");
  }
  service.CPInput->DataInizioElaborazione = Variant{};
  platform->now = Date{.year = 2031, .month = 12, .day = 31};
  EXPECT_EQ(yearAsked(), "2031");
}

TEST_F(GroupStatementsTest, YearZeroIsMissingForTheProcedureOnly) {
  service.CPInput->AnnoSolare = std::int32_t{0};
  service.CPInput->DataInizioElaborazione = Date{.year = 2019, .month = 7, .day = 1};
  (void)service.GetDittaPrincipale();
  EXPECT_EQ(given(named("CommandExecute").front())["@DataInizioElaborazione"],
            Variant(Date{.year = 2019, .month = 1, .day = 1}));
  service.DitteCollegate();
  EXPECT_NE(named("Open").front().sql.find("CG86_ANNOIVA = 0 AND"), std::string::npos);
}

TEST_F(GroupStatementsTest, TheListIsReadWithTheStandardPattern) {
  service.CPOutput->IndTipoCont = std::int16_t{5};
  service.CPOutput->DitteCollegate = "left over";
  service.DitteCollegate();
  expectReadPattern(kList);
  EXPECT_EQ(service.CPOutput->DitteCollegate, Variant{""});
  EXPECT_EQ(service.CPOutput->IndTipoCont, Variant{std::int16_t{5}});
}

TEST_F(GroupStatementsTest, TheListEndsWithTheCompanyItself) {
  connection->answer(
      kList, rowSet({"DITTA", "CG86_INDTIPOCONT"}, {12, std::int16_t{2}, 15, std::int16_t{0}}));
  service.DitteCollegate();
  EXPECT_EQ(service.CPOutput->DitteCollegate, Variant{"12, 15, 20"});
  EXPECT_EQ(service.CPOutput->IndTipoCont.text(), "2");
}

TEST_F(GroupStatementsTest, TheMainCompanyComesFromTheProcedure) {
  procedureRows({12, std::int16_t{0}, std::int16_t{4}, 10, std::int16_t{1}, std::int16_t{2}});
  EXPECT_EQ(service.GetDittaPrincipale(), "10");
  EXPECT_EQ(service.CPOutput->IndTipoCont.text(), "2");

  const Operation command = named("CommandExecute").front();
  EXPECT_EQ(command.sql, "PC_GetDitteCollegate");
  // Type, time-out, prepared, execute option, on the service's connection.
  EXPECT_EQ(command.options, (Ints{4, 0, 1, 4, 1}));
  EXPECT_EQ(given(command), procedureInputs(std::int32_t{20}, 2024, 0, 0));
}

TEST_F(GroupStatementsTest, TheProceduresResultIsDetachedBeforeItIsSearched) {
  procedureRows({10, std::int16_t{1}, std::int16_t{0}});
  (void)service.GetDittaPrincipale();
  Lines order;
  for (const Operation& operation : connection->operations) {
    if (operation.name != "CommandRelease") {
      order.push_back(operation.name);
    }
  }
  EXPECT_EQ(order, (Lines{"CommandExecute", "Detach", "Find"}));
  EXPECT_EQ(named("Find").front().sql, "PRINCIPALE = 1");
  EXPECT_EQ(named("Find").front().options, (Ints{0, 1, 1}));
  EXPECT_EQ(count("CommandRelease"), 1U);
}

TEST_F(GroupStatementsTest, AMissingAccountingTypeOfTheMainCompanyIsZero) {
  procedureRows({10, std::int16_t{1}, kNull});
  EXPECT_EQ(service.GetDittaPrincipale(), "10");
  EXPECT_EQ(service.CPOutput->IndTipoCont.text(), "0");
}

TEST_F(GroupStatementsTest, WithoutAMainCompanyTheCodeIsEmptyAndTheTypeStays) {
  service.CPOutput->IndTipoCont = std::int16_t{5};
  procedureRows({12, std::int16_t{0}, std::int16_t{4}});
  EXPECT_EQ(service.GetDittaPrincipale(), "");
  EXPECT_EQ(service.CPOutput->IndTipoCont, Variant{std::int16_t{5}});
  EXPECT_EQ(service.Stato, Variant{std::int16_t{0}});
}

TEST_F(GroupStatementsTest, AFailureOfTheProcedureIsSwallowed) {
  connection->onProcedure = [this](Parameters&) -> ProcedureAnswer {
    connection->raise(Failure::Provider, "Timeout expired", kProcedure);
  };
  EXPECT_EQ(service.GetDittaPrincipale(), "");
  EXPECT_EQ(service.Stato, Variant{std::int16_t{0}});
  EXPECT_TRUE(service.Errore.isEmpty());
  service.ControllaDittaPrincipale();
  EXPECT_FALSE(service.CPOutput->Gbol_DittaPrincipale);
  EXPECT_EQ(service.Stato, Variant{std::int16_t{0}});
}

TEST_F(GroupStatementsTest, TheDuplicationFlagOfTheCallerReachesTheProcedure) {
  const std::vector<std::pair<Variant, std::int16_t>> cases{
      {Variant{true}, 1}, {Variant{false}, 0}, {Variant{std::int16_t{1}}, 1}, {Variant{""}, 0}};
  for (const auto& [flag, expected] : cases) {
    connection->operations.clear();
    service.CPInput->AttivaGestioneDuplicazioneCliFor = flag;
    (void)service.GetDittaPrincipale();
    EXPECT_EQ(given(named("CommandExecute").front())["@GestioneDuplicazioneCliFor"],
              Variant{expected});
  }
}

// Whoever is asked for a group by a database without the procedure answers that there is none; the
// flag is not looked at before, which would leave its failure in the state.
TEST_F(GroupStatementsTest, AFlagThatCannotBeReadDoesNotMatterWhereTheProcedureIsUnknown) {
  service.CPInput->AttivaGestioneDuplicazioneCliFor = Variant{std::make_shared<Object>()};
  (void)service.GetDittaPrincipale();
  EXPECT_EQ(service.Stato, Variant{std::int16_t{99}});
  connection->procedureIsUnknown = true;
  EXPECT_EQ(service.GetDittaPrincipale(), "");
  EXPECT_EQ(service.Stato, Variant{std::int16_t{0}});
  EXPECT_TRUE(service.Errore.isEmpty());
}

TEST_F(GroupStatementsTest, TheMainCompanyIsComparedAsText) {
  procedureRows({20, std::int16_t{1}, std::int16_t{0}});
  service.ControllaDittaPrincipale();
  EXPECT_TRUE(service.CPOutput->Gbol_DittaPrincipale);
  service.CPInput->Pvar_Ditta = "20";
  service.CPOutput->Gbol_DittaPrincipale = false;
  service.ControllaDittaPrincipale();
  EXPECT_TRUE(service.CPOutput->Gbol_DittaPrincipale);
  service.CPInput->Pvar_Ditta = std::int32_t{2};
  service.ControllaDittaPrincipale();
  EXPECT_FALSE(service.CPOutput->Gbol_DittaPrincipale);
}

TEST_F(GroupStatementsTest, FailuresCarryTheNameOfTheMethod) {
  for (const Failure failure : {Failure::Provider, Failure::Own, Failure::Foreign}) {
    connection->fail("SELECT", failure, "Rotto");
    service.ControllaDittaCollegata();
    EXPECT_EQ(service.Stato, Variant{std::int16_t{99}});
    EXPECT_EQ(errore(), "Rotto in ControllaDittaCollegata");
    service.DitteCollegate();
    EXPECT_EQ(service.Stato, Variant{std::int16_t{99}});
    EXPECT_EQ(errore(), "Rotto in DitteCollegate");
  }
}

class DuplicationLookupTest : public DuplicationTest {};

TEST_F(DuplicationLookupTest, TheTwoProcedureCallsExcludeNothingThenMainAndCurrentCompany) {
  service.DuplicaCliFor();
  const auto commands = named("CommandExecute");
  ASSERT_EQ(commands.size(), 2U);
  // The duplication itself is running, so its management counts as active.
  for (std::size_t call = 0; call < 2; ++call) {
    const auto exclude = static_cast<std::int16_t>(call);
    const std::map<std::string, Variant> expected{
        {"@CodiceDitta", std::int32_t{20}},
        {"@DataInizioElaborazione", Date{.year = 2024, .month = 1, .day = 1}},
        {"@GestioneDuplicazioneCliFor", std::int16_t{1}},
        {"@EscludiDittaPrincipale", exclude},
        {"@EscludiDittaCorrente", exclude},
        {"@TipoCF", kNull},
        {"@CodIntermedio", kNull},
        {"@CodSede", kNull}};
    const std::map<std::string, Variant> given{commands[call].parameters.begin(),
                                               commands[call].parameters.end()};
    EXPECT_EQ(given, expected);
    EXPECT_EQ(commands[call].options, (Ints{4, 0, 1, 4, 1}));
  }
  EXPECT_EQ(count("CommandRelease"), 2U);
}

TEST_F(DuplicationLookupTest, AFlagSwitchedOffByTheCallerStaysOff) {
  service.CPInput->AttivaGestioneDuplicazioneCliFor = false;
  service.DuplicaCliFor();
  for (const Operation& command : named("CommandExecute")) {
    EXPECT_EQ(command.parameters[2].first, "@GestioneDuplicazioneCliFor");
    EXPECT_EQ(command.parameters[2].second, Variant{std::int16_t{0}});
  }
}

TEST_F(DuplicationLookupTest, TheRunningFlagIsClearedOnEveryNormalWayOut) {
  const auto flagAfterwards = [this] {
    service.DuplicaCliFor();
    (void)service.GetDittaPrincipale();
    return named("CommandExecute").back().parameters[2].second;
  };
  EXPECT_EQ(flagAfterwards(), Variant{std::int16_t{0}});  // copied
  connection->answerPrefix("SELECT * FROM CG44_CLIFOR", rowSet({"CG44_CLIFOR"}, {}));
  EXPECT_EQ(flagAfterwards(), Variant{std::int16_t{0}});  // source row missing
  group("", {}, "");
  EXPECT_EQ(flagAfterwards(), Variant{std::int16_t{0}});  // no group
}

}  // namespace
}  // namespace azcoll::test
