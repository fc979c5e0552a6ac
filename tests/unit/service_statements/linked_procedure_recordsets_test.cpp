#include "linked_recordsets_fixture.h"

namespace azcoll::test {
namespace {

/// A method that asks the procedure for the group, and what it filters by.
struct ProcedureMember {
  const char* name;
  Method method;
  const char* filter;  ///< parameter of the filter, "" for none
};

class ProcedureMemberTest : public LinkedRecordsetsTest,
                            public ::testing::WithParamInterface<ProcedureMember> {
 protected:
  ProcedureMemberTest() {
    service.CPInput->CodiceSede = std::int16_t{3};
    service.CPInput->CodiceIntermedio = std::int32_t{7};
    service.CPInput->Pint_TipoCF = Fornitore;
    gives({10, std::int16_t{1}, std::int16_t{2}, 30, std::int16_t{0}, std::int16_t{4}});
  }
  void call() { (service.*GetParam().method)(); }
  void gives(const std::vector<Variant>& values) {
    connection->onProcedure = [values](Parameters&) {
      return ProcedureAnswer{rowSet({"DITTA", "PRINCIPALE", "CG86_INDTIPOCONT"}, values), {}};
    };
  }
  [[nodiscard]] bool filtered() const { return *GetParam().filter != '\0'; }
  [[nodiscard]] std::map<std::string, Variant> expectedInputs() const {
    const std::string filter = GetParam().filter;
    return {
        {"@CodiceDitta", std::int32_t{20}},
        {"@DataInizioElaborazione", Date{.year = 2024, .month = 1, .day = 1}},
        {"@GestioneDuplicazioneCliFor", static_cast<std::int16_t>(filtered() ? 1 : 0)},
        {"@EscludiDittaPrincipale", std::int16_t{0}},
        {"@EscludiDittaCorrente", std::int16_t{1}},
        {"@TipoCF", filter == "@CodIntermedio" ? Variant{std::int32_t{1}} : Variant{kNull}},
        {"@CodIntermedio", filter == "@CodIntermedio" ? Variant{std::int32_t{7}} : Variant{kNull}},
        {"@CodSede", filter == "@CodSede" ? Variant{std::int16_t{3}} : Variant{kNull}}};
  }
};

TEST_P(ProcedureMemberTest, AsksForTheGroupWithoutTheCurrentCompany) {
  call();
  const auto commands = named("CommandExecute");
  ASSERT_EQ(commands.size(), 1U);
  EXPECT_EQ(commands.front().sql, kProcedure);
  // Type, time-out, prepared, execute option, on the service's connection.
  EXPECT_EQ(commands.front().options, (Ints{4, 0, 1, 4, 1}));
  EXPECT_EQ(given(commands.front()), expectedInputs());
}

TEST_P(ProcedureMemberTest, ReleasesTheCommandAndKeepsTheRecordsetConnected) {
  call();
  EXPECT_EQ(operationNames(), (Lines{"CommandExecute", "CommandRelease"}));
  const auto& found = service.CPOutput->Grst_DitteCollegate;
  ASSERT_NE(found, nullptr);
  EXPECT_TRUE(found->isOpen());
  EXPECT_EQ(companiesLeft(*found), (Lines{"10", "30"}));
  EXPECT_EQ(service.CPOutput->IndTipoCont.text(), "2");
  EXPECT_EQ(service.CPOutput->DitteCollegate, Variant{""});
  EXPECT_EQ(service.Stato, Variant{std::int16_t{0}});
  EXPECT_TRUE(service.Errore.isEmpty());
}

TEST_P(ProcedureMemberTest, TheCallerHasTheRecordsetBeforeTheCommandIsReleased) {
  leaveRecordset();
  std::shared_ptr<Recordset> atRelease;
  connection->onOperation = [&](const Operation& operation) {
    if (operation.name == "CommandRelease") {
      atRelease = service.CPOutput->Grst_DitteCollegate;
    }
  };
  connection->fail("CommandRelease", Failure::Own, "Rotto");
  call();
  EXPECT_EQ(service.Stato, Variant{std::int16_t{99}});
  EXPECT_EQ(errore(), std::string{"Rotto in "} + GetParam().name);
  ASSERT_NE(atRelease, nullptr);
  EXPECT_EQ(service.CPOutput->Grst_DitteCollegate, atRelease);
  ASSERT_TRUE(atRelease->isOpen());
  EXPECT_EQ(companiesLeft(*atRelease), (Lines{"10", "30"}));
}

TEST_P(ProcedureMemberTest, HandsOutAMissingAccountingTypeAsItIs) {
  service.CPOutput->IndTipoCont = std::int16_t{5};
  gives({10, std::int16_t{1}, kNull});
  call();
  EXPECT_TRUE(service.CPOutput->IndTipoCont.isNull());
}

TEST_P(ProcedureMemberTest, WithoutCompaniesGivesNoRecordsetAtAll) {
  leaveRecordset();
  service.CPOutput->IndTipoCont = std::int16_t{5};
  gives({});
  call();
  EXPECT_EQ(service.CPOutput->Grst_DitteCollegate, nullptr);
  EXPECT_EQ(service.CPOutput->IndTipoCont, Variant{std::int16_t{5}});
  EXPECT_EQ(count("CommandRelease"), 1U);
  EXPECT_EQ(service.Stato, Variant{std::int16_t{0}});
  EXPECT_TRUE(service.Errore.isEmpty());
}

TEST_P(ProcedureMemberTest, TheCallersFlagWins) {
  for (const auto& [flag, expected] : std::vector<std::pair<Variant, std::int16_t>>{
           {true, std::int16_t{1}}, {false, std::int16_t{0}}, {std::int16_t{1}, std::int16_t{1}}}) {
    service.CPInput->AttivaGestioneDuplicazioneCliFor = flag;
    call();
    EXPECT_EQ(given(named("CommandExecute").back())["@GestioneDuplicazioneCliFor"],
              Variant{expected});
  }
}

TEST_P(ProcedureMemberTest, OnlyAFilterThatFoundSomethingLeavesTheFlagOn) {
  call();
  EXPECT_EQ(duplicationFlag(), Variant{static_cast<std::int16_t>(filtered() ? 1 : 0)});
  gives({});
  call();
  EXPECT_EQ(duplicationFlag(), Variant{std::int16_t{0}});
}

TEST_P(ProcedureMemberTest, AYearOfZeroIsNoYear) {
  service.CPInput->AnnoSolare = std::int32_t{0};
  service.CPInput->DataInizioElaborazione = Date{.year = 2019, .month = 7, .day = 1};
  call();
  EXPECT_EQ(given(named("CommandExecute").back())["@DataInizioElaborazione"],
            Variant(Date{.year = 2019, .month = 1, .day = 1}));
}

TEST_P(ProcedureMemberTest, AYearOutsideTheCalendarIsAFailureBeforeTheProcedureIsAsked) {
  const auto earlier = leaveRecordset();
  for (const Variant& year : {Variant{std::int32_t{-1}}, Variant{std::int32_t{10000}},
                              Variant{std::int64_t{5000000000}}, Variant{"10000"}}) {
    service.CPInput->AnnoSolare = year;
    call();
    EXPECT_EQ(service.Stato, Variant{std::int16_t{99}}) << year.text();
    EXPECT_TRUE(errore().ends_with(std::string{" in "} + GetParam().name)) << errore();
  }
  EXPECT_TRUE(connection->operations.empty());
  EXPECT_EQ(service.CPOutput->Grst_DitteCollegate, earlier);
}

TEST_P(ProcedureMemberTest, AnyFailureIsReportedUnderTheMethodsName) {
  const auto earlier = leaveRecordset();
  for (const Failure failure : {Failure::Provider, Failure::Own, Failure::Foreign}) {
    connection->onProcedure = [this, failure](Parameters&) -> ProcedureAnswer {
      connection->raise(failure, "Rotto", kProcedure);
    };
    service.Stato = std::int16_t{0};
    call();
    EXPECT_EQ(service.Stato, Variant{std::int16_t{99}});
    EXPECT_EQ(errore(), std::string{"Rotto in "} + GetParam().name);
  }
  EXPECT_EQ(service.CPOutput->Grst_DitteCollegate, earlier);
}

TEST_P(ProcedureMemberTest, ARowWithoutTheAccountingTypeIsAFailureThatLeavesTheRecordset) {
  connection->onProcedure = [](Parameters&) {
    return ProcedureAnswer{rowSet({"DITTA"}, {10}), {}};
  };
  call();
  EXPECT_EQ(service.Stato, Variant{std::int16_t{99}});
  EXPECT_TRUE(errore().ends_with(std::string{" in "} + GetParam().name)) << errore();
  EXPECT_NE(service.CPOutput->Grst_DitteCollegate, nullptr);
}

INSTANTIATE_TEST_SUITE_P(
    EachMember, ProcedureMemberTest,
    ::testing::Values(
        ProcedureMember{"RecordsetDitteCollegateOPrincipale",
                        &CLSCO_AZIENDECOLL::RecordsetDitteCollegateOPrincipale, ""},
        ProcedureMember{"RecordsetDitteCollegateOPrincipalePerSedi",
                        &CLSCO_AZIENDECOLL::RecordsetDitteCollegateOPrincipalePerSedi, "@CodSede"},
        ProcedureMember{"RecordsetDitteCollegateOPrincipalePerIntermedi",
                        &CLSCO_AZIENDECOLL::RecordsetDitteCollegateOPrincipalePerIntermedi,
                        "@CodIntermedio"}),
    [](const auto& member) { return std::string{member.param.name}; });

// ------------------------------------------------------------ filters that are not given

class FilterTest : public LinkedRecordsetsTest {
 protected:
  /// Expects that the last call did nothing beyond its preamble.
  void expectNothingDone(const std::shared_ptr<Recordset>& earlier) {
    EXPECT_TRUE(connection->operations.empty());
    EXPECT_EQ(service.CPOutput->Grst_DitteCollegate, earlier);
    EXPECT_EQ(service.CPOutput->IndTipoCont, Variant{std::int16_t{5}});
    EXPECT_EQ(service.Stato, Variant{std::int16_t{0}});
    EXPECT_TRUE(service.Errore.isEmpty());
    EXPECT_EQ(duplicationFlag(), Variant{std::int16_t{0}});
    connection->operations.clear();
  }
};

TEST_F(FilterTest, WithoutABranchNothingIsDone) {
  const auto earlier = leaveRecordset();
  service.CPOutput->IndTipoCont = std::int16_t{5};
  for (const Variant& missing : {Variant{}, Variant{kNull}, Variant{""}}) {
    service.CPInput->CodiceSede = missing;
    service.CPInput->CodiceIntermedio = std::int32_t{7};
    service.RecordsetDitteCollegateOPrincipalePerSedi();
    expectNothingDone(earlier);
  }
}

TEST_F(FilterTest, WithoutAnIntermediaryNothingIsDone) {
  const auto earlier = leaveRecordset();
  service.CPOutput->IndTipoCont = std::int16_t{5};
  for (const Variant& missing : {Variant{}, Variant{kNull}, Variant{""}}) {
    service.CPInput->CodiceSede = std::int16_t{3};
    service.CPInput->CodiceIntermedio = missing;
    service.RecordsetDitteCollegateOPrincipalePerIntermedi();
    expectNothingDone(earlier);
  }
}

TEST_F(FilterTest, ZeroIsABranchAnIntermediaryAndAKind) {
  service.CPInput->CodiceSede = std::int32_t{0};
  service.RecordsetDitteCollegateOPrincipalePerSedi();
  EXPECT_EQ(given(named("CommandExecute").back())["@CodSede"], Variant{std::int32_t{0}});
  service.CPInput->CodiceIntermedio = "0";
  service.RecordsetDitteCollegateOPrincipalePerIntermedi();
  EXPECT_EQ(given(named("CommandExecute").back())["@CodIntermedio"], Variant{"0"});
  EXPECT_EQ(given(named("CommandExecute").back())["@TipoCF"], Variant{std::int32_t{0}});
}

// ------------------------------------------------------------ the preamble of the whole family

class FamilyTest : public LinkedRecordsetsTest, public ::testing::WithParamInterface<Method> {
 protected:
  FamilyTest() {
    service.CPInput->CodiceSede = std::int16_t{3};
    service.CPInput->CodiceIntermedio = std::int32_t{7};
    service.CPOutput->IndTipoCont = std::int16_t{5};
    service.CPOutput->DitteCollegate = "left over";
  }
};

TEST_P(FamilyTest, WithoutACompanyNothingIsDone) {
  const auto earlier = leaveRecordset();
  for (const Variant& missing : {Variant{}, Variant{kNull}, Variant{""}}) {
    service.CPInput->Pvar_Ditta = missing;
    (service.*GetParam())();
    EXPECT_EQ(service.Stato, Variant{std::int16_t{1}});
    EXPECT_EQ(errore(), "Codice azienda mancante!");
  }
  EXPECT_TRUE(connection->operations.empty());
  EXPECT_EQ(service.CPOutput->Grst_DitteCollegate, earlier);
  EXPECT_EQ(service.CPOutput->IndTipoCont, Variant{std::int16_t{5}});
  EXPECT_EQ(service.CPOutput->DitteCollegate, Variant{""});
}

TEST_P(FamilyTest, WithoutAConnectionNothingIsDone) {
  const auto earlier = leaveRecordset();
  service.CPInput->Connessione = nullptr;
  (service.*GetParam())();
  EXPECT_EQ(service.Stato, Variant{std::int16_t{1}});
  EXPECT_EQ(errore(), "Stringa di connessione mancante!");
  EXPECT_EQ(service.CPOutput->Grst_DitteCollegate, earlier);
  EXPECT_TRUE(connection->operations.empty());
}

TEST_P(FamilyTest, OpensAConnectionWhenItIsGivenAString) {
  service.CPInput->Connessione = nullptr;
  service.CPInput->StringaConnessione = "Data Source=prova";
  (service.*GetParam())();
  EXPECT_EQ(count("ConnectionOpen"), 1U);
  EXPECT_GT(count("Open") + count("CommandExecute"), 0U);
  EXPECT_EQ(service.Stato, Variant{std::int16_t{0}});
}

INSTANTIATE_TEST_SUITE_P(
    EachMember, FamilyTest,
    ::testing::Values(&CLSCO_AZIENDECOLL::RecordsetDitteCollegate,
                      &CLSCO_AZIENDECOLL::RecordsetDitteCollegateOPrincipale,
                      &CLSCO_AZIENDECOLL::DitteCollegatePiuPrincipale,
                      &CLSCO_AZIENDECOLL::RecordsetDitteCollegateOPrincipalePerSedi,
                      &CLSCO_AZIENDECOLL::RecordsetDitteCollegateOPrincipalePerIntermedi,
                      &CLSCO_AZIENDECOLL::RecordsetDitteCollegatePiuPrincipale,
                      &CLSCO_AZIENDECOLL::RecordsetDitteCollegatePiuPrincipaleNoPrinc,
                      &CLSCO_AZIENDECOLL::RecordsetDitteCollegatePiuPrincipalePiuDenunciaIva,
                      &CLSCO_AZIENDECOLL::RecordsetDitteCollegatePiuPrincipalePerChiuApeEsercizio),
    [](const auto& member) { return "ProcedureMember" + std::to_string(member.index + 1); });

}  // namespace
}  // namespace azcoll::test
