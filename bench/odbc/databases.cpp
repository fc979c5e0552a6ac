#include "databases.h"

#include <filesystem>
#include <unistd.h>

#include "bench_database.h"
#include "data/error.h"
#include "providers/postgres_server.h"

namespace azcoll::bench {
namespace {

/// The ten columns that repeat, as a table of master data has them: numbers, codes, names, amounts,
/// dates, and columns that are often empty.
constexpr const char* kTypes[] = {"INTEGER",     "VARCHAR(40)", "DECIMAL(19,4)", "TIMESTAMP",
                                  "SMALLINT",    "VARCHAR(10)", "VARCHAR(60)",   "DOUBLE PRECISION",
                                  "VARCHAR(16)", "INTEGER"};
constexpr const char* kValues[] = {
    "i",
    "'Officine meccaniche ' || i",
    "CAST(i AS DECIMAL(19,4)) + 0.25",
    "{date}",
    "i % 1000",
    "'C' || (i % 100000)",
    "CASE WHEN i % 2 = 0 THEN 'Via Giuseppe Garibaldi ' || i || ', Bergamo' END",
    "i / 8.0",
    "'RSSMRA' || (1000000000 + i)",
    "CASE WHEN i % 3 = 0 THEN i END"};

void fillWideTable(Connection& connection, const std::string& date) {
  std::string table = "CREATE TABLE LARGA (";
  std::string values;
  for (int column = 0; column < kWideColumns; ++column) {
    const std::string separator = column == 0 ? "" : ", ";
    table += join(separator, "C", column, " ", kTypes[column % 10]);
    const std::string value = kValues[column % 10];
    values += separator + (value == "{date}" ? date : value);
  }
  run(connection, table + ")");
  run(connection, join("INSERT INTO LARGA WITH RECURSIVE N(i) AS (SELECT 1 UNION ALL SELECT i + 1"
                       " FROM N WHERE i < ",
                       kWideRows, ") SELECT ", values, " FROM N"));
}

/// What the main job touches, in neutral SQL.
void fillJobTables(Connection& connection) {
  run(connection,
      "CREATE TABLE INTERMEDIARI (DITTA INTEGER NOT NULL, TIPO INTEGER NOT NULL, CODICE"
      " INTEGER NOT NULL, DESCRIZIONE VARCHAR(40), PRIMARY KEY (DITTA, TIPO, CODICE))");
  run(connection,
      "CREATE TABLE SEDI (DITTA INTEGER NOT NULL, CODICE INTEGER NOT NULL,"
      " PRIMARY KEY (DITTA, CODICE))");
  run(connection,
      "CREATE TABLE CLIENTI (DITTA INTEGER NOT NULL, TIPO INTEGER NOT NULL, CODICE INTEGER NOT"
      " NULL, C4 INTEGER, C5 INTEGER, C6 VARCHAR(10), C7 VARCHAR(10), C8 VARCHAR(10), C9 INTEGER,"
      " C10 INTEGER, C11 INTEGER, C12 INTEGER, C13 INTEGER, C14 VARCHAR(4), C15 VARCHAR(4), C16"
      " INTEGER, C17 INTEGER, C18 INTEGER, C19 INTEGER, PRIMARY KEY (DITTA, TIPO, CODICE))");
  run(connection, "CREATE TABLE NUMERI (DITTA INTEGER NOT NULL PRIMARY KEY, ULTIMO INTEGER)");
  connection.beginTrans();
  for (int company = 1; company <= kJobCompanies; ++company) {
    run(connection, join("INSERT INTO INTERMEDIARI VALUES (", company, ", 0, 1, 'Agenzia Nord')"));
    run(connection, join("INSERT INTO SEDI VALUES (", company, ", 1)"));
    run(connection, join("INSERT INTO NUMERI VALUES (", company, ", 0)"));
  }
  connection.commitTrans();
}

OdbcDatabase filled(OdbcDatabase database, const std::string& date) {
  if (!database.absent.empty()) {
    return database;
  }
  try {
    const std::shared_ptr<Connection> connection = openOdbc(database);
    fillWideTable(*connection, date);
    fillJobTables(*connection);
  } catch (const Error& error) {
    database.absent = error.description();
  }
  return database;
}

}  // namespace

std::shared_ptr<Connection> openOdbc(const OdbcDatabase& database) {
  std::shared_ptr<Connection> connection = newConnectionFor(database.connectionString);
  connection->setCommandTimeout(100);
  connection->setCursorLocation(CursorLocation::Client);
  connection->open("", "", CommandOption::Unspecified);
  return connection;
}

const OdbcDatabase& sqliteDatabase() {
  static const ScratchFile file;
  static const OdbcDatabase database = filled(
      {.connectionString = join("Driver=SQLite3;Database=", file.path(), ";SyncPragma=OFF;")},
      "'2024-05-06 07:08:09'");
  return database;
}

const OdbcDatabase& postgresqlDatabase() {
  static const test::PostgresServer server;
  static const OdbcDatabase database =
      filled({.connectionString = server.connectionString(), .absent = server.failure()},
             "TIMESTAMP '2024-05-06 07:08:09'");
  return database;
}

}  // namespace azcoll::bench
