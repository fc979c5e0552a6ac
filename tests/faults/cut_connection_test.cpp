// The duplication of a customer on a server, with the connection cut, held or delayed at every one
// of its packets.

#include <functional>
#include <gtest/gtest.h>
#include <iostream>
#include <memory>
#include <string>
#include <vector>

#include "data/tracing.h"
#include "platform/provider_factory.h"
#include "service/service.h"
#include "support/relay.h"
#include "support/server_example.h"

namespace azcoll::test {
namespace {

constexpr std::string_view kFixedEnd = " in DuplicaClifor";

/// A customer with an agent and sales data in company 5, whose code is free in the group.
constexpr const char* kFreeCustomer =
    "INSERT INTO CG44_CLIFOR (CG44_DITTA_CG18, CG44_TIPOCF, CG44_CLIFOR, CG44_CODICE_CG16, "
    "CG44_IDAGENTE_MG17, CG44_FLGATTIVO) VALUES (5, 0, 700, 3005, 501, 1) "
    "INSERT INTO MG19_CLIFORVA (MG19_DITTA_CG18, MG19_TIPOCF_CG44, MG19_CLIFOR_CG44) "
    "VALUES (5, 0, 700)";

/// An operation of the call, and the packets that had passed when it ended.
struct Step {
  std::string operation;
  std::size_t toServer = 0;
  std::size_t toClient = 0;
};

struct Result {
  Variant stato;
  Variant errore;
  Lines database;
  std::vector<Step> steps;
};

/// What a cut may leave.
struct Expected {
  int stato = 99;
  bool before = true;  ///< the rows may be as before
  bool after = false;  ///< the rows may be as after
};

class CutConnection : public ::testing::Test {
 protected:
  void SetUp() override {
    example_ = ServerExample::find();
    if (example_ == nullptr) {
      GTEST_SKIP() << "no server: AZCOLL_TEST_CONNESSIONE is not set";
    }
    relay_ = std::make_unique<Relay>(example_->connectionString());
    example_->restore(kFreeCustomer);
    before_ = example_->picture();
    whole_ = call([&] { relay_->watch(); });
    ASSERT_TRUE(relay_->understood()) << "the connection is encrypted: no packets to be seen";
    ASSERT_EQ(whole_.stato, Variant{std::int16_t{0}}) << whole_.errore.text();
    ASSERT_NE(whole_.database, before_);
    commit_ = indexOf("CommitTrans");
    ASSERT_LT(commit_, whole_.steps.size());
  }
  void TearDown() override {
    relay_.reset();
    if (example_ != nullptr) {
      example_->restore();
    }
  }

  /// The call over a new connection through the relay, which is told by `watch` what to do; then
  /// the database, once no other connection holds a lock on it. With `seconds`, no statement of
  /// the transaction may take longer.
  Result call(const std::function<void()>& watch, int seconds = 0) {
    Result result;
    {
      const std::shared_ptr<Connection> connection = newConnectionFor(relay_->connectionString());
      connection->open("", "", CommandOption::Unspecified);
      watch();
      CLSCO_AZIENDECOLL service;
      service.CPInput->Connessione =
          std::make_shared<ConnessioneTracciata>(connection, [&](const TraceEntry& entry) {
            result.steps.push_back({entry.operation, relay_->packets(Direction::ToServer),
                                    relay_->packets(Direction::ToClient)});
            if (entry.operation == "BeginTrans") {
              connection->setCommandTimeout(seconds);  // the questions before are slow at first
            }
          });
      service.CPInput->AnnoSolare = 2025;
      service.CPInput->Pvar_Ditta = 5;
      service.CPInput->Pint_TipoCF = Cliente;
      service.CPInput->Pvar_CliFor = 700;
      service.DuplicaCliFor();
      result.stato = service.Stato;
      result.errore = service.Errore;
      relay_->drop();
    }
    example_->writeEveryRow();
    result.database = example_->picture();
    if (result.database != before_) {
      example_->restore(kFreeCustomer);
    }
    return result;
  }

  [[nodiscard]] std::size_t indexOf(std::string_view operation) const {
    std::size_t index = 0;
    while (index < whole_.steps.size() && whole_.steps[index].operation != operation) {
      ++index;
    }
    return index;
  }

  /// The first operation that has not had all its packets when the connection breaks.
  [[nodiscard]] std::size_t brokenAt(Direction direction, std::size_t number,
                                     Trouble trouble) const {
    std::size_t index = 0;
    for (; index < whole_.steps.size(); ++index) {
      const Step& step = whole_.steps[index];
      const std::size_t last = direction == Direction::ToServer ? step.toServer : step.toClient;
      const bool answered = direction == Direction::ToClient && trouble == Trouble::CutAfter;
      const bool silent = index > 0 && step.toServer == whole_.steps[index - 1].toServer;
      if (!silent && (answered ? last > number : last >= number)) {
        break;
      }
    }
    return index;
  }

  /// What docs/reliability.md promises for a cut there.
  [[nodiscard]] Expected promised(Direction direction, std::size_t number, Trouble trouble) const {
    const std::size_t broken = brokenAt(direction, number, trouble);
    if (broken > commit_) {
      return {.stato = 0, .before = false, .after = true};
    }
    if (broken == commit_) {
      return promisedForCommit(direction, number, trouble);
    }
    // A failing look-up of the group counts as "no group", and nothing is left to ask.
    return {.stato = broken < indexOf("Find") ? 0 : 99};
  }

  [[nodiscard]] Expected promisedForCommit(Direction direction, std::size_t number,
                                           Trouble trouble) const {
    const Step& earlier = whole_.steps[commit_ - 1];
    if (direction == Direction::ToServer) {
      const std::size_t nth = number - earlier.toServer;
      // Nobody knows whether the server comes to read the first one; later ones follow its answer.
      return nth == 1 ? Expected{.stato = 99, .before = true, .after = true}
                      : Expected{.stato = 0, .before = false, .after = true};
    }
    const bool answered =
        trouble == Trouble::CutAfter ? number > earlier.toClient : number > earlier.toClient + 1;
    const bool reached = trouble == Trouble::CutInside || answered;
    return {.stato = answered ? 0 : 99, .before = !reached, .after = reached};
  }

  void expectPromised(Direction direction, std::size_t number, Trouble trouble,
                      const Result& found) const {
    const Expected expected = promised(direction, number, trouble);
    const std::size_t broken = brokenAt(direction, number, trouble);
    const std::string where =
        join(nameOf(trouble), " packet ", static_cast<std::int64_t>(number), " ", nameOf(direction),
             ", ", broken < whole_.steps.size() ? whole_.steps[broken].operation : "the end");
    EXPECT_EQ(found.stato, Variant{static_cast<std::int16_t>(expected.stato)})
        << where << ": " << found.errore.text();
    if (expected.stato == 0) {
      EXPECT_TRUE(found.errore.isEmpty()) << where << ": " << found.errore.text();
    } else {
      const std::string text = found.errore.text();
      EXPECT_TRUE(text.ends_with(kFixedEnd) && text.size() > kFixedEnd.size())
          << where << ": " << text;
    }
    const bool asBefore = found.database == before_;
    EXPECT_TRUE(asBefore || found.database == whole_.database) << where << ": between";
    EXPECT_TRUE(asBefore ? expected.before : expected.after)
        << where << ": as " << (asBefore ? "before" : "after");
  }

  /// Breaks the connection at every packet of one direction in turn.
  void expectPromisedEverywhere(Direction direction, Trouble trouble) {
    const Step& last = whole_.steps.back();
    const std::size_t packets = direction == Direction::ToServer ? last.toServer : last.toClient;
    ASSERT_GT(packets, whole_.steps.size() / 2);
    for (std::size_t number = 1; number <= packets; ++number) {
      const Result found = call([&] { relay_->watch(direction, number, trouble); });
      EXPECT_TRUE(relay_->troubled()) << number;
      expectPromised(direction, number, trouble, found);
    }
    std::cout << packets << " connections " << nameOf(trouble) << " a packet " << nameOf(direction)
              << "\n";
  }

  ServerExample* example_ = nullptr;
  std::unique_ptr<Relay> relay_;
  Lines before_;
  Result whole_;
  std::size_t commit_ = 0;
};

TEST_F(CutConnection, AfterAnyRequestLeavesAllOrNothing) {
  expectPromisedEverywhere(Direction::ToServer, Trouble::CutAfter);
}

TEST_F(CutConnection, AfterAnyAnswerLeavesAllOrNothing) {
  expectPromisedEverywhere(Direction::ToClient, Trouble::CutAfter);
}

TEST_F(CutConnection, InsideAnyAnswerLeavesAllOrNothing) {
  expectPromisedEverywhere(Direction::ToClient, Trouble::CutInside);
}

TEST_F(CutConnection, AHeldOneEndsWithTheTimeOutAndAllIsUndone) {
  constexpr int kSeconds = 3;
  const std::size_t statement = (indexOf("BeginTrans") + commit_) / 2;
  ASSERT_EQ(whole_.steps[statement].operation, "Execute");
  for (const Direction direction : {Direction::ToServer, Direction::ToClient}) {
    const Step& step = whole_.steps[statement];
    const Result found = call(
        [&] {
          relay_->watch(direction, direction == Direction::ToServer ? step.toServer : step.toClient,
                        Trouble::Hold);
        },
        kSeconds);
    EXPECT_TRUE(relay_->troubled());
    EXPECT_EQ(found.stato, Variant{std::int16_t{99}});
    EXPECT_TRUE(found.errore.text().ends_with(kFixedEnd)) << found.errore.text();
    EXPECT_EQ(found.database, before_) << nameOf(direction);
  }
}

TEST_F(CutConnection, ASlowOneChangesNothing) {
  constexpr std::chrono::milliseconds kDelay{150};
  for (const Direction direction : {Direction::ToServer, Direction::ToClient}) {
    const Result found = call([&] {
      const Step& middle = whole_.steps[commit_ / 2];
      relay_->watch(direction, direction == Direction::ToServer ? middle.toServer : middle.toClient,
                    Trouble::Delay, kDelay);
    });
    EXPECT_TRUE(relay_->troubled());
    EXPECT_EQ(found.stato, Variant{std::int16_t{0}}) << found.errore.text();
    EXPECT_EQ(found.database, whole_.database);
  }
}

}  // namespace
}  // namespace azcoll::test
