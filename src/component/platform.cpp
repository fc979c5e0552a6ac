#include "component/platform.h"

#include <ctime>

#include "component/numerazione_cg70.h"
#include "data/error.h"
#include "data/text.h"
#include "text/trimming.h"

namespace azcoll {
namespace {

class DateOfCalendar final : public DateConverter {
 public:
  void setText(std::string_view text) override { date_ = Date::parse(trim(text)); }
  [[nodiscard]] int validationResult() const override { return date_ ? 0 : 1; }
  [[nodiscard]] std::string databaseForm() const override {
    return date_ ? date_->databaseText() : std::string{};
  }

 private:
  std::optional<Date> date_;
};

}  // namespace

void NumerazioneDocumenti::imposta(Ingresso ingresso, const Variant& valore) {
  switch (ingresso) {
    case Ingresso::TipoDocumento:
      TipoDocumento = valore.toInt16();
      return;
    case Ingresso::Ditta:
      Ditta = valore;
      return;
    case Ingresso::Modo:
      Modo = valore.toInt16();
      return;
    case Ingresso::Sezione:
      Sezione = valore.text();
      return;
    case Ingresso::Anno:
      Anno = valore.toInt16();
      return;
    case Ingresso::Data:
      Data = valore.toDate();
      return;
    case Ingresso::Codice:
      Codice = valore;
      return;
    case Ingresso::Connessione:
      Connessione = std::dynamic_pointer_cast<Connection>(valore.object());
      return;
    case Ingresso::StringaConnessione:
      StringaConnessione = valore.text();
      return;
  }
}

std::unique_ptr<DateConverter> Platform::newDateConverter() {
  return std::make_unique<DateOfCalendar>();
}

std::unique_ptr<NumerazioneDocumenti> Platform::newNumbering() {
  return std::make_unique<NumerazioneCG70>();
}

Date Platform::today() {
  const std::time_t now = std::time(nullptr);
  const std::tm& local = *std::localtime(&now);
  return Date::of(local.tm_year + 1900, local.tm_mon + 1, local.tm_mday).value_or(Date{});
}

Answer Platform::messageBox(std::string_view /*text*/, int /*style*/, std::string_view /*title*/) {
  return Answer::No;
}

std::shared_ptr<NamedMembers> Platform::createObject(std::string_view progId) {
  throw Error(join("Impossibile creare l'oggetto ", progId));
}

void Platform::show(NamedMembers& /*screen*/, const std::shared_ptr<Object>& /*activeInterface*/) {
  throw Error("Questa piattaforma non mostra videate");
}

}  // namespace azcoll
