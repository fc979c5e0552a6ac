#pragma once

#include <cstddef>
#include <string>

#include "databases.h"

namespace azcoll::bench {

/// A database that the benchmarks are registered for, and what counts as time on it: that of the
/// processor where the database is part of this program, that of the clock where it is a server.
struct Measured {
  std::string name{};
  const OdbcDatabase& (*database)();
  double (*clock)();
};

/// Bytes of the fetch of the wide table.
struct FetchMemory {
  std::size_t data = 0;
  std::size_t providerHeld = 0;
  std::size_t providerPeak = 0;
  std::size_t bareHeld = 0;
  std::size_t barePeak = 0;
};
[[nodiscard]] FetchMemory& memoryOf(const std::string& database);

void registerFetches(const Measured& on);
void registerStatements(const Measured& on);
/// The main job on the server of AZCOLL_TEST_CONNESSIONE; false, and nothing registered, without
/// it.
bool registerServerJob();

/// Questions and answers between program and server in one main job, for each linked company.
struct RoundTrips {
  double component = 0;
  double bare = 0;
};
/// Counts them on the server of AZCOLL_TEST_CONNESSIONE, which is there.
[[nodiscard]] RoundTrips serverRoundTrips();

}  // namespace azcoll::bench
