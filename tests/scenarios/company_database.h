#pragma once

#include <algorithm>
#include <gtest/gtest.h>
#include <iterator>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include "component/service.h"
#include "data/tables.h"
#include "data/text.h"
#include "support/test_database.h"

namespace azcoll::test {

using Lines = std::vector<std::string>;

/// Rows that stand in one picture of the database and not in the other, as "TABLE|value|value…".
struct Difference {
  Lines gone;
  Lines come;
};

/// The example database with a service on it, and the means to look at it row by row.
class CompanyDatabase : public ::testing::Test {
 protected:
  std::shared_ptr<Connection> connection = openExample();
  CLSCO_AZIENDECOLL service;

  CompanyDatabase() {
    service.CPInput->Connessione = connection;
    service.CPInput->AnnoSolare = 2025;
  }

  /// Every row of a query, its values parted by `|`; Null shows as NULL.
  Lines rows(const std::string& sql) {
    std::int64_t affected = 0;
    const std::shared_ptr<Recordset> found =
        connection->execute(sql, affected, CommandOption::Text);
    Lines lines;
    for (; !found->atEnd(); found->moveNext()) {
      std::string line;
      for (std::size_t column = 0; column < found->fields().count(); ++column) {
        const Variant value = found->fields().item(column).value();
        line += column == 0 ? "" : "|";
        line += value.isNull() ? "NULL" : value.text();
      }
      lines.push_back(line);
    }
    return lines;
  }

  void run(const std::string& sql) {
    std::int64_t affected = 0;
    connection->execute(sql, affected, CommandOption::Text);
  }

  /// Every row of every table that a customer/supplier can touch, in order.
  Lines picture() {
    Lines all;
    const auto add = [&](std::string_view table) {
      for (const std::string& line : rows(join("SELECT * FROM ", table))) {
        all.push_back(join(table, "|", line));
      }
    };
    for (const std::string_view table : tables::kSubTables) {
      add(table);
    }
    for (const char* table :
         {"CG44_CLIFOR", "CG4E_CFCOINTESTATI", "CG40_ANADITTAINTER", "CG31_ANADITTASEDI",
          "CG70_NUMERDOC", "MG17_AGENTI", "CG86_AZIENDECOLL"}) {
      add(table);
    }
    std::ranges::sort(all);
    return all;
  }

  static Difference difference(const Lines& before, const Lines& after) {
    Difference result;
    std::ranges::set_difference(before, after, std::back_inserter(result.gone));
    std::ranges::set_difference(after, before, std::back_inserter(result.come));
    return result;
  }

  /// Whether this object's connection holds an open transaction; it is rolled back if so.
  bool endOpenTransaction() {
    try {
      connection->rollbackTrans();
      return true;
    } catch (const Error&) {
      return false;
    }
  }

  void duplicate(int company, EnumTipoCF kind, const Variant& code) {
    service.CPInput->Pvar_Ditta = company;
    service.CPInput->Pint_TipoCF = kind;
    service.CPInput->Pvar_CliFor = code;
    service.DuplicaCliFor();
  }

  /// The wording of database errors is pinned on the embedded engine; servers have their own.
  static bool embedded() { return serverConnectionString().empty(); }
};

/// `lines` of one table, without the table's name.
inline Lines ofTable(const Lines& lines, std::string_view table) {
  Lines result;
  for (const std::string& line : lines) {
    if (line.starts_with(join(table, "|"))) {
      result.push_back(line.substr(table.size() + 1));
    }
  }
  return result;
}

}  // namespace azcoll::test
