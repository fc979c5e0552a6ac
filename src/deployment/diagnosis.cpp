#include "deployment/diagnosis.h"

#include <algorithm>
#include <cstdint>
#include <fmt/format.h>
#include <optional>
#include <utility>

#include "data/error.h"
#include "deployment/rights.h"
#include "deployment/schema.h"
#include "deployment/schema_comparison.h"
#include "deployment/server_catalogue.h"
#include "platform/provider_factory.h"

namespace azcoll::deployment {
namespace {

/// Whether nothing of the company's is there, whatever else is.
bool isEmpty(const Schema& found) {
  const Schema& expected = expectedSchema();
  return std::ranges::none_of(
             expected.tables,
             [&](const SchemaTable& each) { return found.table(each.name) != nullptr; }) &&
         std::ranges::none_of(expected.routines, [&](const SchemaRoutine& each) {
           return found.routine(each.name) != nullptr;
         });
}

/// One finding for all that is missing.
Finding emptyDatabase() {
  return {"vuoto", "", "Il database non contiene nessuna delle tabelle aziendali.",
          "azcoll crea --connessione STRINGA   (con --esempio per avere anche dati di prova)"};
}

// ---------------------------------------------------------------- embedded engine

/// Tries a change that changes nothing: whether the file, its folder and the way it was opened
/// allow writing shows in no other way.
void checkWritable(Diagnosis& diagnosis, Connection& connection, const Schema& found) {
  const auto& tables = expectedSchema().tables;
  const auto table = std::ranges::find_if(
      tables, [&](const SchemaTable& expected) { return found.table(expected.name) != nullptr; });
  if (table == tables.end()) {
    return;
  }
  try {
    std::int64_t affected = 0;
    connection.beginTrans();
    connection.execute(fmt::format("DELETE FROM {} WHERE 1 = 0", table->name), affected,
                       CommandOption::Text);
    connection.rollbackTrans();
    diagnosis.rights = 1;
  } catch (const Error& error) {
    diagnosis.findings.push_back(
        {"scrittura", "", fmt::format("Il database non si può scrivere: {}", error.description()),
         "Dare all'utente il diritto di scrivere il file e la sua cartella, e togliere\n"
         "«Read Only=True» dalla stringa di connessione."});
  }
}

Diagnosis diagnoseDefinitions(Connection& connection, const std::vector<std::string>& definitions) {
  Schema found;
  for (const std::string& definition : definitions) {
    addDefinitions(found, definition);
  }
  Diagnosis diagnosis;
  if (isEmpty(found)) {
    diagnosis.findings.push_back(emptyDatabase());
    return diagnosis;
  }
  compareSchemas(diagnosis, expectedSchema(), found, Alteration::Impossible, std::nullopt);
  checkWritable(diagnosis, connection, found);
  return diagnosis;
}

// ---------------------------------------------------------------- server

std::string shownName(const ServerUser& user) {
  return user.name.empty() ? "della connessione" : user.name;
}

std::string quotedName(const ServerUser& user) {
  return user.name.empty() ? "[UTENTE]" : fmt::format("[{}]", user.name);
}

/// Who is to be given a right: the role where the user is in it.
std::string granteeOf(const ServerUser& user, const std::string& role) {
  return user.inRole.value_or(false) ? role : quotedName(user);
}

/// How to give the user all rights at once.
std::string intoTheRole(const ServerUser& user, const std::string& role) {
  const std::string add = fmt::format("ALTER ROLE {} ADD MEMBER {}", role, quotedName(user));
  return user.inRole ? add : "eseguire schema/permessi.sql, poi " + add;
}

Finding nothingVisible(const ServerUser& user, const std::string& role) {
  return {
      "diritto", "",
      fmt::format("L'utente {} non vede nessuna delle tabelle aziendali: il database è vuoto, o "
                  "mancano i diritti.",
                  shownName(user)),
      fmt::format("Con un utente che vede tutto (db_owner): azcoll diagnosi.\n"
                  "Se è vuoto: azcoll crea --connessione STRINGA --permessi.\n"
                  "Per i diritti: {}",
                  intoTheRole(user, role))};
}

/// The statement that gives rights; for a function also as those servers want it that know no
/// reading from one.
std::string grantOf(const std::string& rights, const std::string& object,
                    const std::string& grantee) {
  std::string grant = fmt::format("GRANT {} ON {} TO {}", rights, object, grantee);
  const SchemaRoutine* const routine =
      expectedSchema().routine(object.substr(object.find('.') + 1));
  if (routine == nullptr || !routine->isFunction) {
    return grant;
  }
  return fmt::format(
      "{}\n-- Se il server non lo ammette su una funzione (e SELECT sulle tabelle che essa "
      "legge):\n"
      "GRANT EXECUTE ON {} TO {}",
      grant, object, grantee);
}

void tellMissingRights(Diagnosis& diagnosis, const std::vector<Grant>& missing,
                       const ServerUser& user, const std::string& role) {
  // One line for each object, in the order of the script.
  std::vector<std::pair<std::string, std::string>> rightsOfObject;
  for (const Grant& grant : missing) {
    const std::string object = fmt::format("{}.{}", grant.owner, grant.object);
    const auto there =
        std::ranges::find(rightsOfObject, object, &std::pair<std::string, std::string>::first);
    if (there == rightsOfObject.end()) {
      rightsOfObject.emplace_back(object, grant.right);
    } else {
      there->second += ", " + grant.right;
    }
  }
  const std::string grantee = granteeOf(user, role);
  for (const auto& [object, rights] : rightsOfObject) {
    diagnosis.findings.push_back(
        {"diritto", object,
         fmt::format("All'utente {} manca su {}: {}.", shownName(user), object, rights),
         grantOf(rights, object, grantee)});
  }
  if (!missing.empty() && !user.inRole.value_or(false)) {
    diagnosis.notes.push_back("I diritti si danno anche tutti insieme: " + intoTheRole(user, role));
  }
}

Diagnosis diagnoseServer(Connection& connection) {
  const Schema& expected = expectedSchema();
  const RoleRights& needed = expectedRights();
  Diagnosis diagnosis;
  diagnosis.hasUsers = true;
  ServerUser user;
  couldAsk(diagnosis.unchecked, "chi è l'utente, e se il database distingue le maiuscole",
           [&] { user = readServerUser(connection, needed.role); });
  diagnosis.user = user.name;
  const Schema found = readServerSchema(connection, expected, user, diagnosis.unchecked);
  if (isEmpty(found)) {
    diagnosis.findings.push_back(user.seesEverything ? emptyDatabase()
                                                     : nothingVisible(user, needed.role));
    return diagnosis;
  }
  if (!user.ignoresCase) {
    diagnosis.findings.push_back(
        {"confronto", "", "Il database distingue le maiuscole dalle minuscole.",
         "ALTER DATABASE CURRENT COLLATE Latin1_General_CI_AS   (prima di creare le tabelle)"});
  }
  std::optional<LimitedUser> limited;
  if (!user.seesEverything) {
    limited = LimitedUser{.needed = needed.grants, .grantee = granteeOf(user, needed.role)};
  }
  compareSchemas(diagnosis, expected, found, Alteration::Possible, limited);
  couldAsk(diagnosis.unchecked, "i diritti dell'utente", [&] {
    const std::vector<Grant> missing = readMissingGrants(connection, needed.grants, found);
    diagnosis.rights = needed.grants.size() - missing.size();
    tellMissingRights(diagnosis, missing, user, needed.role);
  });
  return diagnosis;
}

}  // namespace

Diagnosis diagnose(Connection& connection) {
  const auto definitions = storedDefinitions(connection);
  return definitions ? diagnoseDefinitions(connection, *definitions) : diagnoseServer(connection);
}

}  // namespace azcoll::deployment
