#pragma once

#include <memory>

#include "ado/com.h"
#include "data/command.h"

namespace azcoll::ado {

/// An ADO command, used through automation.
[[nodiscard]] std::shared_ptr<Command> wrapCommand(const ComPtr<IDispatch>& object);

}  // namespace azcoll::ado
