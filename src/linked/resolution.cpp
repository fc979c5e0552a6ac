#include <optional>

#include "component/service.h"
#include "component/values.h"
#include "data/error.h"
#include "data/text.h"

namespace azcoll {
namespace {

constexpr std::int16_t flag(bool value) { return value ? 1 : 0; }

}  // namespace

/// The command for the stored procedure that knows the group, with its parameters set.
std::shared_ptr<Command> CLSCO_AZIENDECOLL::comandoDitteCollegate(const FiltriGruppo& filtri) {
  const std::optional<Date> start = dayOf(annoDellaChiamata(true), 1, 1);
  if (!start) {
    throw Error("Anno di riferimento non valido");
  }
  std::shared_ptr<Command> command = connessione().newCommand();
  command->setActiveConnection(input().Connessione);
  command->setCommandText("PC_GetDitteCollegate");
  command->setCommandType(CommandOption::StoredProcedure);
  command->setCommandTimeout(0);
  command->setPrepared(true);
  Parameters& parameters = command->parameters();
  parameters.item("@CodiceDitta").setValue(input().Pvar_Ditta);
  parameters.item("@DataInizioElaborazione").setValue(*start);
  parameters.item("@GestioneDuplicazioneCliFor").setValue(ValoreGestioneDuplicazioneCliFor());
  parameters.item("@EscludiDittaPrincipale").setValue(flag(filtri.escludiPrincipale));
  parameters.item("@EscludiDittaCorrente").setValue(flag(filtri.escludiCorrente));
  parameters.item("@TipoCF").setValue(filtri.tipoCF);
  parameters.item("@CodIntermedio").setValue(filtri.codIntermedio);
  parameters.item("@CodSede").setValue(filtri.codSede);
  return command;
}

std::string CLSCO_AZIENDECOLL::GetDittaPrincipale() noexcept {
  std::string principale;
  // Callers rely on it: a failure is no failure here, it means that no main company is known.
  ignoreErrors([&] {
    if (!InizializzaMetodo(Connect::Yes)) {
      return;
    }
    std::shared_ptr<Recordset> rows;
    leggiGruppo({}, rows);
    rows->setActiveConnection(nullptr);
    rows->find("PRINCIPALE = 1", 0, SearchDirection::Forward, Bookmark::First);
    if (!rows->atEnd()) {
      Fields& row = rows->fields();
      output().IndTipoCont = ValoreDefault(row.item("CG86_INDTIPOCONT").value(), std::int16_t{0});
      principale = testo(row.item("DITTA").value());
    }
  });
  return principale;
}

/// The companies to receive reduced copies: all of the group but the main and the current one.
/// Returns their list; the procedure's recordset goes to `ditte`, connected and open. A failure is
/// swallowed and leaves the list empty.
std::string CLSCO_AZIENDECOLL::LeggiDitteCollegate(std::shared_ptr<Recordset>& ditte) noexcept {
  std::string elenco;
  ignoreErrors([&] {
    if (!InizializzaMetodo(Connect::Yes)) {
      return;
    }
    const std::shared_ptr<Command> command =
        comandoDitteCollegate({.escludiPrincipale = true, .escludiCorrente = true});
    std::int64_t affected = 0;
    ditte = command->execute(affected, CommandOption::StoredProcedure);
    elenco = join(command->parameters().item("@DitteCollegate").value());
    command->setActiveConnection(nullptr);
  });
  return elenco;
}

void CLSCO_AZIENDECOLL::ControllaDittaPrincipale() noexcept {
  metodo(" in ControllaDittaPrincipale", [this] {
    static_cast<void>(annoDellaChiamata(true));  // the look-up would only answer that it knows none
    const std::string principale = GetDittaPrincipale();
    output().Gbol_DittaPrincipale =
        principale == join(ValoreDefault(input().Pvar_Ditta, std::int16_t{-1}));
  });
}

void CLSCO_AZIENDECOLL::ControllaDittaCollegata() noexcept {
  metodo(" in ControllaDittaCollegata", [this] {
    const std::string company = join(input().Pvar_Ditta);
    const std::shared_ptr<Recordset> links = apriRecordset(
        join("SELECT * FROM CG86_AZIENDECOLL",                  //
             " WHERE CG86_INDTIPO = 0",                         //
             " AND CG86_DITTA_CG18 <> CG86_DITTACOLL_CG18",     //
             " AND CG86_ANNOIVA = ", annoDellaChiamata(false),  //
             " AND (CG86_DITTA_CG18 = ", company, " OR CG86_DITTACOLL_CG18 = ", company, ")"));
    output().Gbol_DittaPrincipale = links->recordCount() != 0;
    if (output().Gbol_DittaPrincipale) {
      links->moveFirst();
      output().IndTipoCont = links->fields().item("CG86_INDTIPOCONT").value();
      output().Gvar_DittaPrincipale = links->fields().item("CG86_DITTA_CG18").value();
    }
  });
}

}  // namespace azcoll
