#pragma once

#include <cstdint>
#include <memory>

#include "ado/dispatch.h"
#include "data/recordset.h"

namespace azcoll::ado {

/// Whether the `State` of a connection or recordset says that it is open.
[[nodiscard]] bool stateIsOpen(Dispatch& object);

/// The recordset that an execution gave; null when it gave none or a closed one, as ADO does for
/// statements without rows.
[[nodiscard]] std::shared_ptr<Recordset> openRecordset(const ComPtr<IDispatch>& object);

/// What an execution wrote into its records-affected argument; -1 when that is no number.
[[nodiscard]] std::int64_t affectedRows(const ScopedVariant& written);

}  // namespace azcoll::ado
