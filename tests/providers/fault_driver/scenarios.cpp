#include <string>
#include <utility>

#include "providers/fault_driver/driver.h"

namespace azcoll::fault {
namespace {

std::u16string number(std::size_t value) {
  const std::string digits = std::to_string(value);
  return {digits.begin(), digits.end()};
}

FaultColumn column(std::u16string name, SQLSMALLINT type, SQLULEN size = 10) {
  return {.name = std::move(name), .type = type, .size = size};
}

Scenario counts(std::vector<SQLLEN> values) {
  Scenario scenario;
  for (const SQLLEN value : values) {
    scenario.results.push_back({.rowCount = value});
  }
  return scenario;
}

Scenario one(FaultResult result) {
  Scenario scenario;
  scenario.results.push_back(std::move(result));
  return scenario;
}

Scenario failing(std::string state, std::u16string message, SQLINTEGER native) {
  Scenario scenario;
  scenario.failure.push_back({std::move(state), std::move(message), native});
  return scenario;
}

/// Five rows, and the server is gone after the third.
Scenario linkLostInAFetch() {
  FaultResult result{.columns = {column(u"C1", SQL_INTEGER)}};
  for (std::size_t row = 1; row <= 5; ++row) {
    result.rows.push_back({number(row)});
  }
  result.linkFailsAfter = 3;
  return one(std::move(result));
}

/// Says 5 characters, gives 5,000 (and one that fits on either side).
/// As FreeTDS gives a block in which the statement fails.
Scenario failsBehindItsRows() {
  return one({.columns = {column(u"C1", SQL_INTEGER)},
              .rows = {{u"1"}, {u"2"}},
              .failsBehindItsRows = true});
}

Scenario lyingSizes() {
  FaultResult result{.columns = {column(u"C1", SQL_INTEGER), column(u"C2", SQL_WVARCHAR, 5),
                                 column(u"C3", SQL_WVARCHAR, 5)}};
  result.rows.push_back({u"1", u"breve", u"fine"});
  result.rows.push_back({u"2", std::u16string(5'000, u'è'), u"fine"});
  result.rows.push_back({u"3", std::nullopt, u"fine"});
  return one(std::move(result));
}

/// A long column before short ones, whose length the driver never tells.
Scenario noTotal() {
  FaultColumn longOne = column(u"C1", SQL_WLONGVARCHAR, 0);
  longOne.noTotal = true;
  FaultResult result{
      .columns = {longOne, column(u"C2", SQL_INTEGER), column(u"C3", SQL_WVARCHAR, 10)}};
  result.rows.push_back({std::u16string(20'000, u'x'), u"7", u"coda"});
  result.rows.push_back({std::nullopt, std::nullopt, std::nullopt});
  result.rows.push_back({std::u16string{}, u"8", u""});
  return one(std::move(result));
}

Scenario impossibleLength() {
  FaultColumn bad = column(u"C1", SQL_WVARCHAR, 10);
  bad.impossibleLength = -77;
  return one({.columns = {bad}, .rows = {{u"abc"}}});
}

/// More than one record, the first of 5,000 characters, marked as drivers do.
Scenario longDiagnostics() {
  Scenario scenario;
  scenario.failure.push_back(
      {"23000", u"[Maker][Driver][Server]" + std::u16string(5'000, u'm') + u"FINE", 2627});
  scenario.failure.push_back({"01000", u"[Maker][Driver][Server]seconda riga", 3621});
  scenario.failure.push_back({"01000", u"terza riga [con parentesi]", 1});
  return scenario;
}

/// Row counts that are not the real ones, then the rows, then a count.
Scenario leadingCounts() {
  Scenario scenario = counts({0, 0});
  scenario.results.push_back({.columns = {column(u"C1", SQL_INTEGER)}, .rows = {{u"42"}}});
  scenario.results.push_back({.rowCount = 3});
  return scenario;
}

Scenario state(const Connection& connection) {
  FaultResult result{.columns = {column(u"AUTOCOMMIT", SQL_INTEGER),
                                 column(u"COMMITS", SQL_INTEGER),
                                 column(u"ROLLBACKS", SQL_INTEGER)}};
  const auto count = [](int value) { return number(static_cast<std::size_t>(value)); };
  result.rows.push_back({connection.autocommit ? u"1" : u"0", count(connection.commits),
                         count(connection.rollbacks)});
  return one(std::move(result));
}

std::u16string count(SQLULEN value) { return number(static_cast<std::size_t>(value)); }

/// Executions and fetches since the last time this was asked, itself not counted.
Scenario counters(Connection& connection) {
  FaultResult result{
      .columns = {column(u"EXECUTIONS", SQL_INTEGER), column(u"FETCHES", SQL_INTEGER)}};
  result.rows.push_back({count(static_cast<SQLULEN>(connection.executions - 1)),
                         count(static_cast<SQLULEN>(connection.fetches))});
  connection.executions = 0;
  connection.fetches = -2;  // those of this result
  return one(std::move(result));
}

Scenario timeLimits(const Statement& statement) {
  FaultResult result{.columns = {column(u"LOGIN", SQL_INTEGER), column(u"QUERY", SQL_INTEGER)}};
  result.rows.push_back({count(statement.connection.loginTimeout), count(statement.queryTimeout)});
  return one(std::move(result));
}

Scenario manyRows() {
  FaultResult result{.columns = {column(u"C1", SQL_INTEGER), column(u"C2", SQL_WVARCHAR, 20)}};
  for (std::size_t row = 1; row <= 3'000; ++row) {
    result.rows.push_back({number(row), row % 3 == 0 ? Cell{} : Cell{u"riga " + number(row)}});
  }
  return one(std::move(result));
}

Scenario echo(const std::u16string& text, const Statement& statement) {
  FaultResult result{
      .columns = {column(u"TESTO", SQL_WLONGVARCHAR, 0), column(u"PARAMETRI", SQL_INTEGER)}};
  result.rows.push_back({text, number(statement.parameters.size())});
  return one(std::move(result));
}

/// A join, as it is asked for below, of which the driver tells no base tables.
Scenario join() {
  return one({.columns = {column(u"PRIMA", SQL_INTEGER), column(u"C1_ID", SQL_INTEGER),
                          column(u"C2_NOME", SQL_WVARCHAR, 20), column(u"K1", SQL_INTEGER),
                          column(u"NOME", SQL_WVARCHAR, 20), column(u"K3", SQL_WVARCHAR, 20)},
              .rows = {{u"1", u"7", u"uno", u"9", u"due", std::nullopt}}});
}

Scenario single(SQLSMALLINT type, std::u16string value) {
  return one({.columns = {column(u"C1", type)}, .rows = {{std::move(value)}}});
}

/// The application lock that belongs to a transaction: none is given where none has begun.
Scenario turn(const std::u16string& text, const Statement& statement) {
  Connection& connection = statement.connection;
  connection.turnLimit = statement.queryTimeout;
  if (text.find(u"FROM sys.schemas") != std::u16string::npos && !connection.autocommit) {
    connection.transactions = 1;
  }
  if (connection.has(u"Turn", u"null")) {
    return one({.columns = {column(u"R", SQL_INTEGER)}, .rows = {{std::nullopt}}});
  }
  return single(SQL_INTEGER, connection.transactions == 0        ? u"-999"
                             : connection.has(u"Turn", u"never") ? u"-1"
                                                                 : u"0");
}

}  // namespace

Scenario scenarioFor(const std::u16string& text, const Statement& statement) {
  Connection& connection = statement.connection;
  if (text == u"COUNTERS") {
    return counters(connection);
  }
  if (text == u"SELECT @@TRANCOUNT AS N" && connection.speaksTSql()) {
    return connection.counted++ > 0 && connection.has(u"Count", u"once")
               ? failing("HY000", u"not now", 1)
               : single(SQL_INTEGER, count(static_cast<SQLULEN>(connection.transactions)));
  }
  if (text == u"BEGIN TRANSACTION") {
    ++connection.transactions;
    return counts({-1});
  }
  if (text == u"UNNOTICED END") {
    connection.transactions = 0;
    return counts({-1});
  }
  if (text.find(u"sp_getapplock") != std::u16string::npos) {
    return turn(text, statement);
  }
  if (text == u"CONVERSION ERROR") {
    connection.transactions = 0;
    return failing("22018", u"conversion failed", 245);
  }
  const std::map<std::u16string, Scenario> known{
      {u"LINK LOST", linkLostInAFetch()},
      {u"LYING SIZES", lyingSizes()},
      {u"SELECT * FROM LYING_SIZES", lyingSizes()},
      {u"EXEC LYING_SIZES", lyingSizes()},
      {u"SELECT * FROM MANY_ROWS", manyRows()},
      {u"FAILS BEHIND ITS ROWS", failsBehindItsRows()},
      {u"TURN LIMIT", single(SQL_INTEGER, count(connection.turnLimit))},
      {u"TIME LIMITS", timeLimits(statement)},
      {u"NO TOTAL", noTotal()},
      {u"IMPOSSIBLE LENGTH", impossibleLength()},
      {u"LONG DIAGNOSTICS", longDiagnostics()},
      {u"LEADING COUNTS", leadingCounts()},
      {u"NO COUNT", counts({-1})},
      {u"STATE", state(connection)},
      {u"LOWER NAMES", one({.columns = {column(u"ditta", SQL_INTEGER)}, .rows = {{u"10"}}})},
      {u"LONE SURROGATE", single(SQL_WVARCHAR, std::u16string{u'a', char16_t{0xD800}, u'b'})},
      {u"HUGE DECIMAL", single(SQL_DECIMAL, u"1E400")},
      {u"LONG DECIMAL", single(SQL_DECIMAL, std::u16string(100, u'9'))},
      {u"SELECT LONG_DECIMAL", single(SQL_DECIMAL, std::u16string(100, u'9'))},
      {u"FINE DECIMAL", single(SQL_DECIMAL, u"-.0000000000000000000000000000000000001")},
      {u"ECHO PASSWORD",
       failing("28000", u"[Maker]refused: " + connection.connectionString, 18456)},
      {u"DEADLOCK", failing("40001", u"chosen as the deadlock victim", 1205)},
      {u"LAST CHANGE", single(SQL_WLONGVARCHAR, connection.lastChange)},
      {u"SELECT CASE WHEN 1=1 THEN 1 END AS PRIMA, A.*, B.K1, B.K2 AS NOME, K3"
       u" FROM T1_PROVA A INNER JOIN T2_PROVA AS B WITH(NOLOCK) ON B.K1 = A.C1_ID",
       join()},
      {u"SELECT 1 AS PRIMA, T1_PROVA.*, X.K1, X.K2 NOME, X.K3 FROM T1_PROVA, F(1) X", join()},
      {u"SELECT A.*, A.*, A.C1_ID, A.C1_ID FROM T1_PROVA A", join()},
      // The class says nothing, and neither does the count: the number does.
      {u"VICTIM", failing("42000", u"chosen as the deadlock victim", 1205)},
      {u"DUPLICATE KEY", failing("23000", u"duplicate key", 2627)},
      {u"UNKNOWN", failing("HY000", u"[Maker][Driver]Unknown error", 20004)},
      {u"NO TEXT", failing("07S01", u"", 7)},
      {u"UNKNOWN LOSS", failing("08S01", u"[Maker][Driver]Unknown error", 20004)},
      {u"SILENT", Scenario{.results = {}, .failure = {{"", u"", 0}}}},
      {u"SELECT * FROM T1_PROVA",
       one({.columns = {column(u"c1_id", SQL_INTEGER), column(u"C2_NOME", SQL_WVARCHAR, 20)},
            .rows = {{u"1", u"uno"}}})}};
  const auto found = known.find(text);
  if (found != known.end()) {
    return found->second;
  }
  if (text.starts_with(u"UPDATE") || text.starts_with(u"INSERT")) {
    connection.transactions = connection.autocommit ? 0 : 1;
    const bool silent = connection.has(u"Counts", u"none");
    return counts({silent ? SQLLEN{-1} : SQLLEN{1}});
  }
  return echo(text, statement);
}

Scenario procedureColumns(const std::u16string&) {
  FaultResult result;
  for (const char16_t* const name :
       {u"PROCEDURE_CAT", u"PROCEDURE_SCHEM", u"PROCEDURE_NAME", u"COLUMN_NAME"}) {
    result.columns.push_back(column(name, SQL_WVARCHAR, 128));
  }
  result.columns.push_back(column(u"COLUMN_TYPE", SQL_SMALLINT));
  result.columns.push_back(column(u"DATA_TYPE", SQL_SMALLINT));
  result.columns.push_back(column(u"TYPE_NAME", SQL_WVARCHAR, 128));
  result.columns.push_back(column(u"COLUMN_SIZE", SQL_INTEGER));
  result.columns.push_back(column(u"BUFFER_LENGTH", SQL_INTEGER));
  result.columns.push_back(column(u"DECIMAL_DIGITS", SQL_SMALLINT));
  const auto add = [&](std::u16string procedure, std::u16string name, std::u16string kind,
                       std::u16string type, std::u16string size) {
    result.rows.push_back({u"db", u"dbo", std::move(procedure), std::move(name), std::move(kind),
                           std::move(type), u"x", std::move(size), u"8000", u"0"});
  };
  // Another procedure that the underscore of the pattern meets, then the one that is meant.
  add(u"pXprova;1", u"@altro", u"1", u"4", u"10");
  add(u"p_prova;1", u"@return_value", u"5", u"4", u"10");
  add(u"p_prova;1", u"@codice", u"1", u"4", u"10");
  add(u"p_prova;1", u"@data", u"1", u"93", u"23");
  add(u"p_prova;1", u"@testo", u"2", u"12", u"3");  // a length that is not the declared one
  return one(std::move(result));
}

Scenario tableColumns(const std::u16string& table) {
  FaultResult result;
  for (const char16_t* const name : {u"TABLE_CAT", u"TABLE_SCHEM", u"TABLE_NAME", u"COLUMN_NAME"}) {
    result.columns.push_back(column(name, SQL_WVARCHAR, 128));
  }
  result.columns.push_back(column(u"DATA_TYPE", SQL_SMALLINT));
  result.columns.push_back(column(u"TYPE_NAME", SQL_WVARCHAR, 128));
  if (table == u"t1_prova") {  // the catalogue keeps names in lower case
    result.rows.push_back({u"db", u"dbo", u"t1xprova", u"altra", u"4", u"int"});
    result.rows.push_back({u"db", u"dbo", u"t1_prova", u"c1_id", u"4", u"int"});
    result.rows.push_back({u"db", u"dbo", u"t1_prova", u"c2_nome", u"-9", u"nvarchar"});
  } else if (table == u"t2_prova") {
    result.rows.push_back({u"db", u"dbo", u"t2_prova", u"k1", u"4", u"int identity"});
    result.rows.push_back({u"db", u"dbo", u"t2_prova", u"k2", u"-9", u"nvarchar"});
    result.rows.push_back({u"db", u"dbo", u"t2_prova", u"k3", u"93", u"datetime"});
  }
  return one(std::move(result));
}

Scenario primaryKeys(const std::u16string& table) {
  FaultResult result;
  for (const char16_t* const name : {u"TABLE_CAT", u"TABLE_SCHEM", u"TABLE_NAME", u"COLUMN_NAME"}) {
    result.columns.push_back(column(name, SQL_WVARCHAR, 128));
  }
  if (table == u"t1_prova") {
    result.rows.push_back({u"db", u"dbo", u"t1_prova", u"c1_id"});
  } else if (table == u"t2_prova") {
    result.rows.push_back({u"db", u"dbo", u"t2_prova", u"k1"});
  }
  return one(std::move(result));
}

}  // namespace azcoll::fault
