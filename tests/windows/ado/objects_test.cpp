// The provider over ADO's objects: identity, errors, parameters, detaching, late binding.

#include <cstdlib>
#include <gtest/gtest.h>
#include <map>
#include <string>

#include "ado/automated.h"
#include "ado/connection.h"
#include "ado/dispatch.h"
#include "ado/hresult.h"
#include "data/connection.h"
#include "data/error.h"
#include "windows/client.h"

// The platform's interfaces have no virtual destructor, whoever implements them.
#pragma GCC diagnostic ignored "-Wnon-virtual-dtor"

namespace azcoll::test {
namespace {

/// A connection of the caller's to the example database, wrapped.
class AdoObjects : public ::testing::Test {
 protected:
  void SetUp() override {
    const char* const file = std::getenv("AZCOLL_TEST_DATABASE");
    ASSERT_NE(file, nullptr) << "tools/windows-tests.sh sets it";
    caller.open(file);
    connection = ado::wrapConnection(caller.connection().object());
  }
  std::shared_ptr<Recordset> execute(const std::string& sql) {
    std::int64_t affected = 0;
    return connection->execute(sql, affected, CommandOption::Text);
  }
  std::shared_ptr<Recordset> opened(const std::string& sql) {
    std::shared_ptr<Recordset> rows = connection->newRecordset();
    rows->setActiveConnection(connection);
    rows->setSource(sql);
    rows->setCursorLocation(CursorLocation::Client);
    rows->open(CursorType::Keyset, LockType::BatchOptimistic, CommandOption::Text);
    return rows;
  }

  AdoCaller caller;
  std::shared_ptr<Connection> connection;
};

TEST_F(AdoObjects, AreHandedBackAsTheVeryObjects) {
  EXPECT_EQ(ado::dispatchOf(connection), caller.object());
  const ado::ComPtr<IDispatch> rows = ado::createObject(L"ADODB.Recordset");
  EXPECT_EQ(ado::dispatchOf(ado::wrapRecordset(rows)), rows.get());
  EXPECT_EQ(ado::wrapConnection({}), nullptr);
  EXPECT_EQ(ado::wrapRecordset({}), nullptr);
}

TEST_F(AdoObjects, TellTheProvidersErrorsUntilTheyAreCleared) {
  EXPECT_EQ(connection->errors().count(), 0U);
  try {
    execute("SELECT CG44_COLORE FROM CG44_CLIFOR");
    ADD_FAILURE() << "such a column was found";
  } catch (const Error& error) {
    EXPECT_TRUE(error.fromProvider());
    EXPECT_EQ(error.description(), "Invalid column name 'CG44_COLORE'.");
  }
  ASSERT_EQ(connection->errors().count(), 1U);
  const ErrorInfo info = connection->errors().item(0);
  EXPECT_EQ(info.description, "Invalid column name 'CG44_COLORE'.");
  EXPECT_EQ(info.nativeNumber, 207);
  EXPECT_EQ(info.sqlState, "42S22");
  connection->errors().clear();
  EXPECT_EQ(connection->errors().count(), 0U);
}

TEST_F(AdoObjects, KeepMistakesInTheirUseApartFromTheProvidersErrors) {
  const std::shared_ptr<Recordset> rows = execute("SELECT CG18_DITTA FROM CG18_ANADITTABASE");
  try {
    static_cast<void>(rows->fields().item("CG18_COLORE"));
    ADD_FAILURE() << "such a column was found";
  } catch (const Error& error) {
    EXPECT_FALSE(error.fromProvider());
  }
  EXPECT_EQ(connection->errors().count(), 0U);
}

TEST_F(AdoObjects, GiveAClosedRecordsetForAStatementWithoutRows) {
  std::int64_t affected = 0;
  const std::shared_ptr<Recordset> rows =
      connection->execute("UPDATE CG18_ANADITTABASE SET CG18_CODICE_CG16 = CG18_CODICE_CG16",
                          affected, CommandOption::Text);
  EXPECT_GT(affected, 1);
  ASSERT_NE(rows, nullptr);
  EXPECT_FALSE(rows->isOpen());
  EXPECT_THROW(static_cast<void>(rows->atEnd()), Error);
}

TEST_F(AdoObjects, FillAProceduresOutputParameters) {
  const std::shared_ptr<Command> command = connection->newCommand();
  command->setActiveConnection(connection);
  command->setCommandText("PC_GetDitteCollegate");
  command->setCommandType(CommandOption::StoredProcedure);
  command->setCommandTimeout(0);
  command->setPrepared(true);
  Parameters& parameters = command->parameters();
  parameters.item("@CodiceDitta").setValue(5);
  parameters.item("@DataInizioElaborazione").setValue("20250101");
  EXPECT_EQ(parameters.item("@DitteCollegate").direction(), ParameterDirection::InputOutput);
  std::int64_t affected = 0;
  const std::shared_ptr<Recordset> rows =
      command->execute(affected, CommandOption::StoredProcedure);
  EXPECT_EQ(rows->recordCount(), 4);
  EXPECT_EQ(parameters.item("@DitteCollegate").value(), Variant{"10, 5, 12, 15"});
}

TEST_F(AdoObjects, StayReadableWhenTheyAreDetached) {
  const std::shared_ptr<Recordset> rows =
      opened("SELECT CG18_DITTA FROM CG18_ANADITTABASE ORDER BY CG18_DITTA");
  rows->setActiveConnection(nullptr);
  connection->close();
  EXPECT_FALSE(connection->isOpen());
  rows->moveFirst();
  EXPECT_EQ(rows->fields().item("CG18_DITTA").value(), Variant{5});
  rows->moveNext();
  EXPECT_EQ(rows->fields().item(0).value(), Variant{10});
}

TEST_F(AdoObjects, LetNoObjectOfAnotherProviderIn) {
  class Foreign final : public Object {};
  EXPECT_THROW(static_cast<void>(ado::dispatchOf(std::make_shared<Foreign>())), Error);
}

/// Counts what late binding asks it.
class Counting final : public IDispatch {
 public:
  virtual ~Counting() = default;
  std::map<std::wstring, int> asked;
  HRESULT outcome = S_OK;

  HRESULT STDMETHODCALLTYPE QueryInterface(REFIID, void** result) override {
    *result = this;
    return S_OK;
  }
  ULONG STDMETHODCALLTYPE AddRef() override { return 2; }
  ULONG STDMETHODCALLTYPE Release() override { return 1; }
  HRESULT STDMETHODCALLTYPE GetTypeInfoCount(UINT*) override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE GetTypeInfo(UINT, LCID, ITypeInfo**) override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE GetIDsOfNames(REFIID, LPOLESTR* names, UINT, LCID,
                                          DISPID* identifiers) override {
    ++asked[names[0]];
    *identifiers = static_cast<DISPID>(asked.size());
    return S_OK;
  }
  HRESULT STDMETHODCALLTYPE Invoke(DISPID, REFIID, LCID, WORD, DISPPARAMS*, VARIANT* result,
                                   EXCEPINFO*, UINT*) override {
    result->vt = VT_I4;
    result->lVal = 7;
    return outcome;
  }
};

TEST(LateBinding, AsksForAMembersIdentifierOnce) {
  Counting object;
  ado::Dispatch dispatch{ado::ComPtr<IDispatch>::share(&object)};
  for (int round = 0; round < 3; ++round) {
    EXPECT_EQ(dispatch.getNumber(L"RecordCount"), 7);
    dispatch.call(L"MoveNext");
  }
  EXPECT_EQ(object.asked, (std::map<std::wstring, int>{{L"MoveNext", 1}, {L"RecordCount", 1}}));
}

TEST(LateBinding, TellsWhatAFailureCodeMeans) {
  const std::map<HRESULT, std::string> texts{
      {DISP_E_MEMBERNOTFOUND, "Membro non previsto dall'oggetto (0x80020003): MoveNext"},
      {DISP_E_BADPARAMCOUNT, "Numero di argomenti non valido (0x8002000E): MoveNext"},
      {RPC_E_DISCONNECTED, "L'oggetto chiamato non esiste più (0x80010108): MoveNext"},
      {E_OUTOFMEMORY, "Memoria insufficiente (0x8007000E): MoveNext"}};
  for (const auto& [code, text] : texts) {
    Counting object;
    object.outcome = code;
    try {
      ado::Dispatch{ado::ComPtr<IDispatch>::share(&object)}.call(L"MoveNext");
      ADD_FAILURE() << text;
    } catch (const Error& error) {
      EXPECT_EQ(error.description(), text);
      EXPECT_FALSE(error.fromProvider());
    }
  }
}

TEST(LateBinding, SaysThatAClassIsNotRegistered) {
  try {
    static_cast<void>(ado::createObject(L"AZCOLLPROVA.NonEsiste"));
    ADD_FAILURE() << "created";
  } catch (const Error& error) {
    EXPECT_EQ(error.description(),
              "Impossibile creare l'oggetto AZCOLLPROVA.NonEsiste: "
              "Nome di classe non registrato (0x800401F3)");
  }
}

}  // namespace
}  // namespace azcoll::test
