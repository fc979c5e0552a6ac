#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>

#include "component/input.h"
#include "component/output.h"
#include "component/platform.h"
#include "component/session.h"
#include "data/connection.h"
#include "data/recordset.h"
#include "data/variant.h"

namespace azcoll {

/// Whether a method needs the connection.
enum class Connect : bool { No, Yes };

/// What a caller's year 0 means: the year 0, or that no year is given.
enum class ZeroYear : bool { IsAYear, IsMissing };

/// A call of a method, as the families see it: the caller's objects, the outcome, what the service
/// keeps, and what every method does alike. Holds references only; it lives as long as the call.
class Call {
 public:
  Call(std::shared_ptr<CLSCO_INPUTAZCOLL>& input, std::shared_ptr<CLSCO_OUTPUTAZCOLL>& output,
       Variant& stato, Variant& errore, Session& session)
      : Stato{stato}, Errore{errore}, input_{input}, output_{output}, session_{session} {}

  /// The caller's objects as they are now: a caller may put others in their place. Each throws
  /// `Error` when there is none.
  [[nodiscard]] CLSCO_INPUTAZCOLL& input() const;
  [[nodiscard]] CLSCO_OUTPUTAZCOLL& output() const;
  [[nodiscard]] const std::shared_ptr<Connection>& sharedConnection() const;
  [[nodiscard]] Connection& connection() const { return *sharedConnection(); }

  [[nodiscard]] Session& session() const { return session_; }
  [[nodiscard]] Platform& platform() const { return *session_.platform; }

  Variant& Stato;
  Variant& Errore;
  /// Whether the methods called so far ended well.
  [[nodiscard]] bool succeeded() const noexcept;
  /// Ends the call for missing or invalid input: `Stato` 1 and its message.
  void refuse(std::string message);

  /// What every method does first: resets the list of companies, opens the connection when it is
  /// asked to, refuses a call without a company. Returns whether the method goes on.
  bool InizializzaMetodo(Connect connect) noexcept;
  /// Sets `Stato` to 0 and opens a connection by the caller's string where the caller gives none;
  /// `Stato` 1 when the string is missing, too.
  void ApriConnessione() noexcept;

  /// `value`, or `fallback` when it is Null, Empty or "". A value without a text form gives Empty
  /// and `Stato` 99.
  Variant ValoreDefault(const Variant& value, const Variant& fallback);
  /// The year of the call: `AnnoSolare`, else the year of `DataInizioElaborazione`, else today's.
  /// Empty when a start date is given that cannot be read.
  Variant AnnoRiferimento(ZeroYear zero) noexcept;
  /// The same for a method that needs one: throws `Error` when there is none, so that no statement
  /// is composed around an empty place.
  Variant requiredYear(ZeroYear zero);
  /// A date in the form that the database reads; Null when it is not one. A failing conversion
  /// gives Empty, `Stato` 99 and its message.
  Variant DataDB(const Variant& date);
  /// 1 when the look-ups are to answer as the duplication needs it, by the caller's own setting or
  /// else by the session's; 0 after any failure.
  std::int16_t ValoreGestioneDuplicazioneCliFor() noexcept;

  /// Whether nothing is given: Null, Empty, "" or a value without a text form.
  bool isMissing(const Variant& value);
  /// The text of a value; "" when nothing is given.
  std::string text(const Variant& value);

  /// Runs a statement that gives rows. Throws `Error`.
  [[nodiscard]] std::shared_ptr<Recordset> read(std::string_view sql) const;
  /// Runs a statement that gives no rows. Throws `Error`.
  void run(std::string_view sql) const;
  /// Opens a recordset that stays navigable for the caller: client-side, keyset, batch-optimistic.
  /// Throws `Error`.
  [[nodiscard]] std::shared_ptr<Recordset> open(std::string sql) const;
  /// The same in a field of the output object. Callers rely on it: the field holds the new
  /// recordset before it is opened, so that after a failure it is not the one of an earlier call.
  void open(std::string sql, std::shared_ptr<Recordset>& target) const;

 private:
  std::shared_ptr<CLSCO_INPUTAZCOLL>& input_;
  std::shared_ptr<CLSCO_OUTPUTAZCOLL>& output_;
  Session& session_;
};

/// Whether there is no recordset, or one without rows, or one that cannot say.
[[nodiscard]] bool RecordsetVuoto(const std::shared_ptr<Recordset>& rs) noexcept;

/// The text of `value`, without surrounding blanks, cut or filled with blanks to `width`
/// characters.
[[nodiscard]] std::string FormattaCampo(const Variant& value, std::int16_t width) noexcept;

}  // namespace azcoll
