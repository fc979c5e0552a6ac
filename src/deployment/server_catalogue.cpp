#include "deployment/server_catalogue.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <fmt/format.h>
#include <memory>
#include <set>
#include <utility>

#include "data/error.h"
#include "data/recordset.h"
#include "data/text.h"
#include "deployment/failure.h"
#include "text/joining.h"
#include "text/letter_case.h"
#include "text/quoting.h"
#include "text/trimming.h"

namespace azcoll::deployment {
namespace {

std::string asSqlText(std::string_view text) { return "N" + inQuotes(text, '\''); }

/// `[dbo].[T]`.
std::string qualified(std::string_view owner, std::string_view object) {
  return inQuotes(owner, '[') + "." + inQuotes(object, '[');
}

// ---------------------------------------------------------------- the questions

constexpr std::string_view kUser =
    "SELECT USER_NAME() AS UTENTE, SCHEMA_NAME() AS SCHEMA_UTENTE,"
    " IS_ROLEMEMBER({}) AS NEL_RUOLO,"
    // The owner sees everything, and not every server counts that as a right of his.
    " CASE WHEN USER_NAME() = N'dbo' THEN 1 ELSE"
    " HAS_PERMS_BY_NAME(QUOTENAME(DB_NAME()), N'DATABASE', N'VIEW DEFINITION') END AS VEDE_TUTTO,"
    " CASE WHEN N'a' = N'A' THEN 1 ELSE 0 END AS SENZA_MAIUSCOLE";

// The views that begin with `all_` also stand where the shorter ones are missing. U table, V view,
// P procedure, IF and TF functions that give rows. {} are the names.
constexpr std::string_view kObjects =
    "SELECT S.name AS PROPRIETARIO, O.name AS OGGETTO, O.type AS TIPO"
    " FROM sys.all_objects AS O INNER JOIN sys.schemas AS S ON S.schema_id = O.schema_id"
    " WHERE O.type IN ('U', 'V', 'P', 'IF', 'TF') AND S.name IN (SCHEMA_NAME(), N'dbo')"
    " AND O.name IN ({})";

constexpr std::string_view kColumns =
    "SELECT S.name AS PROPRIETARIO, O.name AS OGGETTO, C.name AS NOME,"
    " TYPE_NAME(C.system_type_id) AS TIPO, C.max_length AS BYTE_MAX, C.precision AS CIFRE,"
    " C.scale AS DECIMALI, CAST(C.is_nullable AS INT) AS AMMETTE_NULL,"
    " CAST(C.is_identity AS INT) AS IDENTITA,"
    " CASE WHEN C.default_object_id = 0 THEN 0 ELSE 1 END AS HA_DEFAULT"
    " FROM sys.all_columns AS C INNER JOIN sys.all_objects AS O ON O.object_id = C.object_id"
    " INNER JOIN sys.schemas AS S ON S.schema_id = O.schema_id"
    " WHERE O.type IN ('U', 'V') AND S.name IN (SCHEMA_NAME(), N'dbo')"
    " AND O.name IN ({}) ORDER BY C.object_id, C.column_id";

constexpr std::string_view kParameters =
    "SELECT S.name AS PROPRIETARIO, O.name AS OGGETTO, P.name AS NOME,"
    " TYPE_NAME(P.system_type_id) AS TIPO, P.max_length AS BYTE_MAX, P.precision AS CIFRE,"
    " P.scale AS DECIMALI, CAST(P.is_output AS INT) AS USCITA"
    " FROM sys.all_parameters AS P INNER JOIN sys.all_objects AS O ON O.object_id = P.object_id"
    " INNER JOIN sys.schemas AS S ON S.schema_id = O.schema_id"
    " WHERE P.parameter_id > 0 AND S.name IN (SCHEMA_NAME(), N'dbo')"
    " AND O.name IN ({}) ORDER BY P.object_id, P.parameter_id";

// Gives a function's columns and no row, on every server. It proves no right: a server may see that
// there is nothing to read.
constexpr std::string_view kFunction = "SELECT * FROM {} WHERE 1 = 0";

// Really reads from a function.
constexpr std::string_view kReading = "SELECT 1 AS LETTA FROM {}";

constexpr std::string_view kRight =
    "SELECT {} AS NUMERO, HAS_PERMS_BY_NAME({}, N'OBJECT', N'{}') AS CONCESSO";

// ---------------------------------------------------------------- the answers

/// The rows of a question, at the first one; null when it gives none. Throws `Error` when the
/// server refuses it.
std::shared_ptr<Recordset> ask(Connection& connection, const std::string& question) {
  std::int64_t affected = 0;
  const std::shared_ptr<Recordset> rows =
      connection.execute(question, affected, CommandOption::Text);
  return rows && rows->isOpen() ? rows : nullptr;
}

/// Rows of a question, read by column name.
class Answer {
 public:
  Answer(Connection& connection, const std::string& question) : rows_{ask(connection, question)} {}

  /// Goes to the first row, then to the next; false after the last one.
  [[nodiscard]] bool next() {
    if (!rows_) {
      return false;
    }
    if (started_) {
      rows_->moveNext();
    }
    started_ = true;
    return !rows_->atEnd();
  }
  [[nodiscard]] Variant value(std::string_view column) const {
    Fields& fields = rows_->fields();
    for (std::size_t i = 0; i < fields.count(); ++i) {
      if (equalsIgnoringCase(fields.item(i).name(), column)) {
        return fields.item(i).value();
      }
    }
    throw Error(fmt::format("Il risultato non ha la colonna {}", column));
  }
  [[nodiscard]] std::string text(std::string_view column) const {
    return std::string{trim(join(value(column)))};
  }
  [[nodiscard]] int number(std::string_view column) const { return value(column).toInt32(); }
  /// False for Null too.
  [[nodiscard]] bool isOne(std::string_view column) const {
    return !value(column).isNull() && number(column) == 1;
  }

 private:
  std::shared_ptr<Recordset> rows_;
  bool started_ = false;
};

std::string namesOf(const Schema& schema) {
  std::vector<std::string> names;
  for (const SchemaTable& table : schema.tables) {
    names.push_back(asSqlText(table.name));
  }
  for (const SchemaRoutine& routine : schema.routines) {
    names.push_back(asSqlText(routine.name));
  }
  return joinAll(names, ", ");
}

ColumnType typeOf(const Answer& answer) {
  ColumnType type{.name = ascii::upper(answer.text("TIPO"))};
  if (type.name == "NUMERIC") {
    type.name = "DECIMAL";
  }
  if (type.name == "DECIMAL") {
    type.length = answer.number("CIFRE");
    type.scale = answer.number("DECIMALI");
  } else if (type.name.ends_with("CHAR") || type.name.ends_with("BINARY")) {
    const int bytes = answer.number("BYTE_MAX");
    const bool twoBytes = type.name.starts_with("NCHAR") || type.name.starts_with("NVARCHAR");
    type.length = bytes > 0 && twoBytes ? bytes / 2 : bytes;
  }
  return type;
}

/// Puts the objects of an answer in their places: of several with one name, the one that a
/// statement means.
void addObject(Schema& schema, const Answer& answer, const ServerUser& user) {
  const std::string name = answer.text("OGGETTO");
  const std::string owner = answer.text("PROPRIETARIO");
  const std::string kind = answer.text("TIPO");
  const auto put = [&](auto& all, auto object) {
    for (auto& there : all) {
      if (equalsIgnoringCase(there.name, name)) {
        // The statements name the function with its schema.
        const bool isMeant = equalsIgnoringCase(
            owner, kind == "IF" || kind == "TF" ? std::string{"dbo"} : user.defaultSchema);
        if (isMeant) {
          there = std::move(object);
        }
        return;
      }
    }
    all.push_back(std::move(object));
  };
  if (kind == "U" || kind == "V") {
    put(schema.tables, SchemaTable{.name = name, .owner = owner});
  } else {
    put(schema.routines, SchemaRoutine{.name = name, .owner = owner, .isFunction = kind != "P"});
  }
}

template <typename Objects>
auto* ownedObject(Objects& all, const Answer& answer) {
  const auto found = std::ranges::find_if(all, [&](const auto& each) {
    return equalsIgnoringCase(each.name, answer.text("OGGETTO")) &&
           equalsIgnoringCase(each.owner, answer.text("PROPRIETARIO"));
  });
  return found == all.end() ? nullptr : &*found;
}

void addColumns(Connection& connection, Schema& found, const std::string& names) {
  Answer columns{connection, fmt::format(kColumns, names)};
  while (columns.next()) {
    if (SchemaTable* const table = ownedObject(found.tables, columns)) {
      table->columns.push_back({.name = columns.text("NOME"),
                                .type = typeOf(columns),
                                .nullable = columns.isOne("AMMETTE_NULL"),
                                .identity = columns.isOne("IDENTITA"),
                                .hasDefault = columns.isOne("HA_DEFAULT")});
    }
  }
}

void addParameters(Connection& connection, Schema& found, const std::string& names) {
  Answer parameters{connection, fmt::format(kParameters, names)};
  while (parameters.next()) {
    if (SchemaRoutine* const routine = ownedObject(found.routines, parameters)) {
      routine->parameters.push_back(
          {parameters.text("NOME"), typeOf(parameters), parameters.isOne("USCITA")});
    }
  }
}

/// A function with the same value for every argument: `[dbo].[F](NULL, NULL)`.
std::string callOf(const SchemaRoutine& function, std::size_t arguments, std::string_view value) {
  const std::vector<std::string_view> values(arguments, value);
  return fmt::format("{}({})", qualified(function.owner, function.name), joinAll(values, ", "));
}

void addFunctionColumns(Connection& connection, SchemaRoutine& function, std::size_t arguments) {
  const std::shared_ptr<Recordset> rows =
      ask(connection, fmt::format(kFunction, callOf(function, arguments, "NULL")));
  for (std::size_t i = 0; rows && i < rows->fields().count(); ++i) {
    function.columns.push_back({.name = rows->fields().item(i).name()});
  }
}

/// Whether the user can read from a function; not every server reports that as a right.
bool canRead(Connection& connection, const SchemaRoutine& function) {
  const SchemaRoutine* const expected = expectedSchema().routine(function.name);
  const std::size_t arguments =
      expected != nullptr ? expected->parameters.size() : function.parameters.size();
  std::vector<std::string> refused;
  return couldAsk(refused, function.name, [&] {
    // With Null a server may see that there is nothing to read; a 0 fits every type.
    static_cast<void>(ask(connection, fmt::format(kReading, callOf(function, arguments, "0"))));
  });
}

/// Completes a function that is there by the columns of its rows. The list of objects may keep one
/// back that the user can read from all the same.
void describeFunction(Connection& connection, Schema& found, const SchemaRoutine& expected,
                      std::vector<std::string>& unchecked) {
  const auto listed = std::ranges::find_if(found.routines, [&](const SchemaRoutine& each) {
    return equalsIgnoringCase(each.name, expected.name);
  });
  if (listed == found.routines.end() && found.tables.empty()) {
    return;  // nothing of the company's is shown to this user
  }
  if (listed == found.routines.end()) {
    SchemaRoutine hidden{
        .name = expected.name, .owner = "dbo", .isFunction = true, .parametersKnown = false};
    std::vector<std::string> notThere;
    if (couldAsk(notThere, hidden.name,
                 [&] { addFunctionColumns(connection, hidden, expected.parameters.size()); })) {
      found.routines.push_back(std::move(hidden));
    }
    return;
  }
  if (listed->isFunction) {
    const std::size_t arguments =
        listed->parametersKnown ? listed->parameters.size() : expected.parameters.size();
    listed->columnsKnown = couldAsk(unchecked, "le colonne della funzione " + expected.name,
                                    [&] { addFunctionColumns(connection, *listed, arguments); });
  }
}

}  // namespace

ServerUser readServerUser(Connection& connection, std::string_view role) {
  Answer answer{connection, fmt::format(kUser, asSqlText(role))};
  ServerUser user;
  if (answer.next()) {
    user.name = answer.text("UTENTE");
    user.defaultSchema = answer.text("SCHEMA_UTENTE");
    if (!answer.value("NEL_RUOLO").isNull()) {
      user.inRole = answer.isOne("NEL_RUOLO");
    }
    user.seesEverything = answer.isOne("VEDE_TUTTO");
    user.ignoresCase = answer.isOne("SENZA_MAIUSCOLE");
  }
  return user;
}

std::vector<std::string> readServerNames(Connection& connection, const Schema& expected) {
  std::vector<std::string> names;
  Answer answer{connection, fmt::format(kObjects, namesOf(expected))};
  while (answer.next()) {
    names.push_back(answer.text("OGGETTO"));
  }
  return names;
}

bool couldAsk(std::vector<std::string>& unchecked, std::string_view what,
              const std::function<void()>& question) {
  try {
    question();
    return true;
  } catch (const Error& error) {
    if (error.info().connectionLost) {
      throw;
    }
    unchecked.push_back(fmt::format(
        "{}: {}", what, error.fromProvider() ? describeFailure(error) : error.description()));
    return false;
  }
}

Schema readServerSchema(Connection& connection, const Schema& expected, const ServerUser& user,
                        std::vector<std::string>& unchecked) {
  Schema found;
  const std::string names = namesOf(expected);
  Answer objects{connection, fmt::format(kObjects, names)};
  while (objects.next()) {
    addObject(found, objects, user);
  }
  const bool columnsKnown = couldAsk(unchecked, "le colonne delle tabelle",
                                     [&] { addColumns(connection, found, names); });
  for (SchemaTable& table : found.tables) {
    table.columnsKnown = columnsKnown;
  }
  const bool parametersKnown = couldAsk(unchecked, "i parametri della procedura e della funzione",
                                        [&] { addParameters(connection, found, names); });
  for (SchemaRoutine& routine : found.routines) {
    routine.parametersKnown = parametersKnown;
  }
  for (const SchemaRoutine& function : expected.routines) {
    if (function.isFunction) {
      describeFunction(connection, found, function, unchecked);
    }
  }
  return found;
}

std::vector<Grant> readMissingGrants(Connection& connection, const std::vector<Grant>& grants,
                                     const Schema& found) {
  std::vector<Grant> asked;
  std::vector<std::string> questions;
  for (const Grant& grant : grants) {
    const SchemaTable* const table = found.table(grant.object);
    const SchemaRoutine* const routine = found.routine(grant.object);
    if (table == nullptr && routine == nullptr) {
      continue;  // what is not there is a finding of its own
    }
    const std::string& owner = table != nullptr ? table->owner : routine->owner;
    questions.push_back(
        fmt::format(kRight, asked.size(), asSqlText(qualified(owner, grant.object)), grant.right));
    asked.push_back({grant.right, owner, grant.object});
  }
  if (asked.empty()) {
    return {};
  }
  std::set<std::size_t> held;
  Answer answer{connection, joinAll(questions, " UNION ALL ")};
  while (answer.next()) {
    if (answer.isOne("CONCESSO")) {
      held.insert(static_cast<std::size_t>(answer.number("NUMERO")));
    }
  }
  std::vector<Grant> missing;
  for (std::size_t i = 0; i < asked.size(); ++i) {
    const SchemaRoutine* const routine = found.routine(asked[i].object);
    const bool isFunction = routine != nullptr && routine->isFunction;
    if (!held.contains(i) && !(isFunction && canRead(connection, *routine))) {
      missing.push_back(asked[i]);
    }
  }
  return missing;
}

}  // namespace azcoll::deployment
