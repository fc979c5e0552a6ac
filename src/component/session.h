#pragma once

#include <memory>

#include "component/platform.h"
#include "data/connection.h"

namespace azcoll {

/// What the service keeps from one call to the next.
struct Session {
  std::shared_ptr<Platform> platform;
  std::weak_ptr<Connection> opened;  ///< the connection that `Call::ApriConnessione` opened
  bool Mbol_ConnessioneAperta = false;
  bool Mbol_TransazioneAperta = false;  ///< a transaction of a method's own; every call resets it
  /// "A duplication is running", as the look-ups of the group report it to the database. Callers
  /// rely on it: it stays set after a call that was trapped, and after a look-up with a filter that
  /// found companies.
  bool Mbol_GestioneDuplicazioneCliFor = false;
};

}  // namespace azcoll
