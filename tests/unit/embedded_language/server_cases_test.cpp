// The cases of the language on the server of AZCOLL_TEST_CONNESSIONE: what they say of T-SQL holds
// there, too, but for what is marked as that server's own way.

#include <algorithm>
#include <cstdint>
#include <iostream>
#include <memory>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "gtest/gtest.h"

#include "data/error.h"
#include "support/another_server.h"
#include "unit/embedded_language/case_file.h"
#include "unit/embedded_language/support.h"

namespace azcoll::test {
namespace {

std::shared_ptr<Connection> openServer() {
  std::shared_ptr<Connection> connection = newConnectionFor(serverConnectionString());
  connection->setCommandTimeout(60);
  connection->setCursorLocation(CursorLocation::Client);
  connection->open("", "", CommandOption::Unspecified);
  return connection;
}

/// Whether nothing of a section's is left in the database; drops what it can.
bool dropOneRound(Connection& connection) {
  const std::vector<std::string> drops = lines(
      connection,
      "SELECT 'DROP ' + CASE WHEN type = 'U' THEN 'TABLE' WHEN type = 'V' THEN 'VIEW' WHEN type = "
      "'P' "
      "THEN 'PROCEDURE' ELSE 'FUNCTION' END + ' [' + SCHEMA_NAME(schema_id) + '].[' + name + ']' "
      "FROM sys.objects WHERE type IN ('U', 'V', 'P', 'FN', 'IF', 'TF')");
  for (const std::string& drop : drops) {
    try {
      run(connection, drop);
    } catch (const Error&) {  // another table still refers to it: the next round
      connection.errors().clear();
    }
  }
  return drops.empty();
}

void emptyDatabase(Connection& connection) {
  constexpr int kRounds = 6;  // the longest chain of foreign keys in a case is shorter
  for (int round = 0; round < kRounds; ++round) {
    if (dropOneRound(connection)) {
      return;
    }
  }
  FAIL() << "objects of a case are left in the database";
}

struct Counts {
  int run = 0;
  int equal = 0;
  int marked = 0;
  int outside = 0;
};

bool anyText(const Section& section, std::string_view word) {
  for (const std::vector<Block>* const blocks : {&section.setup, &section.blocks}) {
    for (const Block& block : *blocks) {
      if (detail::lowered(block.statement).find(word) != std::string::npos) {
        return true;
      }
    }
  }
  return false;
}

/// Whether a section leaves something in its session, or needs one that is new: the server at hand
/// forgets table variables in a session that has checked a foreign key.
bool needsOwnSession(const Section& section) {
  return anyText(section, " table (") ? anyText(section, "declare")
                                      : anyText(section, "set nocount");
}

/// Runs the sections of a file. Sessions and tables are what costs: the tables of the setup are
/// made once and every section runs in a transaction that is undone, all in one session, but for
/// those with transactions of their own and with identities, which no server takes back.
class ServerCases {
 public:
  void runFile(const std::vector<Section>& sections) {
    std::vector<const Section*> apart;
    bool ready = false;
    for (const Section& section : sections) {
      if (anyText(section, "tran") || anyText(section, "identity")) {
        apart.push_back(&section);
        continue;
      }
      if (!ready) {
        setUp(section);
        ready = true;
      }
      runInTransaction(section);
    }
    for (const Section* const section : apart) {
      setUp(*section);
      const std::shared_ptr<Connection> connection = openServer();
      begin(*section);
      for (const Block& block : section->blocks) {
        runBlock(block, *connection);
      }
      end();
    }
    emptyDatabase(*shared_);
  }

  [[nodiscard]] const Counts& counts() const { return counts_; }

 private:
  void setUp(const Section& section) {
    emptyDatabase(*shared_);
    begin(section);
    for (const Block& block : section.setup) {
      runBlock(block, *shared_);
    }
  }

  void runInTransaction(const Section& section) {
    const std::shared_ptr<Connection> connection =
        needsOwnSession(section) ? openServer() : shared_;
    connection->beginTrans();
    begin(section);
    for (auto block = section.blocks.begin(); block != section.blocks.end(); ++block) {
      if (!runBlock(*block, *connection)) {
        continue;
      }
      // What the section had done in front of an error that undid it is done anew.
      connection->rollbackTrans();
      connection->beginTrans();
      for (auto earlier = section.blocks.begin(); earlier != block; ++earlier) {
        if (earlier->expected.kind == Expected::Kind::None) {
          static_cast<void>(runOnServer(*earlier, *connection));
        }
      }
    }
    end();
    connection->rollbackTrans();
  }

  void begin(const Section& section) {
    section_ = &section;
    differences_ = 0;
  }

  void end() const {
    if (!section_->serverWay.empty() && differences_ == 0 && onAnotherServer()) {
      ADD_FAILURE() << *section_
                    << ": the mark of the section is not needed: " << section_->serverWay;
    }
  }

  /// Whether the block has undone the transaction.
  bool runBlock(const Block& block, Connection& connection) {
    if (block.expected.kind == Expected::Kind::Outside) {
      ++counts_.outside;  // what the engine refuses says nothing of T-SQL
      return false;
    }
    ++counts_.run;
    const ServerAnswer answer = runOnServer(block, connection);
    connection.errors().clear();
    if (answer.complaints.empty()) {
      ++counts_.equal;
      if (onAnotherServer() && !block.serverWay.empty()) {
        ADD_FAILURE() << section_->file << ".txt line " << block.line
                      << ": the mark is not needed: " << block.serverWay;
      }
      return answer.transactionLost;
    }
    ++differences_;
    if (onAnotherServer() && (!block.serverWay.empty() || !section_->serverWay.empty())) {
      ++counts_.marked;
      return answer.transactionLost;
    }
    for (const std::string& complaint : answer.complaints) {
      ADD_FAILURE() << section_->file << ".txt " << complaint;
    }
    return answer.transactionLost;
  }

  std::shared_ptr<Connection> shared_ = openServer();
  const Section* section_ = nullptr;
  Counts counts_;
  int differences_ = 0;
};

/// The sections of each file together.
std::vector<std::vector<Section>> sectionsByFile() {
  std::vector<std::vector<Section>> files;
  for (Section& section : allSections()) {
    if (files.empty() || files.back().front().file != section.file) {
      files.emplace_back();
    }
    files.back().push_back(std::move(section));
  }
  return files;
}

TEST(LanguageOnAServer, IsThatOfTheCases) {
  if (serverConnectionString().empty()) {
    GTEST_SKIP() << "AZCOLL_TEST_CONNESSIONE names no server";
  }
  ServerCases cases;
  for (const std::vector<Section>& sections : sectionsByFile()) {
    cases.runFile(sections);
  }
  const Counts& counts = cases.counts();
  std::cout << "statements of the language on the server: " << counts.run << " run, "
            << counts.equal << " as written, " << counts.marked << " in the server's own way; "
            << counts.outside << " outside the engine's language not run\n";
  EXPECT_GT(counts.equal, counts.marked);
}

}  // namespace
}  // namespace azcoll::test
