#include <cstdlib>

#include "component/service.h"
#include "component/values.h"
#include "data/error.h"
#include "data/text.h"

namespace azcoll {
namespace {

// What the component asks of a connection that it opens itself.
constexpr int kCommandTimeoutSeconds = 100;

}  // namespace

bool CLSCO_AZIENDECOLL::InizializzaMetodo(Connect apri) noexcept {
  Mbol_TransazioneAperta = false;
  ignoreErrors([this] { output().DitteCollegate = ""; });
  if (apri == Connect::Yes) {
    ApriConnessione();
    if (!isNumber(Stato, 0)) {
      return false;
    }
  }
  bool refused = false;
  ignoreErrors([&] {
    if (mancante(input().Pvar_Ditta)) {
      Stato = kRefused;
      Errore = "Codice azienda mancante!";
      refused = true;
    }
  });
  return !refused;
}

void CLSCO_AZIENDECOLL::ApriConnessione() noexcept {
  Stato = std::int16_t{0};
  if (!CPInput || CPInput->Connessione) {
    return;
  }
  CLSCO_INPUTAZCOLL& in = *CPInput;
  if (in.StringaConnessione.empty()) {
    Stato = kRefused;
    ignoreErrors([this] { Errore = "Stringa di connessione mancante!"; });
    return;
  }
  // A connection that does not open is kept all the same: the method's first statement then fails
  // on it and reports under the method's own name.
  ignoreErrors([&] {
    in.Connessione = platform_->newConnection(in.StringaConnessione);
    Mbol_ConnessioneAperta = true;
    opened_ = in.Connessione;
  });
  if (in.Connessione) {
    Connection& connection = *in.Connessione;
    ignoreErrors([&] { connection.setConnectionString(in.StringaConnessione); });
    ignoreErrors([&] { connection.setCommandTimeout(kCommandTimeoutSeconds); });
    ignoreErrors([&] { connection.setCursorLocation(CursorLocation::Client); });
    ignoreErrors([&] { connection.open("", "", CommandOption::Unspecified); });
  }
}

Variant CLSCO_AZIENDECOLL::ValoreDefault(const Variant& valore, const Variant& predefinito) {
  try {
    if (!valore.isNull() && !valore.isEmpty() && !valore.text().empty()) {
      return valore;
    }
    return predefinito;
  } catch (...) {
    // Callers rely on it: the state tells of the failure, the message stays the previous one.
    Stato = kTrapped;
    return {};
  }
}

bool CLSCO_AZIENDECOLL::mancante(const Variant& valore) {
  const Variant given = ValoreDefault(valore, "");
  return given.isEmpty() || given.text().empty();
}

std::string CLSCO_AZIENDECOLL::testo(const Variant& valore) {
  return join(ValoreDefault(valore, ""));
}

Variant CLSCO_AZIENDECOLL::AnnoRiferimento(bool numerico) noexcept {
  Variant year;
  ignoreErrors([&] {
    const Variant& given = input().AnnoSolare;
    if (!mancante(given) && !(numerico && isNumber(given, 0))) {
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
    year = dated ? input().DataInizioElaborazione.toDate().year : platform_->today().year;
  });
  return year;
}

/// The reference year, for a method that needs one. Throws `Error` when there is none, so that no
/// statement is composed around an empty place.
Variant CLSCO_AZIENDECOLL::annoDellaChiamata(bool numerico) {
  Variant year = AnnoRiferimento(numerico);
  if (year.isEmpty()) {
    throw Error(
        "Anno di riferimento mancante: né AnnoSolare né DataInizioElaborazione danno un anno");
  }
  return year;
}

bool CLSCO_AZIENDECOLL::RecordsetVuoto(const std::shared_ptr<Recordset>& rs) noexcept {
  bool empty = true;
  ignoreErrors([&] { empty = !rs || (rs->atStart() && rs->atEnd()); });
  return empty;
}

Variant CLSCO_AZIENDECOLL::DataDB(const Variant& data) {
  try {
    const std::unique_ptr<DateConverter> converter = platform_->newDateConverter();
    if (!converter) {
      throw Error("Oggetto non impostato: conversione delle date");
    }
    converter->setText(join(data));
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

std::string CLSCO_AZIENDECOLL::FormattaCampo(const Variant& valore,
                                             std::int16_t larghezza) noexcept {
  const std::size_t width = larghezza > 0 ? static_cast<std::size_t>(larghezza) : 0;
  std::string padded;
  ignoreErrors([&] {
    padded.assign(width, ' ');
    const std::string text = join(valore);
    const std::string_view shown = leftCharacters(trim(text), width);
    padded = join(shown, std::string(width - characterCount(shown), ' '));
  });
  return padded;
}

std::int16_t CLSCO_AZIENDECOLL::ValoreGestioneDuplicazioneCliFor() noexcept {
  std::int16_t flag = 0;
  ignoreErrors([&] {
    const Variant& given = input().AttivaGestioneDuplicazioneCliFor;
    if (mancante(given)) {
      flag = Mbol_GestioneDuplicazioneCliFor ? 1 : 0;
    } else {
      flag = Variant{std::abs(std::int64_t{given.toInt16()})}.toInt16();
    }
  });
  return flag;
}

/// Runs a statement that gives rows.
std::shared_ptr<Recordset> CLSCO_AZIENDECOLL::leggi(std::string_view sql) {
  std::int64_t affected = 0;
  std::shared_ptr<Recordset> rows = connessione().execute(sql, affected, CommandOption::Text);
  if (!rows) {
    throw Error("L'istruzione non ha restituito righe");
  }
  return rows;
}

/// Runs a statement that gives no rows.
void CLSCO_AZIENDECOLL::esegui(std::string_view sql) {
  std::int64_t affected = 0;
  connessione().execute(sql, affected, CommandOption::Text);
}

/// Opens a recordset over `sql` that stays navigable for the caller: client-side, keyset,
/// batch-optimistic.
std::shared_ptr<Recordset> CLSCO_AZIENDECOLL::apriRecordset(std::string sql) {
  std::shared_ptr<Recordset> rows;
  apriRecordset(std::move(sql), rows);
  return rows;
}

/// The same in a field of the output object. Callers rely on it: the field holds the new recordset
/// before it is opened, so that after a failure it is not the one of an earlier call.
void CLSCO_AZIENDECOLL::apriRecordset(std::string sql, std::shared_ptr<Recordset>& destinazione) {
  const std::shared_ptr<Recordset> rows = connessione().newRecordset();
  destinazione = rows;
  rows->setActiveConnection(input().Connessione);
  rows->setSource(std::move(sql));
  rows->setCursorLocation(CursorLocation::Client);
  rows->setCursorType(CursorType::Keyset);
  rows->setLockType(LockType::BatchOptimistic);
  rows->open(CursorType::Unspecified, LockType::Unspecified, CommandOption::Text);
}

}  // namespace azcoll
