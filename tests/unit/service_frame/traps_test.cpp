#include <functional>
#include <new>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

#include "support/method.h"
#include "unit/service_frame/support.h"

namespace azcoll::frame_tests {
namespace {

using test::Method;

struct Trapped {
  std::string name;
  Method method;
};

/// The methods that read the link table themselves.
const std::vector<Trapped> kReaders{
    {"ControllaDittaCollegata", &CLSCO_AZIENDECOLL::ControllaDittaCollegata},
    {"DitteCollegate", &CLSCO_AZIENDECOLL::DitteCollegate}};

class Traps : public ServiceTest {
 protected:
  /// A new service on an open connection that has one link and the group's procedure.
  std::shared_ptr<FakeConnection> prepare() {
    service = std::make_unique<CLSCO_AZIENDECOLL>(platform);
    auto given = giveConnection();
    given->rows = oneLink();
    given->procedureRows = groupRows();
    return given;
  }
};

TEST_F(Traps, ARefusedStatementIsReportedWithTheNameOfTheMethod) {
  for (const Trapped& reader : kReaders) {
    prepare()->failures["query"] = [] { refuse("Invalid object name 'CG86_AZIENDECOLL'."); };
    (service.get()->*reader.method)();
    expectOutcome(kTrappedFailure,
                  Variant{"Invalid object name 'CG86_AZIENDECOLL'. in " + reader.name});
  }
}

TEST_F(Traps, AFailureOfTheSystemItselfIsReportedTheSameWay) {
  for (const Trapped& reader : kReaders) {
    prepare()->failures["newRecordset"] = [] { throw Error{"Tipo non corrispondente"}; };
    (service.get()->*reader.method)();
    expectOutcome(kTrappedFailure, Variant{"Tipo non corrispondente in " + reader.name});
  }
}

TEST_F(Traps, AStandardExceptionIsReportedWithItsText) {
  for (const Trapped& reader : kReaders) {
    prepare()->failures["query"] = [] { throw std::runtime_error{"boom"}; };
    (service.get()->*reader.method)();
    expectOutcome(kTrappedFailure, Variant{"boom in " + reader.name});
  }
}

TEST_F(Traps, LackOfMemoryIsReported) {
  for (const Trapped& reader : kReaders) {
    prepare()->failures["query"] = [] { throw std::bad_alloc{}; };
    (service.get()->*reader.method)();
    EXPECT_EQ(service->Stato, kTrappedFailure);
    EXPECT_TRUE(service->Errore.text().ends_with(" in " + reader.name));
  }
}

TEST_F(Traps, AnythingElseThrownIsReportedWithSomeDescription) {
  for (const Trapped& reader : kReaders) {
    prepare()->failures["query"] = [] { throw 42; };
    (service.get()->*reader.method)();
    EXPECT_EQ(service->Stato, kTrappedFailure);
    const std::string ending = " in " + reader.name;
    EXPECT_TRUE(service->Errore.text().ends_with(ending)) << service->Errore.text();
    EXPECT_GT(service->Errore.text().size(), ending.size());
  }
}

TEST_F(Traps, AFailureAtAnyOperationOfTheRecordsetIsReported) {
  for (const Trapped& reader : kReaders) {
    for (const char* operation : {"open", "recordCount", "moveFirst", "fields"}) {
      prepare()->recordsetFailures[operation] = [] { refuse("row lost"); };
      (service.get()->*reader.method)();
      expectOutcome(kTrappedFailure, Variant{"row lost in " + reader.name});
    }
  }
}

TEST_F(Traps, AFailureBetweenTwoRowsIsReported) {
  prepare()->recordsetFailures["moveNext"] = [] { refuse("row lost"); };
  service->DitteCollegate();
  expectOutcome(kTrappedFailure, Variant{"row lost in DitteCollegate"});
}

TEST_F(Traps, AMissingColumnIsReported) {
  for (const Trapped& reader : kReaders) {
    prepare()->rows = {{"OTHER"}, {{std::int32_t{1}}}};
    (service.get()->*reader.method)();
    EXPECT_EQ(service->Stato, kTrappedFailure);
    EXPECT_TRUE(service->Errore.text().ends_with(" in " + reader.name));
  }
}

TEST_F(Traps, TheCodeOfAFailureIsA16BitInteger) {
  prepare()->failures["query"] = [] { refuse("no"); };
  service->ControllaDittaCollegata();
  EXPECT_EQ(service->Stato.kind(), Variant::Kind::Int16);
  EXPECT_EQ(service->Errore.kind(), Variant::Kind::Text);
}

TEST_F(Traps, TheNextSuccessClearsTheCodeAndKeepsTheMessage) {
  const auto given = prepare();
  given->failures["query"] = [] { refuse("no"); };
  service->ControllaDittaCollegata();
  ASSERT_EQ(service->Stato, kTrappedFailure);
  given->failures.clear();
  service->ControllaDittaCollegata();
  expectOutcome(kSucceeded, Variant{"no in ControllaDittaCollegata"});
  EXPECT_TRUE(output().Gbol_DittaPrincipale);
}

TEST_F(Traps, TheNextFailureReplacesTheMessage) {
  const auto given = prepare();
  given->failures["query"] = [] { refuse("first"); };
  service->ControllaDittaCollegata();
  given->failures["query"] = [] { refuse("second"); };
  service->DitteCollegate();
  expectOutcome(kTrappedFailure, Variant{"second in DitteCollegate"});
}

TEST_F(Traps, WhatAMethodHadReachedStays) {
  const auto given = prepare();
  given->recordsetFailures["moveNext"] = [] { refuse("row lost"); };
  service->DitteCollegate();
  EXPECT_EQ(output().IndTipoCont, Variant{std::int16_t{2}});
}

TEST_F(Traps, ACompanyThatDoesNotJoinIntoTheStatementIsRefusedByTheDatabaseOnly) {
  const auto given = prepare();
  input().Pvar_Ditta = "1x";
  given->failures["query"] = [] { refuse("Incorrect syntax near 'x'."); };
  service->ControllaDittaCollegata();
  expectOutcome(kTrappedFailure, Variant{"Incorrect syntax near 'x'. in ControllaDittaCollegata"});
}

TEST_F(Traps, TheDuplicationReportsUnderItsOwnSpelling) {
  const auto given = prepare();
  given->rows = {{"CG44_CLIFOR"}, {}};
  given->failures["begin"] = [] { refuse("no transaction"); };
  service->DuplicaCliFor();
  expectOutcome(kTrappedFailure, Variant{"no transaction in DuplicaClifor"});
}

// The lookup of the main company answers "" whatever goes wrong, and says nothing about it.

const std::vector<std::string> kLookupOperations{"newCommand", "command"};

TEST_F(Traps, TheMainCompanyLookupSwallowsAFailureOfTheDatabase) {
  for (const std::string& operation : kLookupOperations) {
    const auto given = prepare();
    service->Errore = "before";
    output().IndTipoCont = std::int16_t{8};
    given->failures[operation] = [] { refuse("no procedure"); };
    EXPECT_EQ(service->GetDittaPrincipale(), "") << operation;
    expectOutcome(kSucceeded, Variant{"before"});
    EXPECT_EQ(output().IndTipoCont, Variant{std::int16_t{8}});
  }
}

TEST_F(Traps, TheMainCompanyLookupSwallowsEveryKindOfFailure) {
  const std::vector<std::function<void()>> failures{
      [] { throw Error{"mine"}; }, [] { throw std::logic_error{"theirs"}; }, [] { throw 'x'; }};
  for (const auto& failure : failures) {
    for (const std::string& operation : kLookupOperations) {
      prepare()->failures[operation] = failure;
      EXPECT_EQ(service->GetDittaPrincipale(), "");
      expectOutcome(kSucceeded, Variant{});
    }
    prepare()->recordsetFailures["find"] = failure;
    EXPECT_EQ(service->GetDittaPrincipale(), "");
    expectOutcome(kSucceeded, Variant{});
  }
}

TEST_F(Traps, TheMainCompanyLookupSwallowsAFailedOpening) {
  fillInput();
  database().failures["open"] = [] { refuse("no server"); };
  EXPECT_EQ(service->GetDittaPrincipale(), "");
  expectOutcome(kSucceeded, Variant{});
}

TEST_F(Traps, TheMainCompanyLookupFindsTheMainRow) {
  prepare();
  EXPECT_EQ(service->GetDittaPrincipale(), "10");
  EXPECT_EQ(output().IndTipoCont, Variant{std::int16_t{3}});
  expectOutcome(kSucceeded, Variant{});
}

TEST_F(Traps, TheMainCompanyLookupWithoutAMainRowLeavesTheKindOfAccounts) {
  const auto given = prepare();
  given->procedureRows = {{"DITTA", "PRINCIPALE", "CG86_INDTIPOCONT"},
                          {{std::int32_t{12}, std::int32_t{0}, std::int16_t{2}}}};
  output().IndTipoCont = std::int16_t{8};
  EXPECT_EQ(service->GetDittaPrincipale(), "");
  EXPECT_EQ(output().IndTipoCont, Variant{std::int16_t{8}});
}

TEST_F(Traps, TheMainCompanyLookupReadsAMissingKindOfAccountsAsZero) {
  const auto given = prepare();
  given->procedureRows = {{"DITTA", "PRINCIPALE", "CG86_INDTIPOCONT"},
                          {{std::int32_t{10}, std::int32_t{1}, kNull}}};
  EXPECT_EQ(service->GetDittaPrincipale(), "10");
  EXPECT_TRUE(sameValue(output().IndTipoCont, std::int16_t{0}));
}

TEST_F(Traps, AProcedureWithoutAResultGivesNoMainCompany) {
  const auto given = prepare();
  given->procedureRows = {};
  EXPECT_EQ(service->GetDittaPrincipale(), "");
  expectOutcome(kSucceeded, Variant{});
}

TEST_F(Traps, TheMainCompanyCheckSaysNoWhenTheLookupFailed) {
  for (const std::string& operation : kLookupOperations) {
    const auto given = prepare();
    output().Gbol_DittaPrincipale = true;
    given->failures[operation] = [] { refuse("no procedure"); };
    service->ControllaDittaPrincipale();
    EXPECT_FALSE(output().Gbol_DittaPrincipale);
    expectOutcome(kSucceeded, Variant{});
  }
}

TEST_F(Traps, TheMainCompanyCheckComparesTheCodes) {
  const std::vector<std::pair<Variant, bool>> companies{{Variant{std::int32_t{10}}, true},
                                                        {Variant{std::int16_t{10}}, true},
                                                        {Variant{std::int64_t{10}}, true},
                                                        {Variant{"10"}, true},
                                                        {Variant{10.0}, true},
                                                        {Variant{std::int32_t{12}}, false},
                                                        {Variant{"1"}, false},
                                                        {Variant{std::int32_t{-1}}, false}};
  for (const auto& [company, main] : companies) {
    prepare();
    input().Pvar_Ditta = company;
    output().Gbol_DittaPrincipale = !main;
    service->ControllaDittaPrincipale();
    EXPECT_EQ(output().Gbol_DittaPrincipale, main) << company.text();
    expectOutcome(kSucceeded, Variant{});
  }
}

TEST_F(Traps, ACompanyOutsideEveryLinkKeepsTheOlderResults) {
  const auto given = prepare();
  given->rows.values.clear();
  output().Gbol_DittaPrincipale = true;
  output().Gvar_DittaPrincipale = std::int32_t{77};
  output().IndTipoCont = std::int16_t{8};
  service->ControllaDittaCollegata();
  EXPECT_FALSE(output().Gbol_DittaPrincipale);
  EXPECT_EQ(output().Gvar_DittaPrincipale, Variant{std::int32_t{77}});
  EXPECT_EQ(output().IndTipoCont, Variant{std::int16_t{8}});
  service->DitteCollegate();
  EXPECT_EQ(output().DitteCollegate, Variant{""});
  EXPECT_EQ(output().IndTipoCont, Variant{std::int16_t{8}});
}

TEST_F(Traps, TheListEndsWithTheCompanyItself) {
  const auto given = prepare();
  given->rows.values.push_back(
      {std::int32_t{15}, std::int32_t{10}, std::int32_t{15}, std::int16_t{9}});
  service->DitteCollegate();
  EXPECT_EQ(output().DitteCollegate, Variant{"12, 15, 10"});
  EXPECT_EQ(output().IndTipoCont, Variant{std::int16_t{2}});
}

}  // namespace
}  // namespace azcoll::frame_tests
