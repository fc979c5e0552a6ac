#include "embedded/engine.h"

#include <filesystem>
#include <utility>

#include "data/variant.h"
#include "embedded/catalogue/store.h"
#include "embedded/plan/guards.h"
#include "embedded/plan/slots.h"
#include "embedded/run/batch_runner.h"
#include "embedded/values/conversions.h"
#include "embedded/values/sql_error.h"
#include "embedded/values/value.h"
#include "text/letter_case.h"
#include "text/trimming.h"
#include "tsql/shape.h"

namespace azcoll::embedded {

namespace {

constexpr std::size_t kCachedShapes = 400;
// A statement has a limited number of parameters; beyond, constants are written into its text.
constexpr std::size_t kMostBoundLiterals = 20000;
// Steps of SQLite's virtual machine between two questions about the time limit.
constexpr int kStepsBetweenClockReadings = 100000;
constexpr std::string_view kMemory = ":memory:";

std::string nameOfDatabase(const std::string& path) {
  return path == kMemory ? "memory" : std::filesystem::path(path).stem().string();
}

}  // namespace

Engine::Engine(const ConnectionSettings& settings, const EngineOptions& options)
    : options_(options),
      compilerSettings_{options.rewriteIn},
      path_(settings.dataSource),
      cache_(kCachedShapes) {
  session_.databaseName = nameOfDatabase(settings.dataSource);
  try {
    openFile(settings);
    configure(settings);
    reloadCatalogue();
  } catch (const SqliteFailure& failure) {
    throw translate(failure);
  }
}

void Engine::openFile(const ConnectionSettings& settings) {
  const bool memory = path_ == kMemory;
  std::error_code error;
  if (!memory && !settings.create && !std::filesystem::exists(path_, error)) {
    throw SqlError(4060, "Il database \"" + path_ +
                             "\" non esiste; con Create=True nella stringa di connessione viene "
                             "creato.");
  }
  // A connection is used by one thread at a time, so SQLite need not lock its own state.
  int flags = SQLITE_OPEN_NOMUTEX;
  flags |= settings.readOnly ? SQLITE_OPEN_READONLY : SQLITE_OPEN_READWRITE;
  if (memory || settings.create) {
    flags |= SQLITE_OPEN_CREATE;
  }
  session_.database = SqliteDatabase(path_, flags);
  // Before the first look into the file, on which another process may hold a lock.
  sqlite3_busy_timeout(session_.database.get(), settings.timeoutSeconds * 1000);
  const CatalogueStore store(session_.database);
  switch (store.inspect()) {
    case CatalogueStore::FileKind::Ours:
      break;
    case CatalogueStore::FileKind::Empty:
      if (memory || settings.create) {
        // In front of the transaction: inside one SQLite does not change the journal.
        session_.database.execute("PRAGMA journal_mode = WAL; PRAGMA synchronous = FULL");
        session_.database.execute("BEGIN IMMEDIATE");
        // Another process may have been quicker.
        if (store.inspect() == CatalogueStore::FileKind::Empty) {
          store.create();
        }
        session_.database.execute("COMMIT");
        break;
      }
      [[fallthrough]];
    case CatalogueStore::FileKind::Foreign:
      throw SqlError(4060, "Il file \"" + path_ + "\" non è un database di questo programma.");
    case CatalogueStore::FileKind::Newer:
      throw SqlError(
          4060, "Il database \"" + path_ + "\" è di una versione più recente di questo programma.");
  }
}

void Engine::configure(const ConnectionSettings& settings) {
  sqlite3* const handle = session_.database.get();
  // A name in double quotes that is not a column must never be taken for a text.
  sqlite3_db_config(handle, SQLITE_DBCONFIG_DQS_DML, 0, nullptr);
  sqlite3_db_config(handle, SQLITE_DBCONFIG_DQS_DDL, 0, nullptr);
  // A file may come from anywhere: what stands in its schema calls harmless functions only.
  sqlite3_db_config(handle, SQLITE_DBCONFIG_TRUSTED_SCHEMA, 0, nullptr);
  registerFunctions(handle, session_.runtime);
  if (!settings.readOnly) {
    session_.database.execute("PRAGMA journal_mode = WAL");
  }
  // FULL: a commit that has been reported survives a power cut. SQLite checks foreign keys only
  // where a connection asks for it. Temporary tables are the table variables.
  session_.database.execute(
      "PRAGMA synchronous = FULL; PRAGMA foreign_keys = ON; PRAGMA temp_store = MEMORY");
  if (!options_.optimizer) {
    constexpr unsigned kAllOptimizations = 0xFFFFFFFF;
    sqlite3_test_control(SQLITE_TESTCTRL_OPTIMIZATIONS, handle, kAllOptimizations);
  }
  sqlite3_progress_handler(
      handle, kStepsBetweenClockReadings,
      [](void* limit) { return static_cast<TimeLimit*>(limit)->isOver() ? 1 : 0; },
      &session_.timeLimit);
  // Asked before every change, so it is prepared once.
  catalogueVersion_ = session_.database.prepare("PRAGMA user_version");
}

// ---------------------------------------------------------------- catalogue

void Engine::reloadCatalogue() {
  forgetPlans();
  CatalogueStore(session_.database).load(session_.catalogue);
  knownVersion_ = catalogueVersion_.step() ? catalogueVersion_.integer(0) : 0;
  catalogueVersion_.reset();
  session_.schemaUncertain = false;
}

void Engine::refreshCatalogue() {
  if (isStale()) {
    reloadCatalogue();
  }
  session_.schemaUncertain = false;
}

void Engine::definitionsChanged() {
  forgetPlans();
  // The connection's own change must not look like another's.
  knownVersion_ = catalogueVersion_.step() ? catalogueVersion_.integer(0) : 0;
  catalogueVersion_.reset();
  definedInTransaction_ = definedInTransaction_ || inTransaction();
}

void Engine::forgetPlans() {
  cache_.clear();
  procedures_.clear();
}

// ---------------------------------------------------------------- running

template <typename Action>
auto Engine::translated(Action action) {
  session_.timeLimit.restart();
  session_.runtime.failure.reset();
  try {
    if (session_.schemaUncertain) {
      refreshCatalogue();
    }
    return action();
  } catch (const SqliteFailure& failure) {
    throw translate(failure);
  }
}

std::shared_ptr<Plan> Engine::planFor(std::string_view text) {
  tsql::scanShape(text, shape_);
  const bool inside =
      !options_.planCache || !shape_.cacheable || shape_.literals.size() > kMostBoundLiterals;
  if (!inside) {
    if (auto plan = cache_.find(shape_)) {
      checkConstants(shape_);
      return plan;
    }
  }
  refreshCatalogue();
  auto plan = compiler().compileBatch(std::string(text), inside);
  // The scanner knows no grammar. Where it counts other constants than the parser, their numbers do
  // not match, and the constants become part of the text.
  if (!inside && plan->tree->literalCount != shape_.literals.size()) {
    plan = compiler().compileBatch(std::string(text), true);
  } else {
    checkConstants(shape_);
  }
  // A rollback takes temporary tables back, too, and the plans that use them would be left without.
  definedInTransaction_ = definedInTransaction_ || (plan->makesTempTables && inTransaction());
  if (!plan->constantsInside) {
    // Constants that the parser has built into the tree (the length of a type, an alias in quotes).
    for (const std::size_t ordinal : plan->tree->structuralLiterals) {
      plan->guards.push_back(
          {Guard::Kind::SameText, ordinal, {}, literalText(shape_.literals[ordinal])});
    }
    cache_.add(shape_, plan);
  }
  return plan;
}

/// Whether another connection has changed the schema since it was read.
bool Engine::isStale() {
  const std::int64_t version = catalogueVersion_.step() ? catalogueVersion_.integer(0) : 0;
  catalogueVersion_.reset();
  return version != knownVersion_;
}

/// Runs a text by its plan. A plan that another connection has taken the ground from is made anew:
/// a change is checked before it runs, a query by what SQLite noticed while it ran.
ExecutionResult Engine::runText(std::string_view text, const std::vector<Variant>* parameters) {
  std::shared_ptr<Plan> plan = planFor(text);
  const std::size_t markers = parameters == nullptr ? 0 : parameters->size();
  if (plan->tree->markerCount != markers) {
    throw SqlError(0, "Il testo ha " + std::to_string(plan->tree->markerCount) +
                          " marcatori ?, i valori sono " + std::to_string(markers) + ".");
  }
  const auto& statements = plan->tree->statements;
  // A transaction that SQLite has undone can still be ended.
  const bool endsTransaction =
      !statements.empty() &&
      std::holds_alternative<tsql::TransactionStatement>(statements.front()->node);
  if (!endsTransaction) {
    requireTransaction();
  }
  // Inside a transaction the write lock, taken at its beginning, keeps everybody else from changing
  // the schema.
  if (plan->changesData && !inTransaction() && isStale()) {
    reloadCatalogue();
    plan = planFor(text);
  }
  if (plan->changesData || inTransaction()) {
    return runPlan(*plan, parameters);
  }
  try {
    ExecutionResult result = runPlan(*plan, parameters);
    if (!session_.schemaUncertain || !isStale()) {
      return result;
    }
  } catch (const SqliteFailure&) {
    // SQLite prepares a statement anew when the schema has changed, and fails where a table is
    // gone.
    if (session_.runtime.failure || !isStale()) {
      throw;
    }
  }
  reloadCatalogue();
  return runPlan(*planFor(text), parameters);
}

ExecutionResult Engine::runPlan(Plan& plan, const std::vector<Variant>* parameters) {
  ExecutionResult result;
  BatchRunner runner(surroundings(), plan, result);
  runner.setConstants(&shape_);
  runner.setParameters(parameters);
  runner.run();
  return result;
}

ExecutionResult Engine::run(std::string_view text) {
  return translated([&] { return runText(text, nullptr); });
}

ExecutionResult Engine::run(std::string_view text, const std::vector<Variant>& parameters) {
  return translated([&] { return runText(text, &parameters); });
}

std::shared_ptr<const Routine> Engine::findProcedure(std::string_view name) {
  return translated([&] {
    requireTransaction();
    refreshCatalogue();
    std::string_view bare = trim(name);
    if (foldCase(bare.substr(0, 4)) == "dbo.") {
      bare.remove_prefix(4);
    }
    if (bare.size() >= 2 && bare.front() == '[' && bare.back() == ']') {
      bare = bare.substr(1, bare.size() - 2);
    }
    auto routine = session_.catalogue.findRoutine(bare);
    if (!routine || routine->isFunction) {
      throw SqlError(2812, "Could not find stored procedure '" + std::string(name) + "'.");
    }
    return routine;
  });
}

std::shared_ptr<Plan> Engine::planOf(const Routine& routine) {
  const std::string folded = foldCase(routine.name);
  const auto found = procedures_.find(folded);
  if (found != procedures_.end()) {
    return found->second;
  }
  auto plan = compiler().compileProcedure(routine);
  definedInTransaction_ = definedInTransaction_ || (plan->makesTempTables && inTransaction());
  procedures_[folded] = plan;
  return plan;
}

Node Engine::compileDeferred(Plan& plan, const tsql::Statement& statement) {
  return compiler().compileDeferred(plan, statement);
}

void Engine::checkRoutine(const Routine& routine) { compiler().checkRoutine(routine); }

ExecutionResult Engine::call(const Routine& routine, std::vector<Variant>& values) {
  return translated([&] {
    requireTransaction();
    if (!inTransaction()) {
      refreshCatalogue();
    }
    // The procedure may have been dropped or made anew since its parameters were asked for.
    const auto current = session_.catalogue.findRoutine(routine.name);
    if (!current || current->isFunction) {
      throw SqlError(2812, "Could not find stored procedure '" + routine.name + "'.");
    }
    if (current->source != routine.source) {
      throw SqlError(
          0, "La procedura '" + routine.name + "' è cambiata: i parametri vanno chiesti di nuovo.");
    }
    ExecutionResult result;
    const std::shared_ptr<Plan> plan = planOf(*current);
    BatchRunner runner(surroundings(), *plan, result);
    std::vector<std::optional<Value>> arguments(values.size());
    for (std::size_t i = 0; i < values.size(); ++i) {
      // Empty: not given, so the default counts.
      if (!values[i].isEmpty()) {
        arguments[i] = valueFromVariant(values[i], routine.parameters[i].type, Conversion::Cut);
      }
    }
    runner.runProcedure(routine, arguments);
    for (std::size_t i = 0; i < values.size(); ++i) {
      if (routine.parameters[i].output) {
        values[i] = variantFromValue(runner.variables()[i], routine.parameters[i].type);
      }
    }
    return result;
  });
}

std::vector<std::string> Engine::definitions() {
  return translated([&] { return CatalogueStore(session_.database).definitions(); });
}

// ---------------------------------------------------------------- transactions

void Engine::requireTransaction() const {
  if (isTransactionLost()) {
    throw SqlError(
        3930,
        "La transazione è già stata annullata dal motore dopo un errore: va chiusa prima "
        "di altre istruzioni.");
  }
}

void Engine::begin() {
  if (begun_) {
    throw SqlError(0, "Cannot start more transactions on this session.");
  }
  translated([&] {
    const bool readOnly = sqlite3_db_readonly(session_.database.get(), "main") == 1;
    // Taking the lock for writing now saves a transaction from being refused half-way.
    session_.database.execute(readOnly ? "BEGIN" : "BEGIN IMMEDIATE");
    // Behind BEGIN: from here on the schema stays what it is.
    begun_ = true;
    definedInTransaction_ = false;
    refreshCatalogue();
  });
}

void Engine::commit() {
  if (!inTransaction()) {
    throw SqlError(3902, "The COMMIT TRANSACTION request has no corresponding BEGIN TRANSACTION.");
  }
  translated([&] {
    session_.database.execute("COMMIT");
    begun_ = false;
    definedInTransaction_ = false;
  });
}

void Engine::rollback() {
  if (!begun_) {
    throw SqlError(3903,
                   "The ROLLBACK TRANSACTION request has no corresponding BEGIN TRANSACTION.");
  }
  translated([&] {
    // SQLite may have undone it by itself.
    if (inTransaction()) {
      session_.database.execute("ROLLBACK");
    }
    begun_ = false;
    if (definedInTransaction_) {
      definedInTransaction_ = false;
      reloadCatalogue();
    }
  });
}

// ---------------------------------------------------------------- failures

SqlError Engine::translate(const SqliteFailure& failure) const {
  // SQLite reports that a function failed; why it did is kept here.
  if (session_.runtime.failure) {
    return *session_.runtime.failure;
  }
  const std::string file = "\"" + path_ + "\"";
  constexpr int kPrimaryCode = 0xFF;
  switch (failure.code & kPrimaryCode) {
    case SQLITE_BUSY:
    case SQLITE_LOCKED:
      return {1222, "Lock request time out period exceeded. Il database " + file +
                        " è occupato da un altro processo."};
    case SQLITE_READONLY:
      return {3906, "Failed to update database \"" + session_.databaseName +
                        "\" because the database is read-only."};
    case SQLITE_NOTADB:
      return {4060, "Il file " + file + " non è un database."};
    case SQLITE_CANTOPEN:
      return {4060, "Il database " + file + " non si può aprire: " + failure.message + "."};
    case SQLITE_CORRUPT:
      return {824, "Il database " + file + " è danneggiato: " + failure.message + "."};
    case SQLITE_FULL:
      return {1105, "Spazio esaurito nel database " + file + "."};
    case SQLITE_IOERR:
      return {823,
              "Errore di lettura o scrittura del database " + file + ": " + failure.message + "."};
    case SQLITE_INTERRUPT:
      // A time-out is noticed by clients, not by the server, which has no number for it.
      return {-2, "Query timeout expired"};
    case SQLITE_NOMEM:
      return {701, "There is insufficient system memory to run this query."};
    case SQLITE_TOOBIG:
      return {8152, "String or binary data would be truncated."};
    default:
      break;
  }
  // SQLite has no codes for its limits (depth of an expression, columns, tables of a join): only
  // the messages name them.
  for (const std::string_view limit : {"too large", "too many", "overflow", "at most", "too big"}) {
    if (failure.message.find(limit) != std::string::npos) {
      return {8623,
              "The query processor ran out of internal resources and could not produce a "
              "query plan. (" +
                  failure.message + ")"};
    }
  }
  return {0, "Errore interno del motore: " + failure.message};
}

}  // namespace azcoll::embedded
