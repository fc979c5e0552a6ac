#include "cursor/provider_connection.h"

#include "cursor/client_cursor.h"
#include "data/messages.h"

namespace azcoll::cursor {

std::shared_ptr<Recordset> ProviderConnection::execute(std::string_view commandText,
                                                       std::int64_t& recordsAffected,
                                                       CommandOption options) {
  ExecutionResult result =
      options == CommandOption::StoredProcedure ? callByName(commandText) : run(commandText);
  recordsAffected = result.recordsAffected;
  return openClientCursor(std::move(result), shared_from_this());
}

ExecutionResult ProviderConnection::callByName(std::string_view name) {
  const std::shared_ptr<NativeProcedure> procedure = findProcedure(name);
  std::vector<Variant> values(procedure->parameters().size());
  return procedure->call(values, timeoutSeconds_);
}

void ProviderConnection::requireOpen() const {
  if (!isOpen()) {
    throw Error(messages::kConnectionClosed);
  }
}

void ProviderConnection::requireClosed() const {
  if (isOpen()) {
    throw Error(messages::kConnectionOpen);
  }
}

}  // namespace azcoll::cursor
