#pragma once

#include <cstddef>
#include <cstdint>
#include <map>
#include <string>
#include <string_view>

#include "data/connection.h"
#include "views/rows.h"

namespace azcoll::views {

/// Rows of the first result of a statement; without a result no rows and no columns. Throws `Error`
/// when the database refuses it.
[[nodiscard]] Rows query(Connection& connection, std::string_view statement);

/// Place of the column of this name, whatever its letter case. Throws `Error` when there is none.
[[nodiscard]] std::size_t columnIndex(const Rows& rows, std::string_view name);

/// Names of companies by their code.
using CompanyNames = std::map<std::int32_t, std::string>;

/// The names of all companies from their registry entries; "" for one without entry.
[[nodiscard]] CompanyNames readCompanyNames(Connection& connection);

/// `10 Alfa S.p.A.`, or the code alone when no name is known.
[[nodiscard]] std::string companyText(std::int32_t company, const CompanyNames& names);

/// Throws `std::runtime_error` with a message for people when the database has no such company.
void requireCompany(std::int32_t company, const CompanyNames& names);

}  // namespace azcoll::views
