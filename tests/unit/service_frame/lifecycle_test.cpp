#include <functional>
#include <memory>
#include <stdexcept>
#include <string>
#include <vector>

#include "unit/service_frame/support.h"

namespace azcoll::frame_tests {
namespace {

class Lifecycle : public ServiceTest {};

const std::vector<std::string> kConfiguration{"string Provider=fake;Data Source=x", "timeout 100",
                                              "cursor 3", "open <> <> -1"};

TEST_F(Lifecycle, ConfiguresAConnectionOfItsOwnThenOpensIt) {
  fillInput();
  call().ApriConnessione();
  EXPECT_EQ(platform->requested, std::vector<std::string>{"Provider=fake;Data Source=x"});
  EXPECT_EQ(input().Connessione, platform->connection);
  EXPECT_EQ(database().log, kConfiguration);
  EXPECT_TRUE(session.Mbol_ConnessioneAperta);
  expectOutcome(kSucceeded, Variant{});
}

TEST_F(Lifecycle, OpeningClearsTheOutcomeOfTheLastCall) {
  fillInput();
  service->Stato = std::int16_t{99};
  call().ApriConnessione();
  EXPECT_EQ(service->Stato, kSucceeded);
}

TEST_F(Lifecycle, AGivenConnectionIsTakenAsItStands) {
  const auto given = giveConnection();
  input().StringaConnessione = "Provider=fake;Data Source=other";
  service->Stato = std::int16_t{99};
  call().ApriConnessione();
  EXPECT_EQ(input().Connessione, given);
  EXPECT_FALSE(given->touched());
  EXPECT_TRUE(platform->requested.empty());
  EXPECT_FALSE(session.Mbol_ConnessioneAperta);
  expectOutcome(kSucceeded, Variant{});
}

TEST_F(Lifecycle, AGivenConnectionIsNotOpenedEvenWhenItIsClosed) {
  const auto given = std::make_shared<FakeConnection>(false);
  input().Connessione = given;
  call().ApriConnessione();
  EXPECT_TRUE(given->log.empty());
  EXPECT_FALSE(given->isOpen());
}

TEST_F(Lifecycle, WithoutConnectionAndStringOpeningIsRefused) {
  call().ApriConnessione();
  expectOutcome(kRefusedCall, Variant{"Stringa di connessione mancante!"});
  EXPECT_EQ(input().Connessione, nullptr);
  EXPECT_TRUE(platform->requested.empty());
  EXPECT_FALSE(session.Mbol_ConnessioneAperta);
}

TEST_F(Lifecycle, AFailureToOpenIsSwallowed) {
  fillInput();
  database().failures["open"] = [] { refuse("no server"); };
  call().ApriConnessione();
  expectOutcome(kSucceeded, Variant{});
  EXPECT_EQ(input().Connessione, platform->connection);
  EXPECT_TRUE(session.Mbol_ConnessioneAperta);
}

TEST_F(Lifecycle, ARefusedSettingDoesNotKeepTheNextOnesFromRunning) {
  for (const char* refused : {"string", "timeout", "cursor"}) {
    platform->connection = std::make_shared<FakeConnection>();
    service = std::make_unique<CLSCO_AZIENDECOLL>(platform);
    fillInput();
    database().failures[refused] = [] { refuse("not supported"); };
    call().ApriConnessione();
    EXPECT_EQ(database().log, kConfiguration) << refused;
    expectOutcome(kSucceeded, Variant{});
  }
}

TEST_F(Lifecycle, AConnectionThatCannotBeCreatedIsSwallowedWhenOpening) {
  fillInput();
  platform->failures["newConnection"] = [] { throw Error{"no provider"}; };
  call().ApriConnessione();
  expectOutcome(kSucceeded, Variant{});
  EXPECT_EQ(input().Connessione, nullptr);
}

TEST_F(Lifecycle, TheNextStatementAfterAFailedOpeningReportsIt) {
  fillInput();
  database().failures["open"] = [] { refuse("no server"); };
  service->ControllaDittaCollegata();
  expectOutcome(kTrappedFailure, Variant{"connection is closed in ControllaDittaCollegata"});
}

TEST_F(Lifecycle, AServiceWithoutAProviderReportsItAtItsFirstStatement) {
  fillInput();
  platform->failures["newConnection"] = [] { throw Error{"no provider"}; };
  service->DitteCollegate();
  EXPECT_EQ(service->Stato, kTrappedFailure);
  EXPECT_TRUE(service->Errore.text().ends_with(" in DitteCollegate")) << service->Errore.text();
  EXPECT_GT(service->Errore.text().size(), std::string{" in DitteCollegate"}.size());
}

TEST_F(Lifecycle, TheSecondCallUsesTheSameConnection) {
  fillInput();
  service->ControllaDittaCollegata();
  service->ControllaDittaCollegata();
  EXPECT_EQ(platform->requested.size(), 1U);
  EXPECT_EQ(database().log, kConfiguration);
  EXPECT_EQ(database().statements.size(), 2U);
  EXPECT_TRUE(database().isOpen());
}

TEST_F(Lifecycle, ItsOwnConnectionIsClosedAtTheEndAndDropped) {
  fillInput();
  const auto kept = service->CPInput;
  service->ControllaDittaCollegata();
  service.reset();
  EXPECT_EQ(database().log.back(), "close");
  EXPECT_FALSE(database().isOpen());
  EXPECT_EQ(kept->Connessione, nullptr);
}

TEST_F(Lifecycle, AFailureToCloseIsSwallowedAndTheConnectionDropped) {
  for (const auto& failure : std::vector<std::function<void()>>{
           [] { refuse("server gone"); }, [] { throw std::runtime_error{"broken"}; },
           [] { throw 7; }}) {
    platform->connection = std::make_shared<FakeConnection>();
    service = std::make_unique<CLSCO_AZIENDECOLL>(platform);
    fillInput();
    database().failures["close"] = failure;
    const auto kept = service->CPInput;
    service->ControllaDittaCollegata();
    service.reset();
    EXPECT_EQ(database().log.back(), "close");
    EXPECT_EQ(kept->Connessione, nullptr);
  }
}

TEST_F(Lifecycle, AServiceWhoseOpeningFailedEndsQuietly) {
  fillInput();
  database().failures["open"] = [] { refuse("no server"); };
  database().failures["close"] = [] { refuse("not open"); };
  const auto kept = service->CPInput;
  service->ControllaDittaCollegata();
  service.reset();
  EXPECT_EQ(kept->Connessione, nullptr);
}

TEST_F(Lifecycle, AGivenConnectionSurvivesTheServiceOpenButIsDroppedFromTheInput) {
  const auto given = giveConnection();
  const auto kept = service->CPInput;
  service->ControllaDittaCollegata();
  EXPECT_EQ(given->statements.size(), 1U);
  service.reset();
  EXPECT_TRUE(given->isOpen());
  EXPECT_TRUE(given->log.empty());
  EXPECT_EQ(kept->Connessione, nullptr);
}

TEST_F(Lifecycle, AGivenConnectionIsDroppedEvenWhenNoMethodWasCalled) {
  const auto given = giveConnection();
  const auto kept = service->CPInput;
  service.reset();
  EXPECT_TRUE(given->isOpen());
  EXPECT_EQ(kept->Connessione, nullptr);
}

TEST_F(Lifecycle, AConnectionGivenAfterAFailedCreationIsNotClosed) {
  fillInput();
  platform->failures["newConnection"] = [] { throw Error{"no provider"}; };
  service->ControllaDittaCollegata();
  const auto given = giveConnection();
  service->ControllaDittaCollegata();
  service.reset();
  EXPECT_TRUE(given->isOpen());
}

TEST_F(Lifecycle, AConnectionGivenInThePlaceOfTheServicesOwnIsNotClosed) {
  fillInput();
  service->ControllaDittaCollegata();
  const auto given = giveConnection();
  service.reset();
  EXPECT_TRUE(given->isOpen());
}

TEST_F(Lifecycle, TheServiceLetsGoOfItsTwoObjectsAtTheEnd) {
  const std::weak_ptr<CLSCO_INPUTAZCOLL> heldInput = service->CPInput;
  const std::weak_ptr<CLSCO_OUTPUTAZCOLL> heldOutput = service->CPOutput;
  service.reset();
  EXPECT_TRUE(heldInput.expired());
  EXPECT_TRUE(heldOutput.expired());
}

TEST_F(Lifecycle, AServiceWithoutItsTwoObjectsEndsQuietly) {
  service->CPInput = nullptr;
  service->CPOutput = nullptr;
  EXPECT_NO_FATAL_FAILURE(service.reset());
}

TEST_F(Lifecycle, ObjectsPutInByTheCallerAreUsed) {
  const auto ownInput = std::make_shared<CLSCO_INPUTAZCOLL>();
  const auto ownOutput = std::make_shared<CLSCO_OUTPUTAZCOLL>();
  const auto oldOutput = service->CPOutput;
  service->CPInput = ownInput;
  service->CPOutput = ownOutput;
  const auto given = giveConnection();
  given->rows = oneLink();
  service->ControllaDittaCollegata();
  expectOutcome(kSucceeded, Variant{});
  EXPECT_TRUE(ownOutput->Gbol_DittaPrincipale);
  EXPECT_TRUE(sameValue(ownOutput->Gvar_DittaPrincipale, std::int32_t{10}));
  EXPECT_FALSE(oldOutput->Gbol_DittaPrincipale);
  service.reset();
  EXPECT_EQ(ownInput->Connessione, nullptr);
  EXPECT_TRUE(ownOutput->Gbol_DittaPrincipale);
}

}  // namespace
}  // namespace azcoll::frame_tests
