#pragma once

#include <memory>
#include <string>

#include "data/connection.h"

/// The databases behind the ODBC drivers that the provider is measured on.
namespace azcoll::bench {

struct OdbcDatabase {
  std::string connectionString{};
  std::string absent{};  ///< why it cannot be used here; empty when it can
};

/// A file behind the ODBC driver for SQLite, filled at the first call.
[[nodiscard]] const OdbcDatabase& sqliteDatabase();
/// A PostgreSQL server of this process's own, filled at the first call.
[[nodiscard]] const OdbcDatabase& postgresqlDatabase();

inline constexpr int kWideRows = 100'000;
inline constexpr int kWideColumns = 40;
/// All rows of the table of 40 columns.
inline constexpr const char* kWideQuery = "SELECT * FROM LARGA";

inline constexpr int kJobCompanies = 100;

/// An open connection through the provider.
[[nodiscard]] std::shared_ptr<Connection> openOdbc(const OdbcDatabase& database);

}  // namespace azcoll::bench
