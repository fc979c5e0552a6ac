#pragma once

#include <cstddef>
#include <cstdint>
#include <map>
#include <optional>
#include <sql.h>
#include <sqlext.h>
#include <sqlucode.h>
#include <string>
#include <string_view>
#include <vector>

/// An ODBC driver without a database, which misbehaves on demand: the statement's text names what
/// it gives (`scenarios.cpp`), the connection string how it behaves. It is stricter than real
/// drivers where those differ: columns are read in their order, and a connection serves one result
/// at a time.
namespace azcoll::fault {

struct Diagnostic {
  std::string state{};
  std::u16string message{};
  SQLINTEGER native = 0;
};

struct FaultColumn {
  std::u16string name{};
  SQLSMALLINT type = SQL_WVARCHAR;
  SQLULEN size = 10;
  bool noTotal = false;                      ///< never tells how long a value is
  std::optional<SQLLEN> impossibleLength{};  ///< tells this length instead
};

/// A value as text; nothing is Null.
using Cell = std::optional<std::u16string>;

/// What one statement of a batch gives: rows, or a row count.
struct FaultResult {
  std::vector<FaultColumn> columns{};
  std::vector<std::vector<Cell>> rows{};
  SQLLEN rowCount = -1;
  std::optional<std::size_t> linkFailsAfter{};  ///< rows after which the connection breaks
  bool failsBehindItsRows = false;              ///< told with the last block, as FreeTDS does
};

struct Scenario {
  std::vector<FaultResult> results{};
  std::vector<Diagnostic> failure{};  ///< the statement fails with them
};

/// Part that every handle has.
struct Handle {
  std::vector<Diagnostic> diagnostics{};

  SQLRETURN fail(std::string state, std::u16string message, SQLINTEGER native = 0) {
    diagnostics = {{std::move(state), std::move(message), native}};
    return SQL_ERROR;
  }
};

struct Environment : Handle {};

struct Connection : Handle {
  std::map<std::u16string, std::u16string> settings{};
  std::u16string connectionString{};
  bool autocommit = true;
  bool dead = false;
  int commits = 0;
  int rollbacks = 0;
  int openResults = 0;
  int transactions = 0;  ///< open ones, of a server that speaks T-SQL
  int counted = 0;       ///< how often the count of them was asked for
  SQLULEN loginTimeout = 0;
  SQLULEN turnLimit = 0;        ///< with which the lock of a group was last asked for
  int executions = 0;           ///< since they were asked for
  int fetches = 0;              ///< since they were asked for
  std::u16string lastChange{};  ///< text and parameters of the last INSERT or UPDATE

  [[nodiscard]] bool has(std::u16string_view key, std::u16string_view value) const {
    const auto found = settings.find(std::u16string{key});
    return found != settings.end() && found->second == value;
  }
  [[nodiscard]] bool speaksTSql() const { return has(u"Server", u"tsql"); }
  /// As FreeTDS does, with its server: a transaction is open whenever autocommit is off.
  [[nodiscard]] bool startsAtOnce() const { return has(u"Starts", u"at once"); }
};

struct Binding {
  SQLSMALLINT type = SQL_C_CHAR;
  SQLPOINTER target = nullptr;
  SQLLEN room = 0;
  SQLLEN* indicator = nullptr;
  SQLSMALLINT direction = SQL_PARAM_INPUT;  // of a parameter
  SQLSMALLINT sqlType = SQL_WVARCHAR;       // of a parameter
};

struct Statement : Handle {
  explicit Statement(Connection& owner) : connection{owner} {}

  Connection& connection;
  Scenario scenario{};
  std::size_t result = 0;
  bool isOpen = false;  ///< a result with columns
  std::size_t row = 0;  ///< first row of the block fetched last
  std::size_t blockRows = 0;
  std::size_t current = 0;  ///< row within the block
  SQLUSMALLINT column = 0;  ///< read last with SQLGetData
  std::size_t offset = 0;   ///< bytes of it already given
  SQLULEN queryTimeout = 0;
  SQLULEN arraySize = 1;
  SQLULEN* fetched = nullptr;
  SQLUSMALLINT* status = nullptr;
  std::map<SQLUSMALLINT, Binding> columns{};
  std::map<SQLUSMALLINT, Binding> parameters{};

  [[nodiscard]] FaultResult& now() { return scenario.results[result]; }
  void close();
};

/// What a statement's text gives.
[[nodiscard]] Scenario scenarioFor(const std::u16string& text, const Statement& statement);

/// Results of the catalogue functions.
[[nodiscard]] Scenario procedureColumns(const std::u16string& name);
[[nodiscard]] Scenario tableColumns(const std::u16string& table);
[[nodiscard]] Scenario primaryKeys(const std::u16string& table);

/// Writes a value, from `offset` bytes on, into a buffer of a C type.
struct Written {
  SQLLEN indicator = 0;   ///< of the whole rest
  std::size_t bytes = 0;  ///< taken of the value
  bool truncated = false;
};
[[nodiscard]] Written writeValue(const Cell& cell, const Binding& target, std::size_t index,
                                 std::size_t offset);

/// The parameters of a statement as ` type:value` each; only whole numbers and texts are shown.
[[nodiscard]] std::u16string shownParameters(const Statement& statement);

/// Opens a scenario on a statement, as an execution does.
SQLRETURN begin(Statement& statement, Scenario scenario);

/// Fills the output parameters: only when all results were read.
void fillOutputs(Statement& statement);

[[nodiscard]] std::u16string textOf(const SQLWCHAR* text, SQLINTEGER length);

}  // namespace azcoll::fault
