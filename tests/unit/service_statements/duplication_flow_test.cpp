#include <string>
#include <vector>

#include "data/tables.h"
#include "service_fixture.h"

namespace azcoll::test {
namespace {

constexpr const char* kAgentRead =
    " SELECT     DST.MG17_IDAGENTE AS IDAGENTE FROM       MG17_AGENTI AS SRC WITH(NOLOCK) INNER "
    "JOIN MG17_AGENTI AS DST WITH(NOLOCK)         ON DST.MG17_DITTA_CG18 = 10        AND "
    "DST.MG17_ANAGEN_CG16 = SRC.MG17_ANAGEN_CG16 WHERE      SRC.MG17_IDAGENTE = 33";

std::string intermediaryRead(const std::string& company) {
  return "SELECT * FROM CG40_ANADITTAINTER WHERE CG40_DITTA_CG18 = " + company +
         " AND CG40_TIPOCF = 0 AND CG40_INTERMEDIO = 7";
}
std::string branchRead(const std::string& company) {
  return "SELECT * FROM CG31_ANADITTASEDI WHERE CG31_DITTA_CG18 = " + company +
         " AND CG31_CODICE = 2";
}
std::string master(const std::string& values) { return std::string{kMasterInsert} + values; }

constexpr const char* kSourceRead =
    "SELECT * FROM CG44_CLIFOR WHERE CG44_DITTA_CG18 = 20 AND CG44_TIPOCF = 0 AND CG44_CLIFOR = "
    "100";
constexpr const char* kSalesRead =
    "SELECT * FROM MG19_CLIFORVA WHERE MG19_DITTA_CG18 = 20 AND MG19_TIPOCF_CG44 = 0 AND "
    "MG19_CLIFOR_CG44 = 100";
std::string fullCopy() {
  return master(
      "10, 0, 100, 5001, 3, N'C240', N'R240', N'P60', 15, 1005, 3200, 0, 7, N'IT', N'I22', "
      "91, 2, 88, 1)");
}

std::string searchOf(const std::string& list) {
  return "SELECT CG44_CLIFOR FROM CG44_CLIFOR WHERE CG44_DITTA_CG18 IN(" + list +
         ") AND CG44_TIPOCF = 0 AND CG44_CLIFOR = 100";
}

std::string reducedCopy(const std::string& company) {
  return master(company +
                ", 0, 100, 5001, 3,  Null, Null, Null, Null, Null, Null, 0, 7, N'IT', N'I22',  "
                "Null,2,  Null, 0)");
}

TEST_F(DuplicationTest, FromALinkedCompanyWritesTheMainCompanyThenEveryLinkedOne) {
  service.DuplicaCliFor();

  EXPECT_EQ(transcript(), (Lines{kProcedure,
                                 kProcedure,
                                 "BeginTrans",
                                 searchOf("30, 40, 10"),
                                 kSourceRead,
                                 kSalesRead,
                                 intermediaryRead("10"),
                                 branchRead("10"),
                                 kAgentRead,
                                 fullCopy(),
                                 intermediaryRead("30"),
                                 branchRead("30"),
                                 reducedCopy("30"),
                                 intermediaryRead("40"),
                                 branchRead("40"),
                                 reducedCopy("40"),
                                 "Numera 30",
                                 "Numera 40",
                                 "Numera 10",
                                 "CommitTrans"}));
  expectSuccess();
}

TEST_F(DuplicationTest, EveryStatementIsExecutedAsCommandText) {
  service.DuplicaCliFor();
  ASSERT_FALSE(named("Execute").empty());
  for (const Operation& operation : named("Execute")) {
    EXPECT_EQ(operation.options, std::vector<int>{1}) << operation.sql;
  }
}

TEST_F(DuplicationTest, FromTheMainCompanyWritesNoFullCopy) {
  service.CPInput->Pvar_Ditta = std::int32_t{10};
  service.DuplicaCliFor();

  const std::string source =
      "SELECT * FROM CG44_CLIFOR WHERE CG44_DITTA_CG18 = 10 AND CG44_TIPOCF = 0 AND CG44_CLIFOR = "
      "100";
  EXPECT_EQ(transcript(), (Lines{kProcedure, kProcedure, "BeginTrans", searchOf("30, 40"), source,
                                 intermediaryRead("30"), branchRead("30"), reducedCopy("30"),
                                 intermediaryRead("40"), branchRead("40"), reducedCopy("40"),
                                 "Numera 30", "Numera 40", "Numera 10", "CommitTrans"}));
  expectSuccess();
}

TEST_F(DuplicationTest, ACompanyGivenAsTextIsTheMainCompanyToo) {
  service.CPInput->Pvar_Ditta = "10";
  service.DuplicaCliFor();
  EXPECT_EQ(lines("INSERT INTO CG44_CLIFOR"), (Lines{reducedCopy("30"), reducedCopy("40")}));
  expectSuccess();
}

TEST_F(DuplicationTest, AMainCompanyAloneReceivesTheFullCopyOnly) {
  group("10", {}, "");
  service.DuplicaCliFor();

  EXPECT_EQ(transcript(), (Lines{kProcedure, kProcedure, "BeginTrans", searchOf("10"), kSourceRead,
                                 kSalesRead, intermediaryRead("10"), branchRead("10"), kAgentRead,
                                 fullCopy(), "Numera 10", "CommitTrans"}));
  expectSuccess();
}

TEST_F(DuplicationTest, TheSalesDataFollowTheMasterRowOfTheMainCompany) {
  Row sales;
  sales.set("MG19_DITTA_CG18", 20).set("MG19_TIPOCF_CG44", 0).set("MG19_CLIFOR_CG44", 100);
  for (const tables::SalesColumn& column : tables::kSalesColumns) {
    if (column.rule != tables::ValueRule::Company && column.rule != tables::ValueRule::Key) {
      sales.set(std::string{column.name}, kNull);
    }
  }
  connection->answer(kSalesRead, sales.in("MG19_CLIFORVA"));
  service.DuplicaCliFor();

  const Lines all = transcript();
  ASSERT_GT(all.size(), 11U);
  EXPECT_EQ(all[9], fullCopy());
  EXPECT_TRUE(all[10].starts_with("INSERT INTO MG19_CLIFORVA (MG19_DITTA_CG18, ")) << all[10];
  EXPECT_EQ(all[11], intermediaryRead("30"));
  EXPECT_EQ(lines("INSERT INTO MG19_CLIFORVA").size(), 1U);
  expectSuccess();
}

TEST_F(DuplicationTest, ASupplierIsSearchedReadAndWrittenWithItsOwnKind) {
  service.CPInput->Pint_TipoCF = Fornitore;
  master.set("CG44_TIPOCF", std::int16_t{1});
  script();
  service.DuplicaCliFor();

  expectOnly("SELECT CG44_CLIFOR FROM",
             "SELECT CG44_CLIFOR FROM CG44_CLIFOR WHERE CG44_DITTA_CG18 IN(30, 40, 10) AND "
             "CG44_TIPOCF = 1 AND CG44_CLIFOR = 100");
  expectOnly("SELECT * FROM CG44_CLIFOR",
             "SELECT * FROM CG44_CLIFOR WHERE CG44_DITTA_CG18 = 20 AND CG44_TIPOCF = 1 AND "
             "CG44_CLIFOR = 100");
  expectOnly("SELECT * FROM MG19_CLIFORVA",
             "SELECT * FROM MG19_CLIFORVA WHERE MG19_DITTA_CG18 = 20 AND MG19_TIPOCF_CG44 = 1 AND "
             "MG19_CLIFOR_CG44 = 100");
  EXPECT_EQ(lines("SELECT * FROM CG40").front(),
            "SELECT * FROM CG40_ANADITTAINTER WHERE CG40_DITTA_CG18 = 10 AND CG40_TIPOCF = 1 AND "
            "CG40_INTERMEDIO = 7");
  EXPECT_TRUE(lines("INSERT INTO CG44_CLIFOR")
                  .front()
                  .starts_with(std::string{kMasterInsert} + "10, 1, 100, 5001, "));
  expectSuccess();
}

TEST_F(DuplicationTest, NothingHappensWithoutAGroup) {
  group("", {}, "");
  service.DuplicaCliFor();
  EXPECT_EQ(transcript(), (Lines{kProcedure, kProcedure}));
  EXPECT_EQ(service.Stato, Variant{std::int16_t{0}});
  EXPECT_TRUE(service.Errore.isEmpty());
}

TEST_F(DuplicationTest, NothingHappensInAGroupOfAccountingTypeOne) {
  group("10", {30, 40}, "30, 40", std::int16_t{1});
  service.DuplicaCliFor();
  EXPECT_EQ(transcript(), (Lines{kProcedure, kProcedure}));
  EXPECT_EQ(service.CPOutput->IndTipoCont.text(), "1");
  EXPECT_EQ(service.Stato, Variant{std::int16_t{0}});
}

TEST_F(DuplicationTest, AccountingTypeOneIsRecognisedInEveryKindOfNumber) {
  for (const Variant& one : {Variant{std::int32_t{1}}, Variant{std::int64_t{1}},
                             Variant{*Decimal::parse("1")}, Variant{*Decimal::parse("1.00")}}) {
    group("10", {30, 40}, "30, 40", one);
    service.DuplicaCliFor();
    EXPECT_EQ(count("BeginTrans"), 0U);
  }
  group("10", {30, 40}, "30, 40", std::int16_t{10});
  service.DuplicaCliFor();
  EXPECT_EQ(count("BeginTrans"), 1U);
}

TEST_F(DuplicationTest, AnAccountingTypeLeftByAnEarlierCallCountsWhenThereIsNoMainCompany) {
  group("", {30}, "30");
  service.CPOutput->IndTipoCont = std::int16_t{1};
  service.DuplicaCliFor();
  EXPECT_EQ(transcript(), (Lines{kProcedure, kProcedure}));
}

TEST_F(DuplicationTest, AFailingListOfCompaniesLeavesTheFullCopyOnly) {
  const auto whole = connection->onProcedure;
  connection->onProcedure = [this, whole](Parameters& parameters) {
    if (parameters.item("@EscludiDittaCorrente").value().toInt16() == 1) {
      connection->raise(Failure::Provider, "Timeout expired", kProcedure);
    }
    return whole(parameters);
  };
  service.DuplicaCliFor();
  EXPECT_EQ(lines("INSERT INTO"), Lines{fullCopy()});
  expectSuccess();
}

// The recordset of the main company's look-up is detached; that of the companies to be copied to
// stays connected and open for the walk.
TEST_F(DuplicationTest, OnlyTheLookUpOfTheMainCompanyDetachesItsRows) {
  std::vector<std::string> names;
  connection->onOperation = [&](const Operation& operation) {
    if (operation.name == "CommandExecute" || operation.name == "CommandRelease" ||
        operation.name == "Detach" || operation.name == "Find") {
      names.push_back(operation.name);
    }
  };
  service.DuplicaCliFor();
  EXPECT_EQ(names, (Lines{"CommandExecute", "CommandRelease", "Detach", "Find", "CommandExecute",
                          "CommandRelease"}));
}

TEST_F(DuplicationTest, AFailingProcedureMeansThatThereIsNoGroup) {
  connection->onProcedure = [this](Parameters&) -> ProcedureAnswer {
    connection->raise(Failure::Provider, "Could not find stored procedure", kProcedure);
  };
  service.DuplicaCliFor();
  EXPECT_EQ(transcript(), (Lines{kProcedure, kProcedure}));
  EXPECT_EQ(service.Stato, Variant{std::int16_t{0}});
  EXPECT_TRUE(service.Errore.isEmpty());
}

TEST_F(DuplicationTest, AMissingCompanyIsRefusedBeforeAnyStatement) {
  for (const Variant& missing : {Variant{}, Variant{kNull}, Variant{""}}) {
    service.CPInput->Pvar_Ditta = missing;
    service.DuplicaCliFor();
    EXPECT_TRUE(connection->operations.empty());
    EXPECT_EQ(service.Stato, Variant{std::int16_t{1}});
    EXPECT_EQ(errore(), "Codice azienda mancante!");
  }
}

TEST_F(DuplicationTest, TheCallersOwnTransactionFlagIsNotConsulted) {
  service.CPInput->Pbol_InTransaction = true;
  service.DuplicaCliFor();
  EXPECT_EQ(count("BeginTrans"), 1U);
  expectSuccess();
}

}  // namespace
}  // namespace azcoll::test
