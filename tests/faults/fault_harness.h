#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <optional>
#include <ostream>
#include <string>
#include <string_view>
#include <vector>

#include "faults/faulty_connection.h"
#include "service/service.h"
#include "support/picture.h"

/// Calls of the service in which every operation fails once, in every way.
namespace azcoll::test {

/// What a call leaves behind.
struct Outcome {
  Variant stato = std::int16_t{0};
  Variant errore;                ///< Empty for "whatever it was before the call"
  bool transactionOpen = false;  ///< left to the owner of the connection
  Lines database;                ///< every row, once a transaction left open was rolled back
  /// How `errore` ends when the words before it are the database's own, which are compared on the
  /// embedded engine alone; empty when all of it is fixed.
  std::string_view fixedEnd{};
  /// The call goes on over a statement that is no valid T-SQL then. A server that undoes the whole
  /// transaction for it takes nothing more: the call is undone as `refused` says, with this end.
  std::string_view endWhenUndone{};
};

/// The call without a fault, to be compared with.
struct Reference {
  Lines before;
  Outcome outcome;
  std::vector<TraceEntry> operations;
  std::vector<Lines>
      states;  ///< the database before each operation; only of `eachStatementCommits`
};

/// One failing operation.
struct Fault {
  std::size_t number = 0;  ///< index into the operations of the reference
  Way way = Way::Provider;
  const TraceEntry& operation;
  std::size_t occurrence = 0;  ///< how many operations of the same name came before

  [[nodiscard]] bool lost() const { return way == Way::LostBefore || way == Way::LostAfter; }
  [[nodiscard]] bool is(std::string_view name, std::string_view text = "") const {
    return operation.operation == name && operation.sql.find(text) != std::string::npos;
  }
};

/// What is documented for a fault where it differs from the rule of the frame; nothing where the
/// rule holds.
using Documented = std::function<std::optional<Outcome>(const Fault&, const Reference&)>;

/// A call to be put through. The rule of the frame that it is held against: `Stato` 99, `Errore`
/// the description followed by `suffix`, the database as before; a transaction stays open when the
/// failure left no entry in `Errors`, and a commit whose answer was lost has been done.
struct FaultScenario {
  std::string name;
  std::string_view suffix;
  std::string prepare;  ///< T-SQL run on the example database before the call; may be empty
  std::function<void(CLSCO_AZIENDECOLL&)> call;  ///< fills the input and calls
  Documented documented = [](const Fault&, const Reference&) { return std::nullopt; };
  /// The call has no transaction of its own: what was done before the failure stays.
  bool eachStatementCommits = false;
  /// Put through on a server, too. Not where all its operations are among those of another
  /// scenario: the ways of the failures are the same, and each costs much more there.
  bool onServer = true;
};

inline void PrintTo(const FaultScenario& scenario, std::ostream* out) { *out << scenario.name; }

/// The name of a parameterised test: the scenario's, its words run together.
[[nodiscard]] std::string testName(const std::string& scenario);

/// Runs the scenario once to count its operations, then once per operation and way, and reports
/// every difference from what is documented as a test failure.
void expectDocumentedOutcomes(const FaultScenario& scenario);

/// The same call when one failure changes nothing but what it says: the reference's outcome.
[[nodiscard]] Outcome asWithoutFault(const Reference& reference);

/// `Stato` 99 with `message`, nothing changed, no transaction left.
[[nodiscard]] Outcome undone(const Reference& reference, std::string message);

/// The same when the database itself refuses a statement, in the words `message`.
[[nodiscard]] Outcome refused(const Reference& reference, std::string_view message,
                              std::string_view suffix);

/// `reference`'s database after the call, without the lines it added for which `left` is true, and
/// with those it removed for which it is true.
[[nodiscard]] Lines databaseWithout(const Reference& reference,
                                    const std::function<bool(const std::string&)>& left);

}  // namespace azcoll::test
