#include <exception>
#include <utility>

#include "component/service.h"
#include "component/values.h"
#include "data/error.h"
#include "data/text.h"

namespace azcoll {

CLSCO_AZIENDECOLL::CLSCO_AZIENDECOLL() : CLSCO_AZIENDECOLL(defaultPlatform()) {}

CLSCO_AZIENDECOLL::CLSCO_AZIENDECOLL(std::shared_ptr<Platform> platform)
    : CPInput{std::make_shared<CLSCO_INPUTAZCOLL>()},
      CPOutput{std::make_shared<CLSCO_OUTPUTAZCOLL>()},
      platform_{std::move(platform)} {}

CLSCO_AZIENDECOLL::~CLSCO_AZIENDECOLL() {
  if (CPInput && CPInput->Connessione) {
    // A caller may have put a connection of its own in the place of the one opened here.
    if (Mbol_ConnessioneAperta && CPInput->Connessione == opened_.lock()) {
      ignoreErrors([this] { CPInput->Connessione->close(); });
    }
    CPInput->Connessione = nullptr;
  }
}

void CLSCO_AZIENDECOLL::metodo(std::string_view suffix, const Work& work) noexcept {
  metodo(suffix, work, [] {});
}

void CLSCO_AZIENDECOLL::metodo(std::string_view suffix, const Work& work,
                               const Work& onFailure) noexcept {
  try {
    if (InizializzaMetodo(Connect::Yes)) {
      work();
    }
  } catch (...) {
    intrappola(suffix, onFailure);
  }
}

/// The frame of a method that only composes text: no connection is opened, and `Stato` keeps what
/// the call before left in it.
void CLSCO_AZIENDECOLL::metodoTesto(std::string_view suffix, const Work& work) noexcept {
  metodoSenzaPreambolo(suffix, [&] {
    if (InizializzaMetodo(Connect::No)) {
      work();
    }
  });
}

/// The frame of a method that checks its input itself.
void CLSCO_AZIENDECOLL::metodoSenzaPreambolo(std::string_view suffix, const Work& work) noexcept {
  try {
    work();
  } catch (...) {
    intrappola(suffix, [] {});
  }
}

/// Whether the methods called so far ended well.
bool CLSCO_AZIENDECOLL::riuscito() const noexcept { return isNumber(Stato, 0); }

/// The error trap: called inside a catch block, turns the failure into `Stato` 99 and its message.
void CLSCO_AZIENDECOLL::intrappola(std::string_view suffix, const Work& onFailure) noexcept {
  std::string description;
  ignoreErrors([&] { description = currentDescription(); });
  ignoreErrors(onFailure);
  Stato = kTrapped;  // not even a lack of memory may look like a success
  ignoreErrors([&] { Errore = join(description, suffix); });
}

CLSCO_INPUTAZCOLL& CLSCO_AZIENDECOLL::input() const {
  if (!CPInput) {
    throw Error("Oggetto non impostato: CPInput");
  }
  return *CPInput;
}

CLSCO_OUTPUTAZCOLL& CLSCO_AZIENDECOLL::output() const {
  if (!CPOutput) {
    throw Error("Oggetto non impostato: CPOutput");
  }
  return *CPOutput;
}

Connection& CLSCO_AZIENDECOLL::connessione() const {
  if (!input().Connessione) {
    throw Error("Oggetto non impostato: Connessione");
  }
  return *input().Connessione;
}

}  // namespace azcoll
