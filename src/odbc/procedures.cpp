#include "odbc/procedures.h"

#include <algorithm>
#include <cstddef>
#include <optional>

#include "cursor/result_set.h"
#include "data/error.h"
#include "data/text.h"
#include "odbc/diagnostics.h"
#include "odbc/execution.h"
#include "odbc/spellings.h"
#include "odbc/sql_words.h"
#include "odbc/strings.h"
#include "text/letter_case.h"
#include "text/trimming.h"

namespace azcoll::odbc {
namespace {

// Columns of the result of SQLProcedureColumns.
constexpr std::size_t kOwner = 1;
constexpr std::size_t kProcedure = 2;
constexpr std::size_t kName = 3;
constexpr std::size_t kKind = 4;
constexpr std::size_t kType = 5;
constexpr std::size_t kSize = 7;
constexpr std::size_t kBytes = 8;
constexpr std::size_t kDigits = 9;
constexpr std::size_t kNeeded = 10;

/// A procedure's name in its parts.
struct ProcedureName {
  std::string schema{};
  std::string name{};
};

ProcedureName nameOf(std::string_view text) {
  std::vector<std::string> parts;
  for (const SqlWord& word : wordsOf(text)) {
    if (word.isName()) {
      parts.push_back(word.text);
    } else if (!word.isSign('.')) {
      throw Error(join("Nome di procedura non valido: ", text));
    }
  }
  if (parts.empty()) {
    throw Error(join("Nome di procedura non valido: ", text));
  }
  return {parts.size() > 1 ? parts[parts.size() - 2] : std::string{}, parts.back()};
}

/// Servers may give `name;1`.
std::string_view withoutNumber(std::string_view name) { return name.substr(0, name.find(';')); }

class Rows {
 public:
  explicit Rows(ResultSet set) : set_{std::move(set)} {}

  [[nodiscard]] std::size_t count() const {
    return set_.columns.size() < kNeeded ? 0 : set_.rowCount();
  }
  [[nodiscard]] std::string text(std::size_t row, std::size_t column) const {
    const Variant& value = at(row, column);
    return value.isNull() ? std::string{} : value.text();
  }
  [[nodiscard]] std::int64_t number(std::size_t row, std::size_t column) const {
    const Variant& value = at(row, column);
    return value.isNull() ? 0 : value.toInt64();
  }

 private:
  [[nodiscard]] const Variant& at(std::size_t row, std::size_t column) const {
    return set_.values[row * set_.columns.size() + column];
  }

  ResultSet set_;
};

std::optional<ParameterDirection> directionOf(std::int64_t kind) {
  switch (kind) {
    case SQL_PARAM_INPUT:
      return ParameterDirection::Input;
    case SQL_PARAM_INPUT_OUTPUT:
    case SQL_PARAM_OUTPUT:  // a server's OUTPUT parameter takes a value, too
      return ParameterDirection::InputOutput;
    default:
      return std::nullopt;  // the return value, or a column of the result
  }
}

/// Longest value of a parameter, in characters or bytes as its type counts; 0 when there is no
/// limit. Some servers report no COLUMN_SIZE of a text, only the bytes that it may take. Drivers
/// send the length of an output as the longest answer, so that nothing may be made of nothing here.
SQLULEN sizeOf(const Rows& rows, std::size_t row, SQLSMALLINT type) {
  const std::int64_t size = rows.number(row, kSize);
  if (size > 0) {
    return static_cast<SQLULEN>(size);
  }
  const auto bytes = static_cast<SQLULEN>(std::max<std::int64_t>(rows.number(row, kBytes), 0));
  switch (type) {
    case SQL_WCHAR:
    case SQL_WVARCHAR:
      return bytes / sizeof(char16_t);
    case SQL_CHAR:
    case SQL_VARCHAR:
    case SQL_BINARY:
    case SQL_VARBINARY:
      return bytes;
    default:
      return 0;
  }
}

Rows describe(const Session& session, std::string_view procedure, int timeoutSeconds) {
  const auto statement = session.newStatement(timeoutSeconds, Escapes::LeftAlone);
  std::u16string name = wideOf(procedure);
  statement->require(SQLProcedureColumnsW(statement->get(), nullptr, 0, nullptr, 0, units(name),
                                          static_cast<SQLSMALLINT>(name.size()), nullptr, 0),
                     "SQLProcedureColumns");
  return Rows{takeResult(*statement, session.reread())};
}

/// What is listed for a procedure.
struct Listed {
  bool isThere = false;
  std::vector<DeclaredParameter> parameters{};
};

Listed parametersIn(const Rows& rows, const ProcedureName& wanted) {
  Listed listed;
  std::optional<std::string> schema;
  for (std::size_t row = 0; row < rows.count(); ++row) {
    // The name went as a pattern, in which an underscore stands for any character.
    const std::string owner = rows.text(row, kOwner);
    const bool meant = equalsIgnoringCase(withoutNumber(rows.text(row, kProcedure)), wanted.name) &&
                       (wanted.schema.empty() || equalsIgnoringCase(owner, wanted.schema)) &&
                       (!schema || *schema == owner);
    if (!meant) {
      continue;
    }
    listed.isThere = true;
    schema = owner;  // of several procedures with that name, the first one listed
    const std::optional<ParameterDirection> direction = directionOf(rows.number(row, kKind));
    if (direction) {
      DeclaredParameter parameter;
      parameter.name = rows.text(row, kName);
      parameter.direction = *direction;
      parameter.sqlType = static_cast<SQLSMALLINT>(rows.number(row, kType));
      parameter.size = sizeOf(rows, row, parameter.sqlType);
      parameter.digits = static_cast<SQLSMALLINT>(rows.number(row, kDigits));
      listed.parameters.push_back(std::move(parameter));
    }
  }
  return listed;
}

}  // namespace

std::vector<DeclaredParameter> declaredParameters(const Session& session,
                                                  std::string_view procedure, int timeoutSeconds) {
  const ProcedureName wanted = nameOf(procedure);
  for (const std::string& spelling : spellingsOf(wanted.name)) {
    Listed listed = parametersIn(describe(session, spelling, timeoutSeconds), wanted);
    if (listed.isThere) {
      return std::move(listed.parameters);
    }
  }
  if (session.speaksTSql()) {
    constexpr int kNotFound = 2812;
    throw DriverFailure{"42000", kNotFound,
                        join("Could not find stored procedure '", trim(procedure), "'.")};
  }
  return {};
}

std::string callText(std::string_view procedure, std::size_t parameters) {
  static_cast<void>(nameOf(procedure));  // nothing but a name may stand in the call
  std::string text = join("{call ", trim(procedure));
  for (std::size_t index = 0; index < parameters; ++index) {
    text += index == 0 ? "(?" : ",?";
  }
  return text + (parameters == 0 ? "}" : ")}");
}

}  // namespace azcoll::odbc
