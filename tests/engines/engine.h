#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "data/tracing.h"
#include "engines/drawn_call.h"
#include "service/service.h"
#include "support/picture.h"

namespace azcoll::test {

class ScriptedUser;

/// What a call did, as lines that read alike on every engine.
struct Observed {
  Lines outcome;     ///< state, message, results, input and output fields, questions, transactions
  Lines operations;  ///< what was asked of the connection, in order, and whether it failed
  Lines tables;      ///< every row of every table after the call
  /// A failure made the engine undo a transaction that the call still believed in.
  bool undone = false;
};

/// An engine with the schema of the suite on it, and a service that works there.
class Engine {
 public:
  /// `native` is open and has the schema.
  explicit Engine(std::shared_ptr<Connection> native);
  Engine(const Engine&) = delete;
  Engine(Engine&&) = delete;
  Engine& operator=(const Engine&) = delete;
  Engine& operator=(Engine&&) = delete;
  ~Engine() = default;

  /// Replaces all rows and begins with a new service.
  void fill(const std::vector<std::string>& statements);
  /// Lets the identity of the next activity row be at least `identity`.
  void skipIdentitiesTo(int identity);
  /// The identity that the next activity row would get; it is used up.
  [[nodiscard]] int useIdentity();
  /// What a call can name here.
  [[nodiscard]] KnownRows knownRows();
  [[nodiscard]] Lines tables();

  [[nodiscard]] Observed call(const DrawnCall& call);

 private:
  void run(const std::string& statement);
  void heard(const TraceEntry& entry);
  void giveInputs(const DrawnCall& call);
  [[nodiscard]] std::string invoke(const MethodEntry& method);
  [[nodiscard]] std::string endTransaction(CallerTransaction transaction);
  void observeService(Lines& lines);
  [[nodiscard]] std::string withoutDatabaseWording(std::string text) const;

  std::shared_ptr<Connection> native_;
  std::shared_ptr<ConnessioneTracciata> connection_;
  std::shared_ptr<ScriptedUser> user_;
  std::shared_ptr<Object> framework_ = std::make_shared<Object>();
  std::unique_ptr<CLSCO_AZIENDECOLL> service_;
  Lines operations_;
  Lines wordings_;  ///< descriptions of all failures of the database since the last `fill`
  bool inTransaction_ = false;
  bool undone_ = false;
};

}  // namespace azcoll::test
