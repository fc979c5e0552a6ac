#include "providers/provider.h"

#include <array>
#include <cstdlib>
#include <fstream>
#include <string>
#include <unistd.h>

#include "platform/provider_factory.h"
#include "providers/postgres_server.h"
#include "support/scratch_folder.h"
#include "support/server_database.h"

namespace azcoll::test {
namespace {

#ifdef AZCOLL_WITH_ODBC
constexpr bool kHasOdbc = true;
#else
constexpr bool kHasOdbc = false;
#endif
constexpr const char* kNoOdbc = "This build has no ODBC provider (unixodbc-dev was not installed).";

const std::map<std::string, std::string, std::less<>>& serverWords() {
  static const std::map<std::string, std::string, std::less<>> words{
      {"n", "N"},
      {"nvarchar", "NVARCHAR"},
      {"long", "VARCHAR(MAX)"},
      {"bit", "BIT"},
      {"datetime", "DATETIME"},
      {"binary", "VARBINARY(MAX)"},
      {"true", "1"},
      {"false", "0"},
      {"bytes", "0x"},
      {"endbytes", ""},
      {"identity", "INT IDENTITY(1,1)"}};
  return words;
}

void addServerProcedure(Provider& provider) {
  provider.createProcedure =
      "CREATE PROCEDURE P1_PROVA @Codice INT, @Testo VARCHAR(100) = NULL OUTPUT AS BEGIN"
      " SET NOCOUNT ON SET @Testo = 'codice ' + CAST(@Codice AS VARCHAR(10))"
      " SELECT @Codice AS DITTA END";
  provider.dropProcedure = "DROP PROCEDURE P1_PROVA";
  provider.parameterMark = "@";
}

/// Whether the driver manager knows a driver of that name.
bool hasDriver(const std::string& name) {
  std::ifstream file{"/etc/odbcinst.ini"};
  for (std::string line; std::getline(file, line);) {
    if (line == "[" + name + "]") {
      return true;
    }
  }
  return false;
}

Provider embedded() {
  Provider provider{.name = "embedded"};
  provider.connectionString = "Provider=embedded;Data Source=:memory:";
  provider.words = serverWords();
  addServerProcedure(provider);
  provider.lacks[Ability::Binary] = "The embedded engine has no binary types.";
  provider.lacks[Ability::SecondConnection] =
      "A database in memory belongs to one connection; files have tests of their own.";
  provider.lacks[Ability::TimeLimits] = "It runs no statement of its own that only waits.";
  provider.lacks[Ability::UndoesByItself] =
      "It undoes a whole transaction only when its disk fails; that has a test of its own.";
  return provider;
}

Provider sqlite() {
  static const ScratchFolder folder;
  Provider provider{.name = "sqlite_odbc"};
  if (!kHasOdbc) {
    provider.absent = kNoOdbc;
  } else if (!hasDriver("SQLite3")) {
    provider.absent = "The ODBC driver for SQLite (libsqliteodbc) is not installed.";
  }
  provider.connectionString = "Driver=SQLite3;Database=" + folder.file("prova.db") + ";";
  provider.words = {{"n", ""},
                    {"nvarchar", "VARCHAR"},
                    {"long", "LONGVARCHAR"},
                    {"bit", "BIT"},
                    {"datetime", "TIMESTAMP"},
                    {"binary", "LONGVARBINARY"},
                    {"true", "1"},
                    {"false", "0"},
                    {"bytes", "x'"},
                    {"endbytes", "'"},
                    {"identity", "INTEGER"}};
  provider.lacks[Ability::UndoesByItself] = "SQLite does so only when its disk fails.";
  provider.lacks[Ability::ExactDecimals] =
      "SQLite keeps decimals as binary floating point numbers.";
  provider.lacks[Ability::TimeLimits] = "Its driver does not limit the time of a statement.";
  provider.lacks[Ability::SeveralResults] = "Its driver takes one statement at a time.";
  provider.lacks[Ability::Procedures] = "SQLite has no stored procedures.";
  provider.lacks[Ability::SqlStates] = "Its driver reports every failure with state HY000.";
  provider.lacks[Ability::Unicode] =
      "Its driver has no wide calls, and the driver manager keeps the low byte of each unit.";
  return provider;
}

Provider postgresql() {
  Provider provider{.name = "postgresql"};
  if (!kHasOdbc) {
    provider.absent = kNoOdbc;
  } else if (!hasDriver("PostgreSQL Unicode")) {
    provider.absent = "The ODBC driver for PostgreSQL (odbc-postgresql) is not installed.";
  } else {
    static const PostgresServer server;
    provider.absent = server.failure();
    provider.connectionString = server.connectionString();
  }
  provider.words = {{"n", "N"},         {"nvarchar", "VARCHAR"},      {"long", "TEXT"},
                    {"bit", "BOOLEAN"}, {"datetime", "TIMESTAMP(3)"}, {"binary", "BYTEA"},
                    {"true", "TRUE"},   {"false", "FALSE"},           {"bytes", "'\\x"},
                    {"endbytes", "'"},  {"identity", "SERIAL"}};
  provider.lacks[Ability::UndoesByItself] = "It keeps a failed transaction until it is ended.";
  provider.lacks[Ability::Outputs] = "Outputs of its functions are columns of the row they give.";
  provider.createProcedure =
      "CREATE FUNCTION P1_PROVA(Codice INT) RETURNS TABLE (DITTA INT) AS"
      " $$ SELECT Codice $$ LANGUAGE SQL";
  provider.dropProcedure = "DROP FUNCTION P1_PROVA";
  provider.slowStatement = "SELECT pg_sleep(20)";
  return provider;
}

Provider server() {
  Provider provider{.name = "server"};
  const char* const value = std::getenv("AZCOLL_TEST_CONNESSIONE");
  if (value == nullptr || *value == '\0') {
    provider.absent = "AZCOLL_TEST_CONNESSIONE names no server.";
  } else {
    static const ServerDatabase own{value};
    provider.connectionString = own.connectionString();
  }
  provider.words = serverWords();
  addServerProcedure(provider);
  provider.slowStatement = "WAITFOR DELAY '00:00:20'";
  return provider;
}

constexpr std::array<std::string_view, 3> kTables{"T2_PROVA", "T1_PROVA", "T3_PROVA"};

}  // namespace

std::vector<std::string> providerNames() {
  return {"embedded", "sqlite_odbc", "postgresql", "server"};
}

const Provider& providerNamed(const std::string& name) {
  static std::map<std::string, Provider> made;
  const auto known = made.find(name);
  if (known != made.end()) {
    return known->second;
  }
  Provider provider;
  if (name == "embedded") {
    provider = embedded();
  } else if (name == "sqlite_odbc") {
    provider = sqlite();
  } else if (name == "postgresql") {
    provider = postgresql();
  } else {
    provider = server();
  }
  return made.emplace(name, std::move(provider)).first->second;
}

void OnProvider::SetUp() {
  provider_ = &providerNamed(GetParam());
  if (!provider_->absent.empty()) {
    GTEST_SKIP() << provider_->name << ": " << provider_->absent;
  }
  connection_ = another();
  dropTables();
}

void OnProvider::TearDown() {
  if (connection_ && connection_->isOpen()) {
    dropTables();
  }
}

std::shared_ptr<Connection> OnProvider::another() const {
  std::shared_ptr<Connection> connection = newConnectionFor(provider_->connectionString);
  connection->setCommandTimeout(100);
  connection->setCursorLocation(CursorLocation::Client);
  connection->open("", "", CommandOption::Unspecified);
  return connection;
}

// A run that broke off leaves tables behind; a missing one is no failure.
void OnProvider::dropTables() {
  for (const std::string_view table : kTables) {
    try {
      run(std::string{"DROP TABLE "}.append(table));
    } catch (const Error&) {
      connection_->errors().clear();
    }
  }
}

std::string OnProvider::inItsWords(std::string_view text) const {
  std::string result;
  while (!text.empty()) {
    const std::size_t open = text.find('{');
    result += text.substr(0, open);
    if (open == std::string_view::npos) {
      break;
    }
    const std::size_t close = text.find('}', open);
    result += provider_->words.at(std::string{text.substr(open + 1, close - open - 1)});
    text.remove_prefix(close + 1);
  }
  return result;
}

std::shared_ptr<Recordset> OnProvider::run(std::string_view text) {
  std::int64_t affected = 0;
  return connection_->execute(inItsWords(text), affected, CommandOption::Text);
}

std::int64_t OnProvider::affectedBy(std::string_view text) {
  std::int64_t affected = 0;
  connection_->execute(inItsWords(text), affected, CommandOption::Text);
  return affected;
}

Variant OnProvider::value(std::string_view text) {
  const std::shared_ptr<Recordset> rows = run(text);
  if (!rows || rows->atEnd()) {
    ADD_FAILURE() << "no row: " << text;
    return {};
  }
  return rows->fields().item(std::size_t{0}).value();
}

std::vector<std::string> OnProvider::lines(std::string_view text) {
  const std::shared_ptr<Recordset> rows = run(text);
  std::vector<std::string> result;
  if (!rows) {
    ADD_FAILURE() << "no result: " << text;
    return result;
  }
  for (; !rows->atEnd(); rows->moveNext()) {
    std::string line;
    for (std::size_t column = 0; column < rows->fields().count(); ++column) {
      const Variant cell = rows->fields().item(column).value();
      line += column == 0 ? "" : "|";
      line += cell.isNull() ? "NULL" : cell.text();
    }
    result.push_back(line);
  }
  return result;
}

std::shared_ptr<Recordset> OnProvider::open(std::string_view text) {
  std::shared_ptr<Recordset> rows = connection_->newRecordset();
  rows->setActiveConnection(connection_);
  rows->setSource(inItsWords(text));
  rows->setCursorLocation(CursorLocation::Client);
  rows->setCursorType(CursorType::Keyset);
  rows->setLockType(LockType::BatchOptimistic);
  rows->open(CursorType::Unspecified, LockType::Unspecified, CommandOption::Text);
  return rows;
}

}  // namespace azcoll::test
