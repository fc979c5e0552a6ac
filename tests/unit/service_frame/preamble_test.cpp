#include <functional>
#include <string>
#include <utility>
#include <vector>

#include "service/members.h"
#include "unit/service_frame/support.h"

namespace azcoll::frame_tests {
namespace {

class Preamble : public ServiceTest {
 protected:
  /// Calls the method behind a table entry and drops its result.
  void invoke(const MethodEntry& method) const {
    if (const auto* none = std::get_if<0>(&method.member)) {
      (service.get()->**none)();
    } else if (const auto* truth = std::get_if<1>(&method.member)) {
      EXPECT_FALSE((service.get()->**truth)()) << method.name;
    } else if (const auto* text = std::get_if<2>(&method.member)) {
      EXPECT_EQ((service.get()->**text)(), "") << method.name;
    }
  }
};

TEST_F(Preamble, SucceedsWithAConnectionAndACompany) {
  fillInput();
  EXPECT_TRUE(call().InizializzaMetodo(Connect::Yes));
  expectOutcome(kSucceeded, Variant{});
  EXPECT_TRUE(database().isOpen());
}

TEST_F(Preamble, ForgetsTheTransactionFlagAndEmptiesTheList) {
  fillInput();
  session.Mbol_TransazioneAperta = true;
  output().DitteCollegate = "12, 10";
  EXPECT_TRUE(call().InizializzaMetodo(Connect::Yes));
  EXPECT_FALSE(session.Mbol_TransazioneAperta);
  EXPECT_EQ(output().DitteCollegate, Variant{""});
}

TEST_F(Preamble, ForgetsTheTransactionFlagAndEmptiesTheListEvenWhenItRefuses) {
  session.Mbol_TransazioneAperta = true;
  output().DitteCollegate = "12, 10";
  EXPECT_FALSE(call().InizializzaMetodo(Connect::Yes));
  EXPECT_FALSE(session.Mbol_TransazioneAperta);
  EXPECT_EQ(output().DitteCollegate, Variant{""});
}

TEST_F(Preamble, ClearsNoOtherResult) {
  fillInput();
  output().Gbol_DittaPrincipale = true;
  output().IndTipoCont = std::int16_t{4};
  output().Gvar_DittaPrincipale = std::int32_t{7};
  output().GstrSQL_AttivitaCollegate = "SELECT";
  output().CodiceAttività = "A";
  output().DescrAttività = "B";
  output().IdAttività = std::int32_t{3};
  const auto rs = std::make_shared<FakeRecordset>();
  output().Grst_DitteCollegate = rs;
  output().Grst_AttivitaCollegate = rs;
  EXPECT_TRUE(call().InizializzaMetodo(Connect::Yes));
  EXPECT_TRUE(output().Gbol_DittaPrincipale);
  EXPECT_EQ(output().IndTipoCont, Variant{std::int16_t{4}});
  EXPECT_EQ(output().Gvar_DittaPrincipale, Variant{std::int32_t{7}});
  EXPECT_EQ(output().GstrSQL_AttivitaCollegate, "SELECT");
  EXPECT_EQ(output().CodiceAttività, Variant{"A"});
  EXPECT_EQ(output().DescrAttività, Variant{"B"});
  EXPECT_EQ(output().IdAttività, Variant{std::int32_t{3}});
  EXPECT_EQ(output().Grst_DitteCollegate, rs);
  EXPECT_EQ(output().Grst_AttivitaCollegate, rs);
}

TEST_F(Preamble, WithoutOpeningItNeedsNoConnection) {
  input().Pvar_Ditta = std::int32_t{10};
  EXPECT_TRUE(call().InizializzaMetodo(Connect::No));
  EXPECT_TRUE(platform->requested.empty());
  EXPECT_EQ(input().Connessione, nullptr);
  expectOutcome(kSucceeded, Variant{});
}

TEST_F(Preamble, WithoutOpeningItInheritsTheLastOutcome) {
  input().Pvar_Ditta = std::int32_t{10};
  service->Stato = std::int16_t{99};
  service->Errore = "something in Metodo";
  EXPECT_TRUE(call().InizializzaMetodo(Connect::No));
  expectOutcome(kTrappedFailure, Variant{"something in Metodo"});
}

TEST_F(Preamble, WithoutOpeningItStillRequiresTheCompany) {
  EXPECT_FALSE(call().InizializzaMetodo(Connect::No));
  expectOutcome(kRefusedCall, Variant{"Codice azienda mancante!"});
}

TEST_F(Preamble, NullEmptyAndBlankTextAreNoCompany) {
  for (const Variant& missing : {Variant{}, Variant{kNull}, Variant{""}}) {
    service = std::make_unique<CLSCO_AZIENDECOLL>(platform);
    fillInput();
    input().Pvar_Ditta = missing;
    EXPECT_FALSE(call().InizializzaMetodo(Connect::Yes));
    expectOutcome(kRefusedCall, Variant{"Codice azienda mancante!"});
  }
}

TEST_F(Preamble, AnyOtherValueIsACompany) {
  for (const Variant& given : {Variant{std::int16_t{0}}, Variant{std::int32_t{5}}, Variant{"5"},
                               Variant{" "}, Variant{5.0}, Variant{false}}) {
    service = std::make_unique<CLSCO_AZIENDECOLL>(platform);
    fillInput();
    input().Pvar_Ditta = given;
    EXPECT_TRUE(call().InizializzaMetodo(Connect::Yes));
    expectOutcome(kSucceeded, Variant{});
  }
}

TEST_F(Preamble, ACompanyThatIsAnObjectCountsAsMissing) {
  fillInput();
  input().Pvar_Ditta = anObject();
  EXPECT_FALSE(call().InizializzaMetodo(Connect::Yes));
  expectOutcome(kRefusedCall, Variant{"Codice azienda mancante!"});
}

TEST_F(Preamble, TheMissingConnectionIsReportedBeforeTheMissingCompany) {
  EXPECT_FALSE(call().InizializzaMetodo(Connect::Yes));
  expectOutcome(kRefusedCall, Variant{"Stringa di connessione mancante!"});
}

TEST_F(Preamble, EveryMethodRefusesToWorkWithoutACompany) {
  for (const MethodEntry& method : kMethods) {
    for (const Variant& missing : {Variant{""}, Variant{kNull}, Variant{}}) {
      service = std::make_unique<CLSCO_AZIENDECOLL>(platform);
      const auto given = giveConnection();
      given->rows = oneLink();
      given->procedureRows = groupRows();
      input().Pvar_Ditta = missing;
      output().Gbol_DittaPrincipale = true;
      output().IndTipoCont = std::int16_t{8};
      invoke(method);
      // One method checks its input itself and says so in its own words.
      expectOutcome(kRefusedCall, Variant{method.name == "GetCodiceAttivitàDaSezionale"
                                              ? "Non è stato definito il codice azienda."
                                              : "Codice azienda mancante!"});
      EXPECT_FALSE(given->touched()) << method.name;
      EXPECT_TRUE(output().Gbol_DittaPrincipale) << method.name;
      EXPECT_EQ(output().IndTipoCont, Variant{std::int16_t{8}}) << method.name;
    }
  }
}

TEST_F(Preamble, EveryMethodThatReadsRefusesToWorkWithoutAConnection) {
  for (const char* name : {"DuplicaCliFor", "ControllaDittaPrincipale", "ControllaDittaCollegata",
                           "DitteCollegate", "GetDittaPrincipale"}) {
    for (const MethodEntry& method : kMethods) {
      if (method.name == name) {
        service = std::make_unique<CLSCO_AZIENDECOLL>(platform);
        invoke(method);
        expectOutcome(kRefusedCall, Variant{"Stringa di connessione mancante!"});
      }
    }
  }
  EXPECT_TRUE(platform->requested.empty());
}

TEST_F(Preamble, ASuccessAfterARefusalClearsTheCodeAndKeepsTheMessage) {
  const auto given = giveConnection();
  input().Pvar_Ditta = kNull;
  service->ControllaDittaCollegata();
  EXPECT_EQ(service->Stato, kRefusedCall);
  input().Pvar_Ditta = std::int32_t{10};
  service->ControllaDittaCollegata();
  expectOutcome(kSucceeded, Variant{"Codice azienda mancante!"});
}

TEST_F(Preamble, TheListIsBlankAfterACallThatFoundNoLinks) {
  using Call = std::function<void(CLSCO_AZIENDECOLL&)>;
  const std::vector<Call> calls{
      [](CLSCO_AZIENDECOLL& called) { called.DitteCollegate(); },
      [](CLSCO_AZIENDECOLL& called) { called.ControllaDittaCollegata(); },
      [](CLSCO_AZIENDECOLL& called) { called.ControllaDittaPrincipale(); },
      [](CLSCO_AZIENDECOLL& called) { EXPECT_EQ(called.GetDittaPrincipale(), ""); }};
  const auto given = giveConnection();
  given->procedureRows.columns = groupRows().columns;
  given->rows.columns = oneLink().columns;
  for (const Call& call : calls) {
    output().DitteCollegate = "12, 10";
    call(*service);
    EXPECT_EQ(service->Stato, kSucceeded);
    EXPECT_EQ(output().DitteCollegate, Variant{""});
  }
}

TEST_F(Preamble, AMissingInputIsAFailureWithoutACrash) {
  for (const char* name :
       {"DuplicaCliFor", "ControllaDittaPrincipale", "ControllaDittaCollegata", "DitteCollegate"}) {
    for (const MethodEntry& method : kMethods) {
      if (method.name == name) {
        service = std::make_unique<CLSCO_AZIENDECOLL>(platform);
        service->CPInput = nullptr;
        invoke(method);
        EXPECT_EQ(service->Stato, kTrappedFailure) << name;
        EXPECT_EQ(service->Errore.kind(), Variant::Kind::Text) << name;
      }
    }
  }
}

TEST_F(Preamble, AMissingOutputIsAFailureWithoutACrash) {
  using Call = std::function<void(CLSCO_AZIENDECOLL&)>;
  const std::vector<std::pair<std::string, Call>> calls{
      {"DitteCollegate", [](CLSCO_AZIENDECOLL& called) { called.DitteCollegate(); }},
      {"ControllaDittaCollegata",
       [](CLSCO_AZIENDECOLL& called) { called.ControllaDittaCollegata(); }},
      {"ControllaDittaPrincipale",
       [](CLSCO_AZIENDECOLL& called) { called.ControllaDittaPrincipale(); }}};
  for (const auto& [name, call] : calls) {
    service = std::make_unique<CLSCO_AZIENDECOLL>(platform);
    const auto given = giveConnection();
    given->rows = oneLink();
    given->procedureRows = groupRows();
    service->CPOutput = nullptr;
    call(*service);
    EXPECT_EQ(service->Stato, kTrappedFailure) << name;
    EXPECT_TRUE(service->Errore.text().ends_with(" in " + name)) << service->Errore.text();
  }
}

TEST_F(Preamble, TheMainCompanyLookupSurvivesMissingObjects) {
  service->CPInput = nullptr;
  EXPECT_EQ(service->GetDittaPrincipale(), "");
  service = std::make_unique<CLSCO_AZIENDECOLL>(platform);
  giveConnection()->procedureRows = groupRows();
  service->CPOutput = nullptr;
  EXPECT_EQ(service->GetDittaPrincipale(), "");
}

}  // namespace
}  // namespace azcoll::frame_tests
