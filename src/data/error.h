#pragma once

#include <cstddef>
#include <exception>
#include <string>
#include <string_view>

namespace azcoll {

/// Everything known about a failure.
struct ErrorInfo {
  std::string description{};     ///< text for people, as the database or this system words it
  std::string sqlState{};        ///< five characters, or empty when not known
  int nativeNumber = 0;          ///< the database's own number, e.g. 2627 for a duplicate key
  std::string source{};          ///< who reports it: a provider's name, or "AZCOLLSRV"
  std::string statement{};       ///< the SQL text that failed, or empty
  bool connectionLost = false;   ///< nothing more can be done on the connection
  bool transactionLost = false;  ///< the database has already undone the open transaction
};

/// The one exception type of the system.
///
/// `fromProvider` says whether the database (or its driver) refused an operation; then, and only
/// then, the connection's `Errors` collection has an entry for it. Every other failure (a value
/// that does not convert, an object that is not set) leaves that collection alone, and the traps of
/// the public methods depend on the difference.
class Error : public std::exception {
 public:
  /// A failure of this system's own, with its Italian description.
  explicit Error(std::string_view description);

  /// A failure reported by a provider. To be thrown where its entry has been recorded: the native
  /// providers do both in `NativeConnection::failWith`.
  static Error provider(ErrorInfo info);

  [[nodiscard]] const char* what() const noexcept override { return info_.description.c_str(); }
  [[nodiscard]] const ErrorInfo& info() const noexcept { return info_; }
  [[nodiscard]] const std::string& description() const noexcept { return info_.description; }
  [[nodiscard]] bool fromProvider() const noexcept { return fromProvider_; }

 private:
  ErrorInfo info_;
  bool fromProvider_ = false;
};

/// The error collection of a connection, as ADO keeps it: filled when one of the provider's
/// operations fails, emptied by `clear` and at the next failure; a success does not empty it.
class Errors {
 public:
  Errors() = default;
  Errors(const Errors&) = delete;
  Errors(Errors&&) = delete;
  Errors& operator=(const Errors&) = delete;
  Errors& operator=(Errors&&) = delete;
  virtual ~Errors() = default;

  [[nodiscard]] virtual std::size_t count() const = 0;
  /// Entry `index` from 0; throws `Error` when there is no such entry.
  [[nodiscard]] virtual ErrorInfo item(std::size_t index) const = 0;
  virtual void clear() = 0;
};

}  // namespace azcoll
