#include "cli/commands/connection_watch.h"

#include "cli/commands/failure_advice.h"
#include "cli/console.h"
#include "data/tracing.h"

namespace azcoll::cli {
namespace {

/// Class 42: something is not there, or not allowed.
bool isRefusal(const ErrorInfo& info) { return info.sqlState.starts_with("42"); }

}  // namespace

ConnectionWatch::ConnectionWatch(const std::shared_ptr<Connection>& connection)
    : connection_{std::make_shared<ConnessioneTracciata>(
          connection, [seen = seen_](const TraceEntry& entry) {
            if (entry.error && entry.error->connectionLost && !seen->loss) {
              seen->loss = entry.error;
            } else if (entry.error && isRefusal(*entry.error) && !seen->refusal) {
              seen->refusal = entry.error;
            }
          })} {}

std::optional<ErrorInfo> ConnectionWatch::refusal() const {
  if (seen_->refusal) {
    return seen_->refusal;
  }
  // What no operation reports, such as asking for a procedure's parameters, is found here.
  Errors& errors = connection_->errors();
  for (std::size_t i = 0; i < errors.count(); ++i) {
    if (isRefusal(errors.item(i))) {
      return errors.item(i);
    }
  }
  return std::nullopt;
}

void ConnectionWatch::requireAlive() const {
  if (seen_->loss) {
    throw OpenError(describeLoss(*seen_->loss));
  }
  Errors& errors = connection_->errors();  // as above
  for (std::size_t i = 0; i < errors.count(); ++i) {
    if (errors.item(i).connectionLost) {
      throw OpenError(describeLoss(errors.item(i)));
    }
  }
}

}  // namespace azcoll::cli
