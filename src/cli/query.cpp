#include "cli/query.h"

#include <algorithm>
#include <fmt/format.h>
#include <stdexcept>

#include "cli/names.h"
#include "cli/values.h"
#include "data/error.h"

namespace azcoll::cli {

Rows query(Connection& connection, std::string_view statement) {
  std::int64_t affected = 0;
  const std::shared_ptr<Recordset> rows =
      connection.execute(statement, affected, CommandOption::Text);
  return rows && rows->isOpen() ? readRows(*rows) : Rows{};
}

std::size_t columnIndex(const Rows& rows, std::string_view name) {
  const auto found =
      std::find_if(rows.columns.begin(), rows.columns.end(), [&](const std::string& column) {
        return column == name || foldName(column) == foldName(name);
      });
  if (found == rows.columns.end()) {
    throw Error(fmt::format("Il risultato non ha la colonna {}", name));
  }
  return static_cast<std::size_t>(found - rows.columns.begin());
}

CompanyNames readCompanyNames(Connection& connection) {
  const Rows rows = query(connection,
                          "SELECT D.CG18_DITTA, A.CG16_RAGSOANAG FROM CG18_ANADITTABASE AS D"
                          " LEFT JOIN CG16_ANAGGEN AS A ON A.CG16_CODICE = D.CG18_CODICE_CG16");
  CompanyNames names;
  for (const std::vector<Variant>& row : rows.rows) {
    names[row[0].toInt32()] = exchangeText(row[1]);
  }
  return names;
}

std::string companyText(std::int32_t company, const CompanyNames& names) {
  const auto found = names.find(company);
  return found == names.end() || found->second.empty()
             ? std::to_string(company)
             : fmt::format("{} {}", company, found->second);
}

void requireCompany(std::int32_t company, const CompanyNames& names) {
  if (!names.contains(company)) {
    throw std::runtime_error(fmt::format(
        "L'azienda {} non esiste nel database (le aziende stanno in CG18_ANADITTABASE).", company));
  }
}

}  // namespace azcoll::cli
