#pragma once

#include <memory>
#include <optional>

#include "data/connection.h"
#include "data/error.h"

namespace azcoll::cli {

/// Notices that a connection was lost, also when whoever works on it passes over the failure: a
/// method of the service may take a look-up that failed for one that found nothing.
class ConnectionWatch {
 public:
  explicit ConnectionWatch(const std::shared_ptr<Connection>& connection);

  /// The connection to work on.
  [[nodiscard]] const std::shared_ptr<Connection>& connection() const { return connection_; }

  /// The first failure because something is not there or not allowed, if there was one.
  [[nodiscard]] std::optional<ErrorInfo> refusal() const;

  /// Throws `OpenError`, with what to check, when the connection was lost.
  void requireAlive() const;

 private:
  struct Seen {
    std::optional<ErrorInfo> loss{};
    std::optional<ErrorInfo> refusal{};
  };
  std::shared_ptr<Seen> seen_ = std::make_shared<Seen>();
  std::shared_ptr<Connection> connection_;
};

}  // namespace azcoll::cli
