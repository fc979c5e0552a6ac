#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <string_view>

#include "data/object.h"
#include "data/options.h"
#include "data/variant.h"

namespace azcoll {

class Connection;
class Recordset;

/// One parameter of a stored procedure, as the database declares it.
class Parameter {
 public:
  Parameter() = default;
  Parameter(const Parameter&) = delete;
  Parameter(Parameter&&) = delete;
  Parameter& operator=(const Parameter&) = delete;
  Parameter& operator=(Parameter&&) = delete;
  virtual ~Parameter() = default;

  [[nodiscard]] virtual std::string name() const = 0;  ///< with its leading `@`
  [[nodiscard]] virtual ParameterDirection direction() const = 0;
  [[nodiscard]] virtual Variant value() const = 0;
  virtual void setValue(const Variant& value) = 0;
};

/// The parameters of a command, filled by the provider from the procedure's declaration when they
/// are first asked for.
class Parameters {
 public:
  Parameters() = default;
  Parameters(const Parameters&) = delete;
  Parameters(Parameters&&) = delete;
  Parameters& operator=(const Parameters&) = delete;
  Parameters& operator=(Parameters&&) = delete;
  virtual ~Parameters() = default;

  [[nodiscard]] virtual std::size_t count() = 0;
  /// Parameter by name (with its `@`), letter case ignored; throws `Error` when there is none.
  [[nodiscard]] virtual Parameter& item(std::string_view name) = 0;
  /// Parameter by position from 0; throws `Error` when out of range.
  [[nodiscard]] virtual Parameter& item(std::size_t index) = 0;
};

/// A stored procedure to be called by name.
class Command : public Object {
 public:
  /// Connection to work on; null releases it after use.
  virtual void setActiveConnection(std::shared_ptr<Connection> connection) = 0;
  virtual void setCommandText(std::string text) = 0;
  virtual void setCommandType(CommandOption type) = 0;
  virtual void setCommandTimeout(int seconds) = 0;  ///< 0 waits without limit
  virtual void setPrepared(bool prepared) = 0;
  [[nodiscard]] virtual Parameters& parameters() = 0;

  /// Runs the procedure and returns its result (null when it gives none); output parameters are
  /// readable afterwards. `recordsAffected` receives the rows changed, -1 when not known.
  virtual std::shared_ptr<Recordset> execute(std::int64_t& recordsAffected,
                                             CommandOption options) = 0;
};

}  // namespace azcoll
