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
  /// What `open` connects to, in the provider's own notation.
  virtual void setConnectionString(std::string text) = 0;
  [[nodiscard]] virtual std::string connectionString() const = 0;
  /// Seconds after which a statement is broken off, 30 unless set; 0 waits without limit. Holds for
  /// the statements that follow; may be set before the connection is open.
  virtual void setCommandTimeout(int seconds) = 0;
  /// Where the rows of results are kept. Only ADO has the choice: the native providers keep them in
  /// memory, on the client's side, whatever is set.
  virtual void setCursorLocation(CursorLocation location) = 0;
  /// Connects. `user` and `password` are "" when the connection string says who connects, or nobody
  /// needs to be named; `options` is for ADO. Fails when the connection is open.
  virtual void open(std::string_view user, std::string_view password, CommandOption options) = 0;
  /// Ends the connection; an open transaction is undone by the native providers. Fails when the
  /// connection is not open.
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
