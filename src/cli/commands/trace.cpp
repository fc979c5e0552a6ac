#include "cli/commands/trace.h"

#include <fmt/format.h>
#include <nlohmann/json.hpp>
#include <utility>

#include "cli/console.h"
#include "cli/print/json.h"

namespace azcoll::cli {

TraceWriter::TraceWriter(const std::string& target, std::ostream& err) : stream_{&err} {
  if (target == "-") {
    return;
  }
  file_.open(target, std::ios::binary | std::ios::trunc);
  if (!file_) {
    throw UsageError(fmt::format("Impossibile scrivere la traccia nel file «{}».", target));
  }
  stream_ = &file_;
}

std::shared_ptr<Connection> TraceWriter::traced(std::shared_ptr<Connection> connection) {
  return std::make_shared<ConnessioneTracciata>(std::move(connection),
                                                [this](const TraceEntry& entry) { write(entry); });
}

bool TraceWriter::finish() {
  active_ = false;
  stream_->flush();
  return stream_->good();
}

void TraceWriter::write(const TraceEntry& entry) {
  if (active_) {
    *stream_ << traceLine(entry) << '\n';
  }
}

std::string traceLine(const TraceEntry& entry) {
  Json line;
  line["op"] = entry.operation;
  line["sql"] = entry.sql.empty() ? Json(nullptr) : Json(entry.sql);
  line["opzioni"] = entry.options;
  if (entry.operation == "CommandExecute") {
    Json& parameters = line["parametri"] = Json::object();
    for (const auto& [name, value] : entry.parameters) {
      parameters[name] = toJson(value);
    }
  }
  line["righe"] = entry.rows ? Json(*entry.rows) : Json(nullptr);
  line["ms"] = entry.milliseconds;
  if (entry.error) {
    line["errore"] = {{"descrizione", entry.error->description},
                      {"sqlstate", entry.error->sqlState},
                      {"numero", entry.error->nativeNumber}};
  }
  return dump(line);
}

}  // namespace azcoll::cli
