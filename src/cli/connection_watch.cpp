#include "cli/connection_watch.h"

#include "cli/console.h"
#include "cli/database.h"
#include "data/tracing.h"

namespace azcoll::cli {

ConnectionWatch::ConnectionWatch(const std::shared_ptr<Connection>& connection)
    : connection_{std::make_shared<ConnessioneTracciata>(
          connection, [seen = seen_](const TraceEntry& entry) {
            if (entry.error && entry.error->connectionLost && !seen->loss) {
              seen->loss = entry.error;
            } else if (entry.error && entry.error->sqlState.starts_with("42") && !seen->refusal) {
              seen->refusal = entry.error;
            }
          })} {}

void ConnectionWatch::requireAlive() const {
  if (seen_->loss) {
    throw OpenError(describeLoss(*seen_->loss));
  }
  // What no operation reports, such as asking for a procedure's parameters, is told here.
  Errors& errors = connection_->errors();
  for (std::size_t i = 0; i < errors.count(); ++i) {
    if (errors.item(i).connectionLost) {
      throw OpenError(describeLoss(errors.item(i)));
    }
  }
}

}  // namespace azcoll::cli
