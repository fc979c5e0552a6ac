#include "deployment/schema_comparison.h"

#include <algorithm>
#include <fmt/format.h>
#include <string_view>
#include <utility>
#include <vector>

#include "text/joining.h"
#include "text/letter_case.h"

namespace azcoll::deployment {
namespace {

constexpr const char* kNoChange =
    "-- Il motore incorporato non modifica le tabelle esistenti: creare un database nuovo con\n"
    "-- azcoll crea --db NUOVO e copiarvi le righe.";

std::string withOwner(const std::string& owner, const std::string& name) {
  return owner.empty() ? name : fmt::format("{}.{}", owner, name);
}

/// Whether every value of `needed` fits into `type` unchanged.
bool holds(const ColumnType& type, const ColumnType& needed) {
  if (type.name != needed.name) {
    return false;
  }
  if (needed.name == "DECIMAL") {
    return type.scale >= needed.scale && type.length - type.scale >= needed.length - needed.scale;
  }
  if (needed.name.find("VAR") != std::string::npos) {
    return type.length < 0 || (needed.length >= 0 && type.length >= needed.length);
  }
  return type == needed;
}

class Comparison {
 public:
  Comparison(Diagnosis& diagnosis, Alteration alteration, const std::optional<LimitedUser>& user)
      : diagnosis_{diagnosis}, alterable_{alteration == Alteration::Possible}, user_{user} {}

  void table(const SchemaTable& expected, const SchemaTable* found) {
    if (found == nullptr) {
      missing("tabella", "la tabella", expected.name, joinAll(expected.definitions, "\n"));
      return;
    }
    ++diagnosis_.tables;
    if (!found->columnsKnown) {
      return;
    }
    for (const SchemaColumn& column : expected.columns) {
      const auto there = std::ranges::find_if(found->columns, [&](const SchemaColumn& each) {
        return equalsIgnoringCase(each.name, column.name);
      });
      if (there == found->columns.end()) {
        add("colonna", expected.name + "." + column.name,
            fmt::format("Nella tabella {} manca la colonna {}.", expected.name, column.name),
            alterable_ ? addColumn(*found, column) : kNoChange);
      } else {
        ++diagnosis_.columns;
        compareColumn(*found, column, *there);
      }
    }
  }

  void routine(const SchemaRoutine& expected, const SchemaRoutine* found) {
    const std::string what = expected.isFunction ? "la funzione" : "la procedura";
    const std::string kind = expected.isFunction ? "funzione" : "procedura";
    if (found == nullptr) {
      missing(kind, what, expected.name, expected.definition);
      return;
    }
    ++diagnosis_.routines;
    std::vector<std::string> faults;
    if (expected.isFunction != found->isFunction) {
      faults.push_back(expected.isFunction ? "è una procedura" : "è una funzione");
    } else {
      if (found->parametersKnown) {
        faults = parameterFaults(expected, *found);
      }
      for (const SchemaColumn& column : expected.columns) {
        if (found->columnsKnown &&
            std::ranges::none_of(found->columns, [&](const SchemaColumn& each) {
              return equalsIgnoringCase(each.name, column.name);
            })) {
          faults.push_back(fmt::format("non restituisce la colonna {}", column.name));
        }
      }
    }
    if (!faults.empty()) {
      add(kind, expected.name,
          fmt::format("In {} {}: {}.", kind, expected.name, joinAll(faults, "; ")),
          redefined(expected, *found));
    }
  }

 private:
  void add(std::string kind, std::string object, std::string message, std::string remedy) {
    diagnosis_.findings.push_back(
        {std::move(kind), std::move(object), std::move(message), std::move(remedy)});
  }

  void missing(const std::string& kind, const std::string& what, const std::string& name,
               const std::string& definition) {
    if (!user_) {
      add(kind, name, fmt::format("Manca {} {}.", what, name), definition);
      return;
    }
    const std::string grants = grantsOn(*user_, name);
    if (grants.empty()) {
      diagnosis_.notes.push_back(
          fmt::format("Non si può vedere {} {}: l'utente non vi ha diritti, e non gliene servono.",
                      what, name));
      return;
    }
    add(kind, name, fmt::format("Manca {} {}, o l'utente non ha diritti su di essa.", what, name),
        fmt::format("-- Se c'è e l'utente non la vede:\n{}\n-- Se non c'è:\n{}", grants,
                    definition));
  }

  static std::string grantsOn(const LimitedUser& user, const std::string& name) {
    std::vector<std::string> lines;
    for (const Grant& grant : user.needed) {
      if (equalsIgnoringCase(grant.object, name)) {
        lines.push_back(fmt::format("GRANT {} ON {}.{} TO {}", grant.right, grant.owner,
                                    grant.object, user.grantee));
      }
    }
    return joinAll(lines, "\n");
  }

  static std::string addColumn(const SchemaTable& table, const SchemaColumn& column) {
    std::string text =
        fmt::format("ALTER TABLE {} ADD {} {}{}{}", withOwner(table.owner, table.name), column.name,
                    column.type.text(), column.identity ? " IDENTITY(1, 1)" : "",
                    column.nullable ? " NULL" : " NOT NULL");
    if (column.hasDefault) {
      return text + " " + column.defaultClause;
    }
    if (!column.nullable && !column.identity) {
      text +=
          "\n-- In una tabella con righe: aggiungerla NULL, riempirla, poi ALTER COLUMN NOT NULL.";
    }
    return text;
  }

  void compareColumn(const SchemaTable& table, const SchemaColumn& expected,
                     const SchemaColumn& found) {
    const std::string object = expected.name;
    const std::string place = fmt::format("La colonna {} di {}", expected.name, table.name);
    const std::string alter = fmt::format("ALTER TABLE {} ", withOwner(table.owner, table.name));
    const auto fix = [&](const std::string& statement) {
      return alterable_ ? alter + statement : std::string{kNoChange};
    };
    const std::string declared =
        fmt::format("ALTER COLUMN {} {} {}", expected.name, expected.type.text(),
                    expected.nullable ? "NULL" : "NOT NULL");
    if (!holds(found.type, expected.type)) {
      add("tipo", object,
          fmt::format("{} è {}, serve {}.", place, found.type.text(), expected.type.text()),
          fix(declared));
    } else if (expected.nullable && !found.nullable) {
      add("null", object, fmt::format("{} non ammette NULL, e deve ammetterlo.", place),
          fix(fmt::format("ALTER COLUMN {} {} NULL", expected.name, found.type.text())));
    }
    if (expected.identity && !found.identity) {
      add("identita", object,
          fmt::format("{} non si numera da sé (IDENTITY), e deve farlo.", place),
          alterable_ ? "-- SQL Server non aggiunge IDENTITY a una colonna esistente: rifare "
                       "la tabella con\n"
                       "-- la definizione seguente e copiarvi le righe.\n" +
                           definitionOf(table.name)
                     : std::string{kNoChange});
    }
    if (expected.hasDefault && !found.hasDefault) {
      add("predefinito", object, fmt::format("{} non ha un valore predefinito.", place),
          fix(fmt::format("ADD {} FOR {}", expected.defaultClause, expected.name)));
    }
  }

  static std::string definitionOf(const std::string& table) {
    const SchemaTable* const known = expectedSchema().table(table);
    return known == nullptr || known->definitions.empty() ? std::string{}
                                                          : known->definitions.front();
  }

  static std::vector<std::string> parameterFaults(const SchemaRoutine& expected,
                                                  const SchemaRoutine& found) {
    std::vector<std::string> faults;
    for (const SchemaParameter& parameter : expected.parameters) {
      const auto there = std::ranges::find_if(found.parameters, [&](const SchemaParameter& each) {
        return equalsIgnoringCase(each.name, parameter.name);
      });
      if (there == found.parameters.end()) {
        faults.push_back(fmt::format("manca il parametro {}", parameter.name));
        continue;
      }
      if (!holds(there->type, parameter.type)) {
        faults.push_back(fmt::format("il parametro {} è {}, serve {}", parameter.name,
                                     there->type.text(), parameter.type.text()));
      }
      if (parameter.output != there->output) {
        faults.push_back(fmt::format("il parametro {} {}", parameter.name,
                                     parameter.output ? "non è OUTPUT" : "è OUTPUT"));
      }
    }
    return faults;
  }

  /// Puts the definition in the place of the one that is there. ALTER keeps the rights granted.
  [[nodiscard]] std::string redefined(const SchemaRoutine& expected,
                                      const SchemaRoutine& found) const {
    constexpr std::string_view create = "CREATE";
    if (alterable_ && expected.isFunction == found.isFunction) {
      return "ALTER" + expected.definition.substr(create.size());
    }
    return fmt::format("DROP {} {}\nGO\n{}", found.isFunction ? "FUNCTION" : "PROCEDURE",
                       withOwner(found.owner, found.name), expected.definition);
  }

  Diagnosis& diagnosis_;
  bool alterable_;
  const std::optional<LimitedUser>& user_;
};

}  // namespace

void compareSchemas(Diagnosis& diagnosis, const Schema& expected, const Schema& found,
                    Alteration alteration, const std::optional<LimitedUser>& user) {
  Comparison comparison{diagnosis, alteration, user};
  for (const SchemaTable& table : expected.tables) {
    comparison.table(table, found.table(table.name));
  }
  for (const SchemaRoutine& routine : expected.routines) {
    comparison.routine(routine, found.routine(routine.name));
  }
}

}  // namespace azcoll::deployment
