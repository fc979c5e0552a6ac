// A script, its batches parted by GO, run by three engines: as callers have it, with the plan
// cache; without it, on the text as the printer writes it; and without SQLite's optimiser and the
// rewrites. After each batch come batches of the same shape with other constants, which is where a
// plan that took too much for granted shows. The first two must agree in everything that a caller
// can tell, the third in the rows.

#include <algorithm>
#include <array>
#include <initializer_list>
#include <memory>
#include <optional>
#include <sqlite3.h>
#include <string>
#include <vector>

#include "data/error.h"
#include "embedded/connection.h"
#include "fuzz/check.h"
#include "fuzz/constants.h"
#include "fuzz/targets.h"
#include "tsql/lexer.h"
#include "tsql/parser.h"
#include "tsql/printer.h"
#include "tsql/script.h"
#include "tsql/syntax_error.h"

namespace azcoll::fuzz {
namespace {

using embedded::EmbeddedConnection;
using tsql::Token;
using tsql::TokenKind;

constexpr const char* kDatabase[]{
    "CREATE TABLE V (I INT NOT NULL PRIMARY KEY, S SMALLINT NULL, D DECIMAL(5, 2) NULL, "
    "W DECIMAL(38, 6) NULL, T VARCHAR(5) NULL, C CHAR(4) NULL, F FLOAT NULL, A DATETIME NULL, "
    "N NVARCHAR(10) NULL, B BIT NULL) "
    "CREATE INDEX IX_T ON V (T, S) CREATE INDEX IX_D ON V (D) "
    "INSERT INTO V VALUES (1, 1, 1.25, 12.345, '1', 'x', 1.5, '20240101', N'\xC3\xA8', 1), "
    "(2, -3, -1.5, 99999999999999999999, 'It''s', 'abcd', 100, NULL, '', 0), "
    "(3, 1, 0, 1.5, ' 7 ', '', -0.25, '20240229 10:20:30', N'x', NULL), "
    "(12, NULL, NULL, 0.000001, NULL, NULL, NULL, '19000101', NULL, NULL)",
    "CREATE TABLE R (K INT IDENTITY(1, 1) NOT NULL PRIMARY KEY, I INT NULL REFERENCES V (I), "
    "Y INT NOT NULL DEFAULT 2024, T VARCHAR(5) NULL CHECK (T <> 'no')) "
    "CREATE INDEX IX_R ON R (I, Y) "
    "INSERT INTO R (I, Y, T) VALUES (1, 2024, '1'), (1, 2025, 'a'), (2, 2024, NULL), "
    "(NULL, 2024, 'x')",
    "CREATE FUNCTION DBO.FN (@A INT, @B VARCHAR(5)) RETURNS TABLE AS RETURN (SELECT I, T FROM V "
    "WHERE I = @A OR T = @B)",
    "CREATE PROCEDURE PR @A INT, @B VARCHAR(5) = 'x', @C INT = NULL OUTPUT AS BEGIN "
    "SET @C = @A + 1 SELECT @A AS A, @B AS B, @C AS C, COUNT(*) AS N FROM R WHERE I = @A END"};

std::shared_ptr<EmbeddedConnection> open(const embedded::EngineOptions& options) {
  auto connection = embedded::newConnectionWith(options);
  connection->setConnectionString("Provider=embedded;Data Source=:memory:");
  connection->open("", "", CommandOption::Unspecified);
  connection->setCommandTimeout(1);
  for (const char* batch : kDatabase) {
    static_cast<void>(connection->run(batch));
  }
  return connection;
}

/// What a caller can tell about one execution.
struct Outcome {
  int error = 0;
  std::string message;
  std::vector<std::string> results;  ///< columns and sorted rows of each
  std::int64_t affected = -1;
};

std::string shown(const Variant& value) {
  return value.isNull() ? "NULL" : std::to_string(static_cast<int>(value.kind())) + value.text();
}

/// Without ORDER BY the order is open, so the rows are sorted.
std::string shown(const ResultSet& set) {
  std::string text;
  for (const ColumnInfo& column : set.columns) {
    text += column.name + ":" + column.baseTable + "." + column.baseColumn +
            (column.isKey ? "!" : "") + "|";
  }
  std::vector<std::string> rows;
  const std::vector<Variant> values = set.allValues();
  for (std::size_t i = 0; i < values.size(); ++i) {
    if (i % set.columns.size() == 0) {
      rows.emplace_back();
    }
    rows.back() += shown(values[i]) + "|";
  }
  std::sort(rows.begin(), rows.end());
  for (const std::string& row : rows) {
    text += "\n" + row;
  }
  return text;
}

Outcome outcomeOf(EmbeddedConnection& connection, std::string_view text) {
  Outcome outcome;
  try {
    const ExecutionResult execution = connection.run(text);
    outcome.affected = execution.recordsAffected;
    for (const ResultSet& set : execution.results) {
      outcome.results.push_back(shown(set));
    }
  } catch (const Error& error) {
    require(error.fromProvider() && !error.description().empty(), "a failure says why", text);
    outcome.error = error.info().nativeNumber;
    outcome.message = error.description();
    require(outcome.error != 0 || !outcome.message.starts_with("Errore interno"),
            "SQLite understands what it is given", std::string(text) + "\n" + outcome.message);
    outcome.error = outcome.error == 0 ? -1 : outcome.error;
  }
  return outcome;
}

std::string shown(const Outcome& outcome, bool withMessage) {
  std::string text = outcome.error == 0 ? "" : "error " + std::to_string(outcome.error);
  text += withMessage ? " " + outcome.message : "";
  for (const std::string& result : outcome.results) {
    text += "\n" + result;
  }
  return text + "\naffected " + std::to_string(outcome.affected);
}

/// Out of time or of memory: how far an engine came depends on the machine.
bool isExhausted(const Outcome& outcome) {
  return outcome.error == -2 || outcome.error == 701 || outcome.error == 8623;
}

// ---- what cannot be compared

/// What of a text's outcome lies open.
struct Openness {
  bool endsTransaction = false;
  bool clock = false;    ///< differs from run to run
  bool choice = false;   ///< which row is taken depends on the order of the rows
  bool changes = false;  ///< changes data
};

std::string upperCase(std::string text) {
  std::transform(text.begin(), text.end(), text.begin(),
                 [](char c) { return c >= 'a' && c <= 'z' ? static_cast<char>(c - 32) : c; });
  return text;
}

Openness opennessOf(std::string_view text) {
  Openness open;
  bool update = false;
  bool from = false;
  tsql::Lexer lexer(text);
  for (Token token = lexer.next(); token.kind != TokenKind::End; token = lexer.next()) {
    const std::string word = upperCase(token.value());
    const auto isOneOf = [&word](std::initializer_list<const char*> words) {
      return std::find(words.begin(), words.end(), word) != words.end();
    };
    update = update || word == "UPDATE";
    from = from || word == "FROM";
    open.endsTransaction = open.endsTransaction || isOneOf({"COMMIT", "ROLLBACK"});
    open.clock = open.clock || isOneOf({"GETDATE", "SYSDATETIME", "CURRENT_TIMESTAMP"});
    open.choice = open.choice || word == "TOP" || token.kind == TokenKind::Variable;
    open.changes = open.changes || isOneOf({"INSERT", "UPDATE", "DELETE", "CREATE", "DROP"});
  }
  open.choice = open.choice || (update && from);
  return open;
}

// ---- the engines

/// The printed form; nothing for a text that is not understood.
std::optional<std::string> printed(const std::string& text) {
  try {
    return tsql::print(tsql::parse(text));
  } catch (const tsql::SyntaxError&) {
    return std::nullopt;
  }
}

class Engines {
 public:
  Engines() {
    // No statement may take the machine's memory.
    constexpr std::int64_t kMostBytes = 256'000'000;
    sqlite3_hard_heap_limit64(kMostBytes);
    cached_ = open({});
    fresh_ = open({.planCache = false});
    plain_ = open({.planCache = false, .rewriteIn = false, .optimizer = false});
    for (EmbeddedConnection* connection : all()) {
      connection->beginTrans();
    }
  }

  /// Takes back what a script did, the cached plans too. False when an engine cannot go on.
  bool rollback() {
    for (EmbeddedConnection* connection : all()) {
      if (!connection->engine().inTransaction()) {
        return false;
      }
      outcomeOf(*connection, "CREATE TABLE FORGET_PLANS (A INT)");
      connection->rollbackTrans();
      connection->beginTrans();
    }
    plainFollows_ = true;
    return true;
  }

  /// Runs one batch everywhere; false when what comes behind it cannot be compared.
  bool run(const std::string& text) {
    // What is not understood is refused before any engine sees it; the front end has a target of
    // its own.
    const std::optional<std::string> parsed = printed(text);
    if (!parsed) {
      return true;
    }
    const std::string& canonical = *parsed;
    const Openness openness = opennessOf(text);
    const Outcome cached = outcomeOf(*cached_, text);
    const Outcome fresh = outcomeOf(*fresh_, canonical);
    if (isExhausted(cached) || isExhausted(fresh) || openness.clock) {
      return false;
    }
    // A refusal of this system's own shows its place in the text, which printing moves.
    const bool withMessage = canonical == text || cached.error > 0;
    requireSame(shown(cached, withMessage), shown(fresh, withMessage),
                "neither cache nor printer change a result: " + text);
    if (plainFollows_) {
      comparePlain(text, canonical, cached, openness);
    }
    return true;
  }

 private:
  /// Which error comes first, and which of several rows is taken, lies open; after that the two
  /// databases may differ.
  void comparePlain(const std::string& text, const std::string& canonical, const Outcome& cached,
                    const Openness& openness) {
    const Outcome plain = outcomeOf(*plain_, canonical);
    if (isExhausted(plain) || plain.error != cached.error) {
      plainFollows_ = false;
    } else if (openness.choice) {
      plainFollows_ = !openness.changes;
    } else {
      requireSame(shown(plain, false), shown(cached, false),
                  "the optimiser does not change a result: " + text);
    }
  }

  [[nodiscard]] std::array<EmbeddedConnection*, 3> all() const {
    return {cached_.get(), fresh_.get(), plain_.get()};
  }

  std::shared_ptr<EmbeddedConnection> cached_;
  std::shared_ptr<EmbeddedConnection> fresh_;
  std::shared_ptr<EmbeddedConnection> plain_;
  bool plainFollows_ = true;
};

/// The batches of a script, each followed by others of its shape and by itself once more.
bool runScript(Engines& engines, const std::vector<tsql::ScriptBatch>& batches) {
  for (const tsql::ScriptBatch& batch : batches) {
    const std::uint64_t seed = hashOf(batch.text);
    const bool done =
        engines.run(batch.text) && engines.run(withOtherConstants(batch.text, seed)) &&
        engines.run(withOtherConstants(batch.text, seed + 1)) && engines.run(batch.text);
    if (!done) {
      return false;
    }
  }
  return true;
}

}  // namespace

void shapeCache(std::string_view input) {
  constexpr std::size_t kMostBatches = 4;
  std::vector<tsql::ScriptBatch> batches = tsql::splitScript(input);
  batches.resize(std::min(batches.size(), kMostBatches));
  // The transaction is what a run is taken back by: a script must not end it.
  if (std::any_of(batches.begin(), batches.end(), [](const tsql::ScriptBatch& batch) {
        return opennessOf(batch.text).endsTransaction;
      })) {
    return;
  }
  static std::unique_ptr<Engines> engines;
  if (engines == nullptr) {
    engines = std::make_unique<Engines>();
  }
  std::unique_ptr<Engines> running = std::move(engines);  // not kept when something fails
  const bool whole = runScript(*running, batches);
  if (running->rollback()) {
    engines = std::move(running);
  } else {
    require(!whole, "a batch does not end the transaction", input);
  }
}

}  // namespace azcoll::fuzz
