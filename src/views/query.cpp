#include "views/query.h"

#include <algorithm>
#include <memory>
#include <stdexcept>

#include "data/error.h"
#include "data/text.h"
#include "views/value_text.h"

namespace azcoll::views {
namespace {

/// Whether two names of columns differ in the letter case of ASCII letters at most.
bool sameColumn(std::string_view left, std::string_view right) {
  const auto lower = [](char c) {
    return c >= 'A' && c <= 'Z' ? static_cast<char>(c + ('a' - 'A')) : c;
  };
  return std::ranges::equal(left, right, {}, lower, lower);
}

}  // namespace

Rows query(Connection& connection, std::string_view statement) {
  std::int64_t affected = 0;
  const std::shared_ptr<Recordset> rows =
      connection.execute(statement, affected, CommandOption::Text);
  return rows && rows->isOpen() ? readRows(*rows) : Rows{};
}

std::size_t columnIndex(const Rows& rows, std::string_view name) {
  const auto found = std::ranges::find_if(
      rows.columns, [&](const std::string& column) { return sameColumn(column, name); });
  if (found == rows.columns.end()) {
    throw Error(join("Il risultato non ha la colonna ", name));
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
  return found == names.end() || found->second.empty() ? std::to_string(company)
                                                       : join(company, " ", found->second);
}

void requireCompany(std::int32_t company, const CompanyNames& names) {
  if (!names.contains(company)) {
    throw std::runtime_error(
        join("L'azienda ", company,
             " non esiste nel database (le aziende stanno in CG18_ANADITTABASE)."));
  }
}

}  // namespace azcoll::views
