#include "cursor/native_connection.h"

#include "cursor/client_command.h"
#include "cursor/client_cursor.h"
#include "data/messages.h"

namespace azcoll {

std::vector<ColumnInfo> NativeConnection::completeColumns(
    const std::vector<ColumnInfo>& /*columns*/, const ResultOrigin& /*origin*/) {
  throw Error(messages::kWrongConnection);
}

void NativeConnection::failWith(std::vector<ErrorInfo> entries) {
  // Made first: recording takes the entries away.
  Error failure = Error::provider(entries.front());
  record(std::move(entries));
  throw failure;
}

std::shared_ptr<Recordset> NativeConnection::newRecordset() { return newClientCursor(); }

std::shared_ptr<Command> NativeConnection::newCommand() {
  return std::make_shared<cursor::ClientCommand>(std::string{provider()});
}

std::shared_ptr<NativeConnection> nativeOf(const std::shared_ptr<Connection>& connection) {
  if (!connection) {
    return nullptr;
  }
  NativeConnection* const native = connection->native();
  if (native == nullptr) {
    throw Error(messages::kWrongConnection);
  }
  // Owns what the caller holds, a decorator included, which keeps the connection inside.
  return {connection, native};
}

}  // namespace azcoll
