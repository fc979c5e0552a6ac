#pragma once

#include <memory>

#include "ado/automated.h"
#include "data/connection.h"

namespace azcoll::ado {

/// The caller's own ADO connection, used through automation. Its identity is kept: what is handed
/// back is the very object. A null `object` gives a null pointer. A statement without rows gives
/// what ADO gives for it: a closed recordset, which fails when it is read.
[[nodiscard]] std::shared_ptr<Connection> wrapConnection(const ComPtr<IDispatch>& object);

/// The caller's own ADO recordset, in the same way.
[[nodiscard]] std::shared_ptr<Recordset> wrapRecordset(const ComPtr<IDispatch>& object);

/// A new, closed ADO connection. Throws `Error` when ADO is not installed.
[[nodiscard]] std::shared_ptr<Connection> newConnection();

}  // namespace azcoll::ado
