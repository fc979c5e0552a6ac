// What an installation sends, and what it leaves when something fails on the way.

#include "deployment/installation.h"

#include <algorithm>
#include <iterator>
#include <memory>
#include <string>
#include <vector>

#include "gmock/gmock.h"
#include "gtest/gtest.h"

#include "data/error.h"
#include "deployment/rights.h"
#include "deployment/schema.h"
#include "deployment/scripts.h"
#include "support/scripted_connection.h"
#include "tsql/script.h"

namespace azcoll::deployment {
namespace {

using azcoll::test::Failure;
using azcoll::test::rowSet;
using azcoll::test::ScriptedConnection;
using ::testing::AllOf;
using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::StartsWith;
using ::testing::ThrowsMessage;

using Scripts = std::vector<const Script*>;

class Installation : public ::testing::Test {
 protected:
  /// The operations without the question for what is there.
  [[nodiscard]] std::vector<std::string> operations() const {
    std::vector<std::string> texts;
    for (const auto& operation : server_->operations) {
      if (operation.name == "Execute") {
        if (!operation.sql.starts_with("SELECT S.name")) {
          texts.push_back(operation.sql);
        }
      } else {
        texts.push_back(operation.name);
      }
    }
    return texts;
  }

  static std::vector<std::string> batchesOf(const Script& script) {
    std::vector<std::string> texts;
    for (const tsql::ScriptBatch& batch : tsql::splitScript(script.text)) {
      texts.push_back(batch.text);
    }
    return texts;
  }

  static bool holdsGrants(const std::string& batch) {
    return batch.find("\nGRANT ") != std::string::npos;
  }

  std::vector<RefusedGrant> installAll() { return install(*server_, all_); }

  /// Every right of the role, each by itself.
  static std::vector<std::string> grants() {
    std::vector<std::string> texts;
    for (const Grant& grant : expectedRights().grants) {
      texts.push_back("GRANT " + grant.right + " ON " + grant.owner + "." + grant.object +
                      " TO azcoll_servizio");
    }
    return texts;
  }

  /// The scripts as they should be sent, the last one broken off at `failing` when it is set.
  static std::vector<std::string> sent(const Scripts& scripts, const std::string& failing = "") {
    std::vector<std::string> texts;
    for (const Script* script : scripts) {
      texts.emplace_back("BeginTrans");
      for (const std::string& batch : batchesOf(*script)) {
        if (script == &kPermessi && holdsGrants(batch)) {
          continue;
        }
        texts.push_back(batch);
        if (batch == failing) {
          texts.emplace_back("RollbackTrans");
          return texts;
        }
      }
      texts.emplace_back("CommitTrans");
      if (script == &kPermessi) {
        std::ranges::copy(grants(), std::back_inserter(texts));
      }
    }
    return texts;
  }

  std::shared_ptr<ScriptedConnection> server_ = std::make_shared<ScriptedConnection>();
  const Scripts all_{&kTabelle, &kProcedure, &kEsempio, &kPermessi};
};

TEST_F(Installation, SendsEveryBatchInOneTransactionForEachScript) {
  installAll();
  EXPECT_EQ(operations(), sent(all_));
  EXPECT_EQ(batchesOf(kProcedure).size(), 2U);
  EXPECT_GT(batchesOf(kTabelle).size(), 3U);
}

TEST_F(Installation, UndoesTheScriptThatFailsWhereverItFails) {
  for (std::size_t script = 0; script < all_.size(); ++script) {
    for (const std::string& batch : batchesOf(*all_[script])) {
      if (holdsGrants(batch)) {
        continue;
      }
      server_ = std::make_shared<ScriptedConnection>();
      server_->fail(batch, Failure::Provider, "guasto");
      const std::string name{all_[script]->name};
      EXPECT_THAT([&] { installAll(); },
                  ThrowsMessage<Error>(AllOf(StartsWith(name + ", riga "),
                                             HasSubstr("Errore 50000 (HY000): guasto"),
                                             HasSubstr(name + " è stato annullato per intero."))));
      EXPECT_EQ(operations(), sent(Scripts(all_.data(), all_.data() + script + 1), batch));
    }
  }
}

TEST_F(Installation, ReportsWhatIsInstalledAndWhatIsNot) {
  server_->fail(batchesOf(kEsempio).front(), Failure::Provider, "guasto");
  EXPECT_THAT([&] { installAll(); },
              ThrowsMessage<Error>(HasSubstr("Installati: tabelle.sql, procedure.sql. "
                                             "Non installati: esempio.sql, permessi.sql.")));
  server_ = std::make_shared<ScriptedConnection>();
  server_->fail(batchesOf(kTabelle).front(), Failure::Provider, "guasto");
  EXPECT_THAT([&] { installAll(); },
              ThrowsMessage<Error>(HasSubstr("Installati: nessuno. Non installati: tabelle.sql")));
}

TEST_F(Installation, UndoesAScriptThatIsNotConfirmed) {
  server_->fail("CommitTrans", Failure::Provider, "connessione persa");
  EXPECT_THAT([&] { installAll(); },
              ThrowsMessage<Error>(AllOf(HasSubstr("tabelle.sql: la conferma non è riuscita"),
                                         HasSubstr("connessione persa"))));
  std::vector<std::string> expected = sent({&kTabelle});
  expected.emplace_back("RollbackTrans");
  EXPECT_EQ(operations(), expected);
}

TEST_F(Installation, GrantsTheOtherRightsWhenTheServerRefusesOne) {
  for (std::size_t i : {std::size_t{0}, grants().size() / 2, grants().size() - 1}) {
    server_ = std::make_shared<ScriptedConnection>();
    server_->fail(grants()[i], Failure::Provider, "diritto che non conosco");
    const std::vector<RefusedGrant> refused = installAll();
    ASSERT_THAT(refused, ::testing::SizeIs(1));
    const Grant& grant = expectedRights().grants[i];
    EXPECT_EQ(refused.front().right, grant.right + " su dbo." + grant.object);
    EXPECT_EQ(refused.front().reason, "Errore 50000 (HY000): diritto che non conosco");
    EXPECT_EQ(operations(), sent(all_));
  }
}

TEST_F(Installation, GrantsNothingWhenTheConnectionIsLost) {
  server_->fail(grants()[2], Failure::Lost, "caduta");
  EXPECT_THAT([&] { installAll(); },
              ThrowsMessage<InstallationCutShort>(AllOf(
                  HasSubstr(expectedRights().grants[2].object), HasSubstr("caduta"),
                  HasSubstr("Installati: tabelle.sql, procedure.sql, esempio.sql. Non installati: "
                            "permessi.sql."))));
  EXPECT_EQ(operations().back(), grants()[2]);
}

TEST_F(Installation, SaysThatAConfirmationWithoutAnswerIsOpen) {
  server_->fail("CommitTrans", Failure::Lost, "caduta");
  EXPECT_THAT([&] { installAll(); }, ThrowsMessage<InstallationCutShort>(
                                         HasSubstr("Se tabelle.sql è stato installato lo dice: "
                                                   "azcoll diagnosi")));
  EXPECT_EQ(operations().back(), "CommitTrans");
}

TEST_F(Installation, ReportsThatTheUndoingFailedToo) {
  server_->fail(batchesOf(kProcedure).back(), Failure::Provider, "guasto");
  server_->fail("RollbackTrans", Failure::Provider, "connessione persa");
  EXPECT_THAT([&] { installAll(); },
              ThrowsMessage<Error>(
                  AllOf(HasSubstr("guasto"), HasSubstr("L'annullamento di procedure.sql non è "
                                                       "riuscito (connessione persa)"))));
}

TEST_F(Installation, DoesNotStartWithoutATransaction) {
  server_->fail("BeginTrans", Failure::Provider, "niente transazioni");
  EXPECT_THAT([&] { installAll(); }, ThrowsMessage<Error>(HasSubstr("niente transazioni")));
  EXPECT_THAT(operations(), ElementsAre("BeginTrans"));
}

TEST_F(Installation, RefusesADatabaseThatHasOneOfTheNames) {
  for (const char* name : {"CG16_ANAGGEN", "PC_GetDitteCollegate", "FNCG28_TABCODIVA"}) {
    server_ = std::make_shared<ScriptedConnection>();
    server_->answerPrefix("SELECT S.name",
                          rowSet({"PROPRIETARIO", "OGGETTO", "TIPO"}, {"dbo", name, "U "}));
    EXPECT_THAT([&] { installAll(); },
                ThrowsMessage<AlreadyThere>(
                    AllOf(HasSubstr(std::string{"Il database contiene già "} + name),
                          HasSubstr("non viene toccato"))));
    EXPECT_THAT(operations(), IsEmpty());
  }
}

TEST_F(Installation, AsksForEveryNameThatItWouldMake) {
  installAll();
  const std::string& question = server_->operations.front().sql;
  for (const SchemaTable& table : expectedSchema().tables) {
    EXPECT_THAT(question, HasSubstr("N'" + table.name + "'"));
  }
  for (const SchemaRoutine& routine : expectedSchema().routines) {
    EXPECT_THAT(question, HasSubstr("N'" + routine.name + "'"));
  }
}

TEST_F(Installation, DoesNotStartWhenTheCatalogueIsRefused) {
  server_->fail("SELECT S.name", Failure::Provider, "permesso negato");
  EXPECT_THAT([&] { installAll(); },
              ThrowsMessage<Error>(
                  AllOf(HasSubstr("non dice che cosa contiene"), HasSubstr("permesso negato"))));
  EXPECT_THAT(operations(), IsEmpty());
}

}  // namespace
}  // namespace azcoll::deployment
