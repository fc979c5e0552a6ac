#pragma once

#include <cstdint>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <memory>
#include <string>
#include <unistd.h>

#include "data/connection.h"
#include "data/text.h"
#include "platform/provider_factory.h"
#include "tsql/script.h"

/// The databases that the benchmarks work on.
namespace azcoll::bench {

/// Main company of the group that the benchmarks add; its linked companies follow it by number.
inline constexpr int kMainCompany = 1000;

/// Runs a statement whose rows do not matter.
inline void run(Connection& connection, const std::string& sql) {
  std::int64_t affected = 0;
  connection.execute(sql, affected, CommandOption::Text);
}

/// The one number that a query gives.
inline std::int64_t numberOf(Connection& connection, const std::string& sql) {
  std::int64_t affected = 0;
  return connection.execute(sql, affected, CommandOption::Text)
      ->fields()
      .item(std::size_t{0})
      .value()
      .toInt64();
}

inline void runScript(Connection& connection, const std::string& name) {
  std::ifstream file{std::string(AZCOLL_SOURCE_DIR) + "/schema/" + name};
  const std::string script{std::istreambuf_iterator<char>{file}, {}};
  for (const tsql::ScriptBatch& batch : tsql::splitScript(script)) {
    run(connection, batch.text);
  }
}

/// The example database, in memory or in a new file.
inline std::shared_ptr<Connection> openExample(const std::string& file = ":memory:") {
  std::shared_ptr<Connection> connection =
      newConnectionFor(join("Provider=embedded;Create=True;Data Source=", file));
  connection->setCursorLocation(CursorLocation::Client);
  connection->open("", "", CommandOption::Unspecified);
  for (const char* name : {"tabelle.sql", "procedure.sql", "esempio.sql"}) {
    runScript(*connection, name);
  }
  return connection;
}

/// Adds a group to the example: main company 1000 with `linked` linked companies behind it, in
/// 2025. Each has the intermediary 1 and the branch 1.
inline void addGroup(Connection& connection, int linked) {
  connection.beginTrans();
  for (int company = kMainCompany; company <= kMainCompany + linked; ++company) {
    run(connection, join("INSERT INTO CG18_ANADITTABASE (CG18_DITTA, CG18_CODICE_CG16) VALUES (",
                         company, ", 1010)"));
    run(connection, join("INSERT INTO CG40_ANADITTAINTER (CG40_DITTA_CG18, CG40_TIPOCF,"
                         " CG40_INTERMEDIO, CG40_DESCR) VALUES (",
                         company, ", 0, 1, N'Agenzia Nord')"));
    run(connection, join("INSERT INTO CG31_ANADITTASEDI (CG31_DITTA_CG18, CG31_CODICE) VALUES (",
                         company, ", 1)"));
    if (company > kMainCompany) {
      run(connection,
          join("INSERT INTO CG86_AZIENDECOLL (CG86_INDTIPO, CG86_ANNOIVA, CG86_INDTIPOCONT,"
               " CG86_DITTA_CG18, CG86_DITTACOLL_CG18) VALUES (0, 2025, 0, ",
               kMainCompany, ", ", company, ")"));
    }
  }
  connection.commitTrans();
}

/// Saves a customer in the main company.
inline void addCustomer(Connection& connection, std::int64_t code) {
  run(connection,
      join("INSERT INTO CG44_CLIFOR (CG44_DITTA_CG18, CG44_TIPOCF, CG44_CLIFOR, CG44_CODICE_CG16,"
           " CG44_GRUPPO_CG10, CG44_TIPOCF_CG40, CG44_INTERMEDIO_CG40, CG44_CODICE_CG08,"
           " CG44_CODICE_CG28, CG44_CODSEDE_CG31, CG44_FLGATTIVO) VALUES (",
           kMainCompany, ", 0, ", code, ", 3005, 1, 0, 1, N'IT', N'22', 1, 1)"));
}

/// How many companies of the group hold the code and have it as their last number: the answer that
/// is checked before anything is timed.
inline std::int64_t companiesWith(Connection& connection, std::int64_t code) {
  return numberOf(connection,
                  join("SELECT COUNT(*) FROM CG44_CLIFOR INNER JOIN CG70_NUMERDOC ON"
                       " CG70_DITTA_CG18 = CG44_DITTA_CG18 AND CG70_TIPODOCINT = 901 AND CG70_ANNO"
                       " = 0 AND CG70_ULTNUMDOC = ",
                       code, " WHERE CG44_TIPOCF = 0 AND CG44_CLIFOR = ", code,
                       " AND CG44_DITTA_CG18 >= ", kMainCompany));
}

/// A file name of this process's own, removed at the end.
class ScratchFile {
 public:
  ScratchFile()
      : path_{std::filesystem::temp_directory_path() /
              join("azcoll-bench-", static_cast<std::int64_t>(::getpid()), "-", ++count_, ".db")} {
    remove();
  }
  ScratchFile(const ScratchFile&) = delete;
  ScratchFile(ScratchFile&&) = delete;
  ScratchFile& operator=(const ScratchFile&) = delete;
  ScratchFile& operator=(ScratchFile&&) = delete;
  ~ScratchFile() { remove(); }

  [[nodiscard]] std::string path() const { return path_.string(); }

 private:
  void remove() const {
    std::error_code ignored;
    for (const char* const end : {"", "-wal", "-shm"}) {
      std::filesystem::remove(path_.string() + end, ignored);
    }
  }

  static inline int count_ = 0;
  std::filesystem::path path_;
};

}  // namespace azcoll::bench
