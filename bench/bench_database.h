#pragma once

#include <cstdint>
#include <fstream>
#include <iterator>
#include <memory>
#include <string>

#include "data/connection.h"
#include "data/text.h"
#include "platform/provider_factory.h"
#include "tsql/parser.h"

namespace azcoll::bench {

/// Runs a statement whose rows do not matter.
inline void run(Connection& connection, const std::string& sql) {
  std::int64_t affected = 0;
  connection.execute(sql, affected, CommandOption::Text);
}

inline void runScript(Connection& connection, const std::string& name) {
  std::ifstream file{std::string(AZCOLL_SOURCE_DIR) + "/schema/" + name};
  const std::string script{std::istreambuf_iterator<char>{file}, {}};
  for (const tsql::ScriptBatch& batch : tsql::splitScript(script)) {
    run(connection, batch.text);
  }
}

/// An in-memory company database with the example group.
inline std::shared_ptr<Connection> openExample() {
  std::shared_ptr<Connection> connection =
      newConnectionFor("Provider=embedded;Data Source=:memory:");
  connection->setCursorLocation(CursorLocation::Client);
  connection->open("", "", CommandOption::Unspecified);
  for (const char* name : {"tabelle.sql", "procedure.sql", "esempio.sql"}) {
    runScript(*connection, name);
  }
  return connection;
}

/// Adds a group to the example: main company 1000 with `linked` linked companies behind it, in
/// 2025.
inline void addGroup(Connection& connection, int linked) {
  connection.beginTrans();
  for (int company = 1000; company <= 1000 + linked; ++company) {
    run(connection, join("INSERT INTO CG18_ANADITTABASE (CG18_DITTA, CG18_CODICE_CG16) VALUES (",
                         company, ", 1010)"));
    if (company > 1000) {
      run(connection,
          join("INSERT INTO CG86_AZIENDECOLL (CG86_INDTIPO, CG86_ANNOIVA, CG86_INDTIPOCONT,"
               " CG86_DITTA_CG18, CG86_DITTACOLL_CG18) VALUES (0, 2025, 0, 1000, ",
               company, ")"));
    }
  }
  connection.commitTrans();
}

/// Saves a customer in company 1000.
inline void addCustomer(Connection& connection, std::int64_t code) {
  run(connection,
      join("INSERT INTO CG44_CLIFOR (CG44_DITTA_CG18, CG44_TIPOCF, CG44_CLIFOR, CG44_CODICE_CG16,"
           " CG44_GRUPPO_CG10, CG44_CODICE_CG08, CG44_CODICE_CG28, CG44_FLGATTIVO)"
           " VALUES (1000, 0, ",
           code, ", 3005, 1, N'IT', N'22', 1)"));
}

}  // namespace azcoll::bench
