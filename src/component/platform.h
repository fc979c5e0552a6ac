#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>

#include "data/connection.h"
#include "data/date.h"
#include "data/variant.h"

namespace azcoll {

/// Reads a date from text and gives it in the form that the database statements embed.
class DateConverter {
 public:
  DateConverter() = default;
  DateConverter(const DateConverter&) = delete;
  DateConverter(DateConverter&&) = delete;
  DateConverter& operator=(const DateConverter&) = delete;
  DateConverter& operator=(DateConverter&&) = delete;
  virtual ~DateConverter() = default;

  virtual void setText(std::string_view text) = 0;
  /// 0 when the text is a date.
  [[nodiscard]] virtual int validationResult() const = 0;
  /// The date as a literal's text, without quotes. Meaningful only when it is valid.
  [[nodiscard]] virtual std::string databaseForm() const = 0;
};

/// Records a document number that was used: the suite's document numbering.
///
/// The nine inputs are passed one by one in the order of `Ingresso`, then `ElaboraNumerazione`
/// is called and the status read. Each number has an object of its own.
class NumerazioneDocumenti {
 public:
  NumerazioneDocumenti() = default;
  NumerazioneDocumenti(const NumerazioneDocumenti&) = delete;
  NumerazioneDocumenti(NumerazioneDocumenti&&) = delete;
  NumerazioneDocumenti& operator=(const NumerazioneDocumenti&) = delete;
  NumerazioneDocumenti& operator=(NumerazioneDocumenti&&) = delete;
  virtual ~NumerazioneDocumenti() = default;

  /// The inputs; the names are those of the suite's own numbering object.
  enum class Ingresso : std::uint8_t {
    TipoDocumento,
    Ditta,
    Modo,
    Sezione,
    Anno,
    Data,
    Codice,
    Connessione,
    StringaConnessione
  };
  /// Takes one input; the default keeps it in the field of its name. Throws `Error` when the value
  /// is not of the field's kind.
  virtual void imposta(Ingresso ingresso, const Variant& valore);

  /// `Modo`: a number that is in use already is recorded.
  static constexpr std::int16_t kRecordUsedNumber = 3;

  std::int16_t TipoDocumento = 0;  ///< 901 customer codes, 902 supplier codes
  Variant Ditta;                   ///< company
  std::int16_t Modo = 0;           ///< what to do: `kRecordUsedNumber`
  std::string Sezione;             ///< numbering section, "00" for customer/supplier codes
  std::int16_t Anno = 0;           ///< numbering year, 0 for customer/supplier codes
  Date Data;                       ///< date of the numbering
  Variant Codice;                  ///< the number used
  std::shared_ptr<Connection> Connessione;
  std::string StringaConnessione;

  virtual void ElaboraNumerazione() = 0;
  /// 0 after a success.
  [[nodiscard]] virtual std::int32_t Stato() const = 0;
};

/// An object of the host whose members are set and read by name at run time.
class NamedMembers : public Object {
 public:
  virtual void set(std::string_view member, const Variant& value) = 0;
  [[nodiscard]] virtual Variant get(std::string_view member) = 0;
};

/// Answer of a message box.
enum class Answer : int { Yes = 6, No = 7 };

/// Everything foreign that the service needs, in one place: the services of the platform.
///
/// The defaults suit a program without a person in front of it: dates by the rules of
/// `Date::parse`, document numbering in `CG70_NUMERDOC`, the system clock, every prompt answered
/// No, no objects by ProgID. Only the choice of the database provider has no default here.
class Platform {
 public:
  Platform() = default;
  Platform(const Platform&) = delete;
  Platform(Platform&&) = delete;
  Platform& operator=(const Platform&) = delete;
  Platform& operator=(Platform&&) = delete;
  virtual ~Platform() = default;

  /// A closed connection of the provider that `connectionString` chooses; the caller configures and
  /// opens it. Throws `Error` when no provider takes the string.
  [[nodiscard]] virtual std::shared_ptr<Connection> newConnection(
      std::string_view connectionString) = 0;

  [[nodiscard]] virtual std::unique_ptr<DateConverter> newDateConverter();
  [[nodiscard]] virtual std::unique_ptr<NumerazioneDocumenti> newNumbering();
  [[nodiscard]] virtual Date today();

  /// Asks a question with Yes and No; `style` is the message box style value, lines in `text` are
  /// separated by CR LF.
  [[nodiscard]] virtual Answer messageBox(std::string_view text, int style, std::string_view title);

  /// Creates the object registered under `progId`. Throws `Error` when there is none.
  [[nodiscard]] virtual std::shared_ptr<NamedMembers> createObject(std::string_view progId);

  /// Shows a configuration screen through the caller's framework object and waits until it closes.
  virtual void show(NamedMembers& screen, const std::shared_ptr<Object>& activeInterface);
};

/// The platform of this build, with its database providers.
[[nodiscard]] std::shared_ptr<Platform> defaultPlatform();

}  // namespace azcoll
