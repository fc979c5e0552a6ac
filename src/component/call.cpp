#include "component/call.h"

#include <cstdlib>
#include <utility>

#include "component/values.h"
#include "data/error.h"
#include "data/text.h"
#include "text/trimming.h"
#include "text/utf8.h"

namespace azcoll {
namespace {

// What the component asks of a connection that it opens itself.
constexpr int kCommandTimeoutSeconds = 100;

}  // namespace

CLSCO_INPUTAZCOLL& Call::input() const {
  if (!input_) {
    throw Error("Oggetto non impostato: CPInput");
  }
  return *input_;
}

CLSCO_OUTPUTAZCOLL& Call::output() const {
  if (!output_) {
    throw Error("Oggetto non impostato: CPOutput");
  }
  return *output_;
}

const std::shared_ptr<Connection>& Call::sharedConnection() const {
  if (!input().Connessione) {
    throw Error("Oggetto non impostato: Connessione");
  }
  return input().Connessione;
}

bool Call::succeeded() const noexcept { return equalsNumber(Stato, 0); }

void Call::refuse(std::string message) {
  Stato = kRefused;
  Errore = std::move(message);
}

bool Call::InizializzaMetodo(Connect connect) noexcept {
  session_.Mbol_TransazioneAperta = false;
  ignoreErrors([this] { output().DitteCollegate = ""; });
  if (connect == Connect::Yes) {
    ApriConnessione();
    if (!equalsNumber(Stato, 0)) {
      return false;
    }
  }
  bool refused = false;
  ignoreErrors([&] {
    if (isMissing(input().Pvar_Ditta)) {
      Stato = kRefused;
      Errore = "Codice azienda mancante!";
      refused = true;
    }
  });
  return !refused;
}

void Call::ApriConnessione() noexcept {
  Stato = std::int16_t{0};
  if (!input_ || input_->Connessione) {
    return;
  }
  CLSCO_INPUTAZCOLL& in = *input_;
  if (in.StringaConnessione.empty()) {
    Stato = kRefused;
    ignoreErrors([this] { Errore = "Stringa di connessione mancante!"; });
    return;
  }
  // A connection that does not open is kept all the same: the method's first statement then fails
  // on it and reports under the method's own name.
  ignoreErrors([&] {
    in.Connessione = platform().newConnection(in.StringaConnessione);
    session_.Mbol_ConnessioneAperta = true;
    session_.opened = in.Connessione;
  });
  if (in.Connessione) {
    Connection& connection = *in.Connessione;
    ignoreErrors([&] { connection.setConnectionString(in.StringaConnessione); });
    ignoreErrors([&] { connection.setCommandTimeout(kCommandTimeoutSeconds); });
    ignoreErrors([&] { connection.setCursorLocation(CursorLocation::Client); });
    ignoreErrors([&] { connection.open("", "", CommandOption::Unspecified); });
  }
}

Variant Call::ValoreDefault(const Variant& value, const Variant& fallback) {
  try {
    if (!value.isNull() && !value.isEmpty() && !value.text().empty()) {
      return value;
    }
    return fallback;
  } catch (...) {
    // Callers rely on it: the state reports the failure, the message stays the previous one.
    Stato = kTrapped;
    return {};
  }
}

bool Call::isMissing(const Variant& value) {
  const Variant given = ValoreDefault(value, "");
  return given.isEmpty() || given.text().empty();
}

std::string Call::text(const Variant& value) { return join(ValoreDefault(value, "")); }

Variant Call::AnnoRiferimento(ZeroYear zero) noexcept {
  Variant year;
  ignoreErrors([&] {
    const Variant& given = input().AnnoSolare;
    if (!isMissing(given) && !(zero == ZeroYear::IsMissing && equalsNumber(given, 0))) {
      year = given;
    }
  });
  if (!year.isEmpty()) {
    return year;
  }
  // Callers rely on it: a start date that is given and cannot be read gives no year. Today's would
  // be a guess, and rows of a year that nobody named would change.
  bool dated = true;
  ignoreErrors([&] {
    const Variant& start = input().DataInizioElaborazione;
    dated = !start.isNull() && !start.isEmpty() && !start.text().empty();
  });
  ignoreErrors([&] {
    year = dated ? input().DataInizioElaborazione.toDate().year : platform().today().year;
  });
  return year;
}

Variant Call::requiredYear(ZeroYear zero) {
  Variant year = AnnoRiferimento(zero);
  if (year.isEmpty()) {
    throw Error(
        "Anno di riferimento mancante: né AnnoSolare né DataInizioElaborazione danno un anno");
  }
  return year;
}

bool RecordsetVuoto(const std::shared_ptr<Recordset>& rs) noexcept {
  bool empty = true;
  ignoreErrors([&] { empty = !rs || (rs->atStart() && rs->atEnd()); });
  return empty;
}

Variant Call::DataDB(const Variant& date) {
  try {
    const std::unique_ptr<DateConverter> converter = platform().newDateConverter();
    if (!converter) {
      throw Error("Oggetto non impostato: conversione delle date");
    }
    converter->setText(join(date));
    if (converter->validationResult() == 0) {
      return converter->databaseForm();
    }
    return kNull;
  } catch (...) {
    Stato = kTrapped;
    Errore = join(currentDescription(), " in DataDB");
    return {};
  }
}

std::string FormattaCampo(const Variant& value, std::int16_t width) noexcept {
  const std::size_t characters = width > 0 ? static_cast<std::size_t>(width) : 0;
  std::string padded;
  ignoreErrors([&] {
    padded.assign(characters, ' ');
    const std::string text = join(value);
    const std::string_view shown = leftCharacters(trim(text), characters);
    padded = join(shown, std::string(characters - characterCount(shown), ' '));
  });
  return padded;
}

std::int16_t Call::ValoreGestioneDuplicazioneCliFor() noexcept {
  std::int16_t flag = 0;
  ignoreErrors([&] {
    const Variant& given = input().AttivaGestioneDuplicazioneCliFor;
    if (isMissing(given)) {
      flag = session_.Mbol_GestioneDuplicazioneCliFor ? 1 : 0;
    } else {
      flag = Variant{std::abs(std::int64_t{given.toInt16()})}.toInt16();
    }
  });
  return flag;
}

std::shared_ptr<Recordset> Call::read(std::string_view sql) const {
  std::int64_t affected = 0;
  std::shared_ptr<Recordset> rows = connection().execute(sql, affected, CommandOption::Text);
  if (!rows) {
    throw Error("L'istruzione non ha restituito righe");
  }
  return rows;
}

void Call::run(std::string_view sql) const {
  std::int64_t affected = 0;
  connection().execute(sql, affected, CommandOption::Text);
}

std::shared_ptr<Recordset> Call::open(std::string sql) const {
  std::shared_ptr<Recordset> rows;
  open(std::move(sql), rows);
  return rows;
}

void Call::open(std::string sql, std::shared_ptr<Recordset>& target) const {
  const std::shared_ptr<Recordset> rows = connection().newRecordset();
  target = rows;
  rows->setActiveConnection(input().Connessione);
  rows->setSource(std::move(sql));
  rows->setCursorLocation(CursorLocation::Client);
  rows->setCursorType(CursorType::Keyset);
  rows->setLockType(LockType::BatchOptimistic);
  rows->open(CursorType::Unspecified, LockType::Unspecified, CommandOption::Text);
}

}  // namespace azcoll
