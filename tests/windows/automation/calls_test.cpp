// Calls through the registered library on the caller's own ADO objects.

#include "windows/calls.h"

#include <gtest/gtest.h>
#include <string>
#include <vector>

#include "windows/watcher.h"

namespace azcoll::test {
namespace {

TEST_F(CallsOfTheDll, SpreadACustomerOverTheGroup) {
  duplicate(5, 120);
  EXPECT_EQ(read(service, L"Stato"), Variant{std::int16_t{0}});
  EXPECT_TRUE(read(service, L"Errore").isEmpty()) << service.getText(L"Errore");
  EXPECT_EQ(read(input, L"Pvar_CliFor").toInt32(), 122);
  EXPECT_EQ(
      single("SELECT COUNT(1) FROM CG44_CLIFOR WHERE CG44_CLIFOR = 122 AND CG44_CODICE_CG16 = 3005")
          .toInt32(),
      4);
}

TEST_F(CallsOfTheDll, ReportAFailureInStatoAndErroreAndUndoIt) {
  const std::string count = "SELECT COUNT(1) FROM CG44_CLIFOR";
  const Variant before = single(count);
  duplicate(5, 140);  // its address has an apostrophe, which the statement takes as it is
  EXPECT_EQ(read(service, L"Stato"), Variant{std::int16_t{99}});
  EXPECT_EQ(service.getText(L"Errore"), "Incorrect syntax near 'Aquila'. in DuplicaClifor");
  EXPECT_EQ(single(count), before);
  EXPECT_EQ(caller.calls({"Connection.RollbackTrans"}).size(), 1U);
}

TEST_F(CallsOfTheDll, RefuseACallWithoutACompany) {
  service.call(L"DuplicaCliFor");
  EXPECT_EQ(read(service, L"Stato"), Variant{std::int16_t{1}});
  EXPECT_EQ(service.getText(L"Errore"), "Codice azienda mancante!");
}

TEST_F(CallsOfTheDll, AskTheProcedureThroughACommandWithTheOptionsOfTheContract) {
  input.put(L"Pvar_Ditta", 5);
  EXPECT_EQ(service.getText(L"GetDittaPrincipale"), "10");
  EXPECT_EQ(
      caller.calls({"Command.", "Recordset.ActiveConnection", "Recordset.Find"}),
      (std::vector<std::string>{
          "Command.ActiveConnection set(Connection)",
          "Command.CommandText let(PC_GetDitteCollegate)", "Command.CommandType let(4)",
          "Command.CommandTimeout let(0)", "Command.Prepared let(True)", "Command.Parameters()",
          "Command.Execute(out|-|4)", "Command.ActiveConnection set(Nothing)",
          "Recordset.ActiveConnection set(Nothing)", "Recordset.Find(PRINCIPALE = 1|0|1|1)"}));
}

TEST_F(CallsOfTheDll, OpenRecordsetsWithTheOptionsOfTheContract) {
  input.put(L"Pvar_Ditta", 10);
  service.call(L"DitteCollegate");
  const std::vector<std::string> calls = caller.calls(
      {"Recordset.ActiveConnection", "Recordset.Source", "Recordset.Cursor", "Recordset.Lock",
       "Recordset.Open", "Recordset.RecordCount", "Recordset.MoveFirst"});
  ASSERT_EQ(calls.size(), 8U);
  EXPECT_EQ(calls[0], "Recordset.ActiveConnection set(Connection)");
  EXPECT_TRUE(calls[1].starts_with("Recordset.Source let(SELECT CG86_DITTACOLL_CG18 AS DITTA"));
  EXPECT_EQ(calls[2], "Recordset.CursorLocation let(3)");
  EXPECT_EQ(calls[3], "Recordset.CursorType let(1)");
  EXPECT_EQ(calls[4], "Recordset.LockType let(4)");
  EXPECT_EQ(calls[5], "Recordset.Open(-|-|-1|-1|1)");
  EXPECT_EQ(calls[6], "Recordset.RecordCount()");
  EXPECT_EQ(calls[7], "Recordset.MoveFirst()");
  EXPECT_EQ(output.getText(L"DitteCollegate"), "5, 12, 15, 10");
}

TEST_F(CallsOfTheDll, RunStatementsAsTextAndInOneTransaction) {
  duplicate(5, 120);
  const std::vector<std::string> calls =
      caller.calls({"Connection.Execute", "Connection.BeginTrans", "Connection.CommitTrans",
                    "Connection.RollbackTrans", "Recordset.UpdateBatch"});
  std::vector<std::string> marks;
  for (const std::string& call : calls) {
    if (!call.starts_with("Connection.Execute")) {
      marks.push_back(call);
      continue;
    }
    EXPECT_TRUE(call.ends_with("|out|1)")) << call;
  }
  ASSERT_GE(marks.size(), 3U);
  EXPECT_EQ(marks.front(), "Connection.BeginTrans()");
  EXPECT_EQ(marks.back(), "Connection.CommitTrans()");
  for (std::size_t index = 1; index + 1 < marks.size(); ++index) {
    EXPECT_EQ(marks[index], "Recordset.UpdateBatch(3)");
  }
}

TEST_F(CallsOfTheDll, OpenAConnectionOfTheirOwnFromAText) {
  input.putRef(L"Connessione", nullptr);
  input.put(L"StringaConnessione", "Provider=embedded;Data Source=" + file_);
  input.put(L"Pvar_Ditta", 5);
  caller.clearRegister();
  EXPECT_EQ(service.getText(L"GetDittaPrincipale"), "10");
  EXPECT_EQ(caller.calls({"Connection.C", "Connection.Open"}),
            (std::vector<std::string>{
                "Connection.ConnectionString let(Provider=embedded;Data Source=" + file_ + ")",
                "Connection.CommandTimeout let(100)", "Connection.CursorLocation let(3)",
                "Connection.Open(-|||-1)"}));
  caller.clearRegister();
  service = created(kService);  // the last reference to the first one
  EXPECT_EQ(caller.calls({"Connection.Close"}), std::vector<std::string>{"Connection.Close()"});
  EXPECT_FALSE(input.getObject(L"Connessione"));
}

TEST_F(CallsOfTheDll, LeaveTheCallersConnectionOpenAtTheEnd) {
  input.put(L"Pvar_Ditta", 5);
  service.call(L"ControllaDittaCollegata");
  EXPECT_TRUE(output.getFlag(L"Gbol_DittaPrincipale"));
  service = created(kService);
  EXPECT_EQ(caller.connection().getNumber(L"State"), 1);
  EXPECT_FALSE(input.getObject(L"Connessione"));
}

TEST_F(CallsOfTheDll, LetGoOfEveryObjectOfTheCaller) {
  duplicate(5, 120);
  service = created(kService);
  input = ado::Dispatch{service.getObject(L"CPInput")};
  output = ado::Dispatch{service.getObject(L"CPOutput")};
  EXPECT_EQ(caller.liveObjects(), 1);  // the caller's own connection
  input.putRef(L"Connessione", caller.object());
}

TEST_F(CallsOfTheDll, AskThePersonInFrontOfTheScreen) {
  input.put(L"Pvar_Ditta", 5);
  input.put(L"AnnoSolare", 2030);
  Watcher watcher{IDNO};
  EXPECT_FALSE(service.getFlag(L"ControllaDittaNonCollegata"));
  EXPECT_EQ(read(service, L"Stato"), Variant{std::int16_t{0}});
  EXPECT_TRUE(watcher.asksYesOrNo());
  const std::string text = watcher.text();
  EXPECT_TRUE(text.starts_with(
      "L'azienda corrente gestisce l'esercizio delle multi attività su più aziende, ma non "
      "esistono collegamenti per l'anno 2030."))
      << text;
  EXPECT_TRUE(text.ends_with("Si vuole procedere al collegamento?")) << text;
}

TEST_F(CallsOfTheDll, HandOverTheVeryRecordsetThatTheyOpened) {
  input.put(L"Pvar_Ditta", 10);
  service.call(L"RecordsetDitteCollegatePiuPrincipale");
  ado::Dispatch rows{output.getObject(L"Grst_DitteCollegate")};
  EXPECT_EQ(output.getObject(L"Grst_DitteCollegate").get(), rows.object().get());
  EXPECT_GT(rows.getNumber(L"RecordCount"), 1);
  EXPECT_EQ(rows.getNumber(L"CursorLocation"), 3);
  EXPECT_EQ(rows.getNumber(L"CursorType"), 1);
  EXPECT_EQ(rows.getNumber(L"LockType"), 4);
  service = created(kService);
  rows.call(L"MoveFirst");
  ado::Dispatch field{rows.getObject(L"Fields", {"DITTA"})};
  EXPECT_EQ(field.getNumber(L"Value"), 10) << "the caller's, when the service is gone";
}

TEST_F(CallsOfTheDll, TakeValuesGivenByReference) {
  ado::ScopedVariant company = ado::toVariant(5);
  ado::ScopedVariant reference;
  reference.raw().vt = VT_BYREF | VT_VARIANT;
  reference.raw().pvarVal = &company.raw();
  DISPID assigned = DISPID_PROPERTYPUT;
  DISPPARAMS parameters{&reference.raw(), &assigned, 1, 1};
  constexpr DISPID kCompanyField = 3;
  EXPECT_EQ(input.object()->Invoke(kCompanyField, IID_NULL, LOCALE_USER_DEFAULT,
                                   DISPATCH_PROPERTYPUT, &parameters, nullptr, nullptr, nullptr),
            S_OK);
  EXPECT_EQ(service.getText(L"GetDittaPrincipale"), "10");
}

}  // namespace
}  // namespace azcoll::test
