#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>

#include "data/command.h"
#include "data/error.h"
#include "data/object.h"
#include "data/options.h"
#include "data/recordset.h"

namespace azcoll {

/// What the client-side cursor needs of its own provider; see cursor/native_connection.h. Only
/// declared here, because that room lies above this one. `native()` is asked for it instead of a
/// dynamic_cast, which would stop at a decorator.
class NativeConnection;

/// A database connection in ADO's shape: the one contract that every provider meets.
///
/// Every operation throws `Error` when it fails; a failure of the provider is also recorded in
/// `errors()`. A connection is used by one thread at a time. One transaction at a time: a second
/// `beginTrans` is a provider error.
class Connection : public Object {
 public:
  virtual void setConnectionString(std::string text) = 0;
  [[nodiscard]] virtual std::string connectionString() const = 0;
  virtual void setCommandTimeout(int seconds) = 0;
  virtual void setCursorLocation(CursorLocation location) = 0;
  virtual void open(std::string_view user, std::string_view password, CommandOption options) = 0;
  virtual void close() = 0;
  [[nodiscard]] virtual bool isOpen() const = 0;

  /// Runs a statement or a batch. Returns its first result set positioned on the first row, or null
  /// when it gives none; `recordsAffected` receives the rows changed, -1 when not known.
  virtual std::shared_ptr<Recordset> execute(std::string_view commandText,
                                             std::int64_t& recordsAffected,
                                             CommandOption options) = 0;

  virtual void beginTrans() = 0;
  virtual void commitTrans() = 0;
  virtual void rollbackTrans() = 0;

  [[nodiscard]] virtual Errors& errors() = 0;

  /// A closed recordset or an empty command of this connection's provider, not yet connected.
  [[nodiscard]] virtual std::shared_ptr<Recordset> newRecordset() = 0;
  [[nodiscard]] virtual std::shared_ptr<Command> newCommand() = 0;

  /// The connection that a decorator passes everything on to; null for one that does its own work.
  [[nodiscard]] virtual std::shared_ptr<Connection> decorated() const { return nullptr; }
  /// The connection of a native provider that this is, or that it decorates; null when there is
  /// none, as with a caller's own ADO connection. It lives as long as this one.
  [[nodiscard]] virtual NativeConnection* native() { return nullptr; }
};

}  // namespace azcoll
