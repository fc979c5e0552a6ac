#pragma once

#include <string>

#include "cli_test.h"
#include "support/server_login.h"
#include "support/test_database.h"

namespace azcoll::cli {

/// A test of the command on the server that AZCOLL_TEST_CONNESSIONE names, in this process's own
/// database there, which is empty at the start. Skipped where there is no server.
class ServerTest : public FolderTest {
 protected:
  void SetUp() override {
    if (server_.empty()) {
      GTEST_SKIP() << "AZCOLL_TEST_CONNESSIONE names no server";
    }
  }

  /// Runs a statement as the owner of the database.
  void run(const std::string& statement) const {
    const Outcome outcome = azcoll("sql", "--connessione", server_, statement);
    ASSERT_EQ(outcome.code, ExitCode::Ok) << statement << '\n' << outcome.err;
  }

  /// Tables, procedure and function, without a row.
  void installSchema() const {
    const Outcome outcome = azcoll("crea", "--connessione", server_);
    ASSERT_EQ(outcome.code, ExitCode::Ok) << outcome.err;
  }

  std::string server_ = test::emptyServerDatabase();
};

}  // namespace azcoll::cli
