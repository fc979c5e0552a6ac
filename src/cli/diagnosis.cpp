#include "cli/diagnosis.h"

#include <algorithm>
#include <fmt/format.h>
#include <map>

#include "cli/database.h"
#include "cli/server_catalogue.h"
#include "data/error.h"
#include "platform/provider_factory.h"

namespace azcoll::cli {
namespace {

/// Nothing of the company's is there: one remedy for all.
bool tellEmpty(Diagnosis& diagnosis, const Schema& found, bool seesEverything) {
  if (!found.tables.empty() || !found.routines.empty() || !seesEverything) {
    return false;
  }
  diagnosis.findings.push_back(
      {"vuoto", "", "Il database non contiene nessuna delle tabelle aziendali.",
       "azcoll crea --connessione STRINGA   (con --esempio per avere anche dati di prova)"});
  return true;
}

// ---------------------------------------------------------------- embedded engine

/// Tries a change that changes nothing: whether the file, its folder and the way it was opened
/// allow writing shows in no other way.
void checkWritable(Diagnosis& diagnosis, Connection& connection, const Schema& found) {
  if (found.tables.empty()) {
    return;
  }
  diagnosis.rights = 1;
  try {
    std::int64_t affected = 0;
    connection.beginTrans();
    connection.execute(fmt::format("DELETE FROM {} WHERE 1 = 0", found.tables.front().name),
                       affected, CommandOption::Text);
    connection.rollbackTrans();
  } catch (const Error& error) {
    diagnosis.rights = 0;
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
  if (!tellEmpty(diagnosis, found, true)) {
    compareSchemas(diagnosis, expectedSchema(), found, Mending{});
    checkWritable(diagnosis, connection, found);
  }
  return diagnosis;
}

// ---------------------------------------------------------------- server

/// Tables and routines that the role has no right on.
std::vector<std::string> withoutRights(const Schema& expected, const std::vector<Grant>& grants) {
  std::vector<std::string> names;
  const auto add = [&](const std::string& name) {
    if (std::ranges::none_of(grants,
                             [&](const Grant& grant) { return sameName(grant.object, name); })) {
      names.push_back(name);
    }
  };
  for (const SchemaTable& table : expected.tables) {
    add(table.name);
  }
  for (const SchemaRoutine& routine : expected.routines) {
    add(routine.name);
  }
  return names;
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
  const std::string grantee = user.inRole.value_or(false) ? role : fmt::format("[{}]", user.name);
  for (const auto& [object, rights] : rightsOfObject) {
    diagnosis.findings.push_back(
        {"diritto", object,
         fmt::format("All'utente {} manca su {}: {}.", user.name, object, rights),
         fmt::format("GRANT {} ON {} TO {}", rights, object, grantee)});
  }
  if (missing.empty() || user.inRole.value_or(false)) {
    return;
  }
  diagnosis.notes.push_back(
      user.inRole ? fmt::format("I diritti si danno anche tutti insieme: ALTER ROLE {} ADD MEMBER "
                                "[{}]",
                                role, user.name)
                  : fmt::format("I diritti si danno anche tutti insieme: eseguire "
                                "schema/permessi.sql, poi ALTER ROLE {} ADD MEMBER [{}]",
                                role, user.name));
}

Diagnosis diagnoseServer(Connection& connection) {
  const Schema& expected = expectedSchema();
  const RoleRights& needed = expectedRights();
  Diagnosis diagnosis;
  const ServerUser user = readServerUser(connection, needed.role);
  diagnosis.user = user.name;
  const Schema found = readServerSchema(connection, expected, user);
  if (tellEmpty(diagnosis, found, user.seesEverything)) {
    return diagnosis;
  }
  if (!user.ignoresCase) {
    diagnosis.findings.push_back(
        {"confronto", "", "Il database distingue le maiuscole dalle minuscole.",
         "ALTER DATABASE CURRENT COLLATE Latin1_General_CI_AS   (prima di creare le tabelle)"});
  }
  compareSchemas(diagnosis, expected, found,
                 Mending{.server = true,
                         .seesEverything = user.seesEverything,
                         .mayBeHidden = withoutRights(expected, needed.grants)});
  const std::vector<Grant> missing = readMissingGrants(connection, needed.grants, found);
  diagnosis.rights = needed.grants.size() - missing.size();
  tellMissingRights(diagnosis, missing, user, needed.role);
  return diagnosis;
}

}  // namespace

Diagnosis diagnose(Connection& connection) {
  const auto definitions = storedDefinitions(connection);
  return definitions ? diagnoseDefinitions(connection, *definitions) : diagnoseServer(connection);
}

}  // namespace azcoll::cli
