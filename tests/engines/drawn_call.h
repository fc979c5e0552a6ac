#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "engines/dice.h"
#include "service/members.h"

namespace azcoll::test {

/// What the caller's own transaction around a call is.
enum class CallerTransaction : std::uint8_t { None, RolledBack, Committed };

/// A call of the service with everything that it can depend on beside the database.
struct DrawnCall {
  const MethodEntry* method = nullptr;
  /// A value for each of `kInputFields`, in order: texts, Booleans and enumerations as such values;
  /// for connection and objects, whether there is one.
  std::vector<Variant> inputs;
  CallerTransaction transaction = CallerTransaction::None;
  int yes = 0;          ///< questions that are answered Yes before the first No
  bool screens = true;  ///< whether the configuration screens can be created

  /// The call as a person reads it, inputs that are not given left out.
  [[nodiscard]] std::string shown() const;
};

/// What a database holds that a call can name.
struct KnownRows {
  struct Customer {
    int company = 0;
    int kind = 0;
    int code = 0;
  };
  std::vector<int> activities{};  ///< identities
  std::vector<Customer> customers{};
};

/// Draws calls. Most make sense on a drawn group; the others have missing, unreadable, or
/// impossible inputs.
class CallDice {
 public:
  explicit CallDice(std::uint32_t seed) : dice_{seed} {}

  /// A call of `method` on a database that holds `rows`.
  [[nodiscard]] DrawnCall call(const MethodEntry& method, const KnownRows& rows);

 private:
  void nameCustomer(DrawnCall& call);
  [[nodiscard]] Variant valueOf(const InputField& field);
  [[nodiscard]] Variant variantOf(std::string_view name);
  [[nodiscard]] Variant company();
  [[nodiscard]] Variant year();
  [[nodiscard]] Variant activityCode();
  [[nodiscard]] Variant small(int limit);
  [[nodiscard]] Variant strange();

  Dice dice_;
  const KnownRows* rows_ = nullptr;
};

/// A value with its kind, so that values of different kinds read differently.
[[nodiscard]] std::string shown(const Variant& value);

}  // namespace azcoll::test
