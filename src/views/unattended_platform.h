#pragma once

#include <memory>
#include <string_view>

#include "component/platform.h"
#include "data/connection.h"
#include "data/error.h"

namespace azcoll::views {

/// The platform of a service that a view asks: it works on the connection that it is handed, opens
/// none, and every prompt is answered No.
class UnattendedPlatform final : public Platform {
 public:
  /// Throws `Error`: a view opens no connection.
  [[nodiscard]] std::shared_ptr<Connection> newConnection(
      std::string_view /*connectionString*/) override {
    throw Error("Manca la connessione su cui leggere");
  }
};

}  // namespace azcoll::views
