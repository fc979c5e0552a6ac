#pragma once

#include <cstdint>
#include <map>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "gtest/gtest.h"

#include "data/connection.h"
#include "data/error.h"

/// The databases that the data layer is tried on. A test asks its provider what it can do, never
/// which one it is.
namespace azcoll::test {

/// What not every database can do.
enum class Ability : std::uint8_t {
  ExactDecimals,      ///< keeps every digit of a decimal
  DeclaredTypes,      ///< gives a value the type of its column
  Binary,             ///< has a type for bytes
  Unicode,            ///< takes and gives every character
  SqlStates,          ///< tells the class of a failure
  SeveralResults,     ///< gives a result per query of a batch
  Milliseconds,       ///< keeps them in a moment
  SecondConnection,   ///< another connection sees the same database
  BatchUpdates,       ///< tells what a change of a result needs
  TimeLimits,         ///< gives up a statement that takes too long
  Procedures,         ///< calls stored procedures that give rows
  Outputs,            ///< of a procedure, beside its rows
  TransactionGoesOn,  ///< after a statement that failed
  UndoesByItself      ///< a whole transaction, after some failures
};

/// One database, ready to be connected to.
struct Provider {
  std::string name{};
  std::string absent{};  ///< why it cannot be tried here; empty when it can
  std::string connectionString{};
  std::map<Ability, std::string> lacks{};                   ///< with the reason, a sentence
  std::map<std::string, std::string, std::less<>> words{};  ///< for the `{…}` of `inItsWords`
  std::string createProcedure{};  ///< P1_PROVA, with Codice in, a row DITTA, Testo out
  std::string dropProcedure{};
  std::string parameterMark{};  ///< before the name of a parameter
  std::string slowStatement{};  ///< takes several seconds
};

/// Names of all providers, for INSTANTIATE_TEST_SUITE_P.
[[nodiscard]] std::vector<std::string> providerNames();

/// Names the cases of INSTANTIATE_TEST_SUITE_P after the providers.
[[nodiscard]] inline std::string nameOfCase(const testing::TestParamInfo<std::string>& provider) {
  return provider.param;
}

/// A provider, made ready at the first question (a server is started then).
[[nodiscard]] const Provider& providerNamed(const std::string& name);

/// A test that runs on every provider, on an open connection without tables.
class OnProvider : public testing::TestWithParam<std::string> {
 protected:
  void SetUp() override;
  void TearDown() override;

  [[nodiscard]] const Provider& provider() const { return *provider_; }
  [[nodiscard]] Connection& connection() { return *connection_; }
  [[nodiscard]] std::shared_ptr<Connection> shared() { return connection_; }
  [[nodiscard]] std::shared_ptr<Connection> another() const;

  /// The text with `{datetime}`, `{bit}` … in the words of this database.
  [[nodiscard]] std::string inItsWords(std::string_view text) const;

  std::shared_ptr<Recordset> run(std::string_view text);
  std::int64_t affectedBy(std::string_view text);
  /// First column of the first row.
  Variant value(std::string_view text);
  /// Rows as text, cells parted by `|`.
  std::vector<std::string> lines(std::string_view text);
  /// A batch-optimistic recordset, opened as the component opens its own.
  std::shared_ptr<Recordset> open(std::string_view text);

 private:
  void dropTables();

  const Provider* provider_ = nullptr;
  std::shared_ptr<Connection> connection_;
};

/// Skips the test, with the provider's reason, unless it has the ability.
#define AZCOLL_NEEDS(ability)                                        \
  do {                                                               \
    const auto azcollLack = provider().lacks.find(Ability::ability); \
    if (azcollLack != provider().lacks.end()) {                      \
      GTEST_SKIP() << provider().name << ": " << azcollLack->second; \
    }                                                                \
  } while (false)

/// The error of an operation; fails the test when it succeeds.
template <typename Work>
Error failureOf(const Work& work) {
  try {
    work();
  } catch (const Error& error) {
    return error;
  }
  ADD_FAILURE() << "no error";
  return Error{"no error"};
}

}  // namespace azcoll::test
