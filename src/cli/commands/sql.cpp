#include "cli/commands/sql.h"

#include <CLI/App.hpp>
#include <cstdint>
#include <fmt/format.h>
#include <istream>
#include <iterator>
#include <memory>
#include <nlohmann/json.hpp>
#include <ostream>
#include <string_view>
#include <vector>

#include "cli/print/json.h"
#include "cli/print/tables.h"
#include "data/connection.h"
#include "data/error.h"
#include "deployment/failure.h"
#include "tsql/script.h"
#include "views/rows.h"

namespace azcoll::cli {

using views::Rows;

namespace {

/// Prints the results of the batches in one of the three forms.
class ResultPrinter {
 public:
  ResultPrinter() = default;
  ResultPrinter(const ResultPrinter&) = delete;
  ResultPrinter(ResultPrinter&&) = delete;
  ResultPrinter& operator=(const ResultPrinter&) = delete;
  ResultPrinter& operator=(ResultPrinter&&) = delete;
  virtual ~ResultPrinter() = default;

  virtual void rows(const Rows& rows) = 0;
  virtual void changed(std::int64_t count) = 0;
  virtual void finish() {}
};

std::string changedText(std::int64_t count) {
  return count == 1 ? "1 riga modificata" : fmt::format("{} righe modificate", count);
}

class TablePrinter final : public ResultPrinter {
 public:
  explicit TablePrinter(std::ostream& out) : out_{out} {}
  void rows(const Rows& rows) override {
    separate();
    printTable(out_, rows);
    const std::size_t count = rows.rows.size();
    out_ << fmt::format("({} {})\n", count, count == 1 ? "riga" : "righe");
  }
  void changed(std::int64_t count) override {
    separate();
    out_ << changedText(count) << '\n';
  }

 private:
  void separate() {
    out_ << (first_ ? "" : "\n");
    first_ = false;
  }

  std::ostream& out_;
  bool first_ = true;
};

class CsvPrinter final : public ResultPrinter {
 public:
  explicit CsvPrinter(Console& console) : console_{console} {}
  void rows(const Rows& rows) override {
    console_.out << (first_ ? "" : "\r\n");
    first_ = false;
    printCsv(console_.out, rows);
  }
  // A count is not a row of the result: it would be read as data.
  void changed(std::int64_t count) override { console_.err << changedText(count) << '\n'; }

 private:
  Console& console_;
  bool first_ = true;
};

class JsonPrinter final : public ResultPrinter {
 public:
  explicit JsonPrinter(std::ostream& out) : out_{out} {}
  void rows(const Rows& rows) override { results_.push_back(toJson(rows)); }
  void changed(std::int64_t count) override { results_.push_back({{"righe_modificate", count}}); }
  void finish() override { out_ << dump(results_) << '\n'; }

 private:
  std::ostream& out_;
  Json results_ = Json::array();
};

void runBatch(Connection& connection, const std::string& text, ResultPrinter& printer) {
  std::int64_t affected = -1;
  const std::shared_ptr<Recordset> first = connection.execute(text, affected, CommandOption::Text);
  for (const Rows& rows : views::readResults(first)) {
    printer.rows(rows);
  }
  if (affected >= 0) {
    printer.changed(affected);
  }
}

ExitCode runBatches(Connection& connection, const std::vector<tsql::ScriptBatch>& batches,
                    ResultPrinter& printer, std::ostream& err) {
  for (const tsql::ScriptBatch& batch : batches) {
    try {
      runBatch(connection, batch.text, printer);
    } catch (const Error& error) {
      // What came before the failure is printed all the same.
      printer.finish();
      if (error.info().connectionLost) {
        throw;
      }
      err << deployment::describeFailure(error, deployment::failureLine(batch, error)) << '\n';
      return ExitCode::Failed;
    }
  }
  printer.finish();
  return ExitCode::Ok;
}

std::string readAll(Console& console) {
  if (console.interactive) {
    console.err << "Istruzioni T-SQL, poi Ctrl-D:\n";
  }
  std::string text{std::istreambuf_iterator<char>{console.in}, {}};
  constexpr std::string_view byteOrderMark = "\xEF\xBB\xBF";
  return text.starts_with(byteOrderMark) ? text.substr(byteOrderMark.size()) : text;
}

}  // namespace

CLI::App* CommandSql::setup(CLI::App& parent) {
  CLI::App* command = parent.add_subcommand("sql", "Esegue istruzioni T-SQL e stampa i risultati");
  command
      ->add_option_function<std::string>(
          "TESTO",
          [this](const std::string& text) {
            testo = text;
            fromArgument_ = true;
          },
          "istruzioni da eseguire, in gruppi divisi da righe GO;\n"
          "senza, si leggono dallo standard input")
      ->type_name("");
  database.setup(*command);
  command->add_flag("--json", json, "stampa un array JSON di risultati");
  command->add_flag("--csv", csv, "stampa i risultati in CSV (RFC 4180)");
  return command;
}

ExitCode CommandSql::run(Console& console) const {
  if (json && csv) {
    throw UsageError("Le opzioni --json e --csv si escludono.");
  }
  const std::shared_ptr<Connection> connection = openDatabase(database);
  const std::vector<tsql::ScriptBatch> batches =
      tsql::splitScript(fromArgument_ ? testo : readAll(console));
  std::unique_ptr<ResultPrinter> printer;
  if (json) {
    printer = std::make_unique<JsonPrinter>(console.out);
  } else if (csv) {
    printer = std::make_unique<CsvPrinter>(console);
  } else {
    printer = std::make_unique<TablePrinter>(console.out);
  }
  return runBatches(*connection, batches, *printer, console.err);
}

}  // namespace azcoll::cli
