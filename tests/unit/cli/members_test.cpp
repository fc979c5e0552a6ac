#include "service/members.h"

#include "cli_test.h"

namespace azcoll::cli {
namespace {

using testing::HasSubstr;
using testing::IsEmpty;

TEST(Metodi, ListsTheMethodsInInterfaceOrder) {
  const Outcome outcome = azcoll("metodi");
  EXPECT_EQ(outcome.code, ExitCode::Ok);
  EXPECT_THAT(outcome.err, IsEmpty());
  std::size_t last = 0;
  for (const MethodEntry& method : kMethods) {
    const std::size_t found = outcome.out.find("\n" + std::string{method.name} + "  ", last);
    ASSERT_NE(found, std::string::npos) << method.name;
    last = found;
  }
}

TEST(Metodi, GivesTheTableAsJson) {
  const Outcome outcome = azcoll("metodi", "--json");
  EXPECT_EQ(outcome.code, ExitCode::Ok);
  const auto methods = outcome.json();
  ASSERT_EQ(methods.size(), kMethods.size());
  for (std::size_t i = 0; i < kMethods.size(); ++i) {
    const auto& method = methods[i];
    EXPECT_EQ(method["nome"], kMethods[i].name);
    EXPECT_EQ(method["descrizione"], kMethods[i].meaning);
    if (kMethods[i].result == MethodResult::None) {
      EXPECT_TRUE(method["risultato"].is_null());
    } else {
      EXPECT_EQ(method["risultato"], typeName(kMethods[i].result));
    }
  }
  EXPECT_THAT(outcome.out,
              HasSubstr(R"({"nome":"DuplicaCliFor","risultato":null,"descrizione":")"));
  EXPECT_THAT(outcome.out, HasSubstr(R"("nome":"GetDittaPrincipale","risultato":"String")"));
}

TEST(Campi, ListsTheThreeObjects) {
  const Outcome outcome = azcoll("campi");
  EXPECT_EQ(outcome.code, ExitCode::Ok);
  for (const char* name : {"CLSCO_INPUTAZCOLL\n", "CLSCO_OUTPUTAZCOLL\n", "CLSCO_AZIENDECOLL\n",
                           "\nStrSelectSQLAttività ", "\nGrst_AttivitaCollegate ", "\nErrore "}) {
    EXPECT_THAT(outcome.out, HasSubstr(name));
  }
}

TEST(Campi, GivesTheTablesAsJson) {
  const auto classes = azcoll("campi", "--json").json();
  ASSERT_EQ(classes.size(), 3U);
  EXPECT_EQ(classes.begin().key(), "CLSCO_INPUTAZCOLL");
  const auto& input = classes["CLSCO_INPUTAZCOLL"];
  ASSERT_EQ(input.size(), kInputFields.size());
  for (std::size_t i = 0; i < kInputFields.size(); ++i) {
    EXPECT_EQ(input[i]["nome"], kInputFields[i].name);
    EXPECT_EQ(input[i]["tipo"], typeName(kInputFields[i].kind()));
    EXPECT_EQ(input[i]["descrizione"], kInputFields[i].meaning);
  }
  const auto& output = classes["CLSCO_OUTPUTAZCOLL"];
  ASSERT_EQ(output.size(), kOutputFields.size());
  EXPECT_EQ(output[2]["tipo"], "Recordset");
  const auto& service = classes["CLSCO_AZIENDECOLL"];
  ASSERT_EQ(service.size(), kServiceFields.size());
  EXPECT_EQ(service[0]["nome"], "CPInput");
  EXPECT_EQ(service[0]["tipo"], "CLSCO_INPUTAZCOLL");
  EXPECT_EQ(service[3]["nome"], "Errore");
  EXPECT_EQ(service[3]["tipo"], "Variant");
}

}  // namespace
}  // namespace azcoll::cli
