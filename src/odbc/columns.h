#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

#include "odbc/handles.h"
#include "odbc/values.h"

namespace azcoll::odbc {

/// A column of an open result, as the driver describes it. `size` is what the driver says, which is
/// a hint and no promise.
struct Column {
  std::string name{};
  Carrier carrier = Carrier::Text;
  std::size_t size = 0;      ///< characters, digits or bytes; 0 when not known
  std::string baseTable{};   ///< empty when the driver does not say
  std::string baseColumn{};  ///< empty when the driver does not say
  bool isIdentity = false;   ///< numbered by the database
};

/// The columns of the result that is open on the statement; none when it has no result. Throws
/// `DriverFailure`.
[[nodiscard]] std::vector<Column> describeColumns(const Handle& statement);

}  // namespace azcoll::odbc
