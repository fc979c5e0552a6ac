#include "linked/resolution.h"

#include <optional>

#include "component/frame.h"
#include "component/values.h"
#include "data/error.h"
#include "data/text.h"

namespace azcoll::linked {
namespace {

/// The command for the group of the call's company and year.
std::shared_ptr<Command> groupOfCall(Call& call, const GroupFilter& filter) {
  const std::optional<Date> start = dayOf(call.requiredYear(ZeroYear::IsMissing), 1, 1);
  if (!start) {
    throw Error("Anno di riferimento non valido");
  }
  std::shared_ptr<Command> command =
      groupCommand(call.sharedConnection(), call.input().Pvar_Ditta, *start);
  // Looked up after the first parameters: a value that cannot be read leaves its mark in `Stato`.
  selectCompanies(*command, call.ValoreGestioneDuplicazioneCliFor(), filter);
  return command;
}

}  // namespace

void readGroup(Call& call, const GroupFilter& filter, std::shared_ptr<Recordset>& companies) {
  const std::shared_ptr<Command> command = groupOfCall(call, filter);
  std::int64_t affected = 0;
  companies = command->execute(affected, CommandOption::StoredProcedure);
  command->setActiveConnection(nullptr);
  if (!companies) {
    throw Error("PC_GetDitteCollegate non ha restituito righe");
  }
}

std::string GetDittaPrincipale(Call& call) noexcept {
  std::string main;
  // Callers rely on it: a failure is not reported here, it means that no main company is known.
  ignoreErrors([&] {
    if (!call.InizializzaMetodo(Connect::Yes)) {
      return;
    }
    std::shared_ptr<Recordset> rows;
    readGroup(call, {}, rows);
    rows->setActiveConnection(nullptr);
    rows->find("PRINCIPALE = 1", 0, SearchDirection::Forward, Bookmark::First);
    if (!rows->atEnd()) {
      Fields& row = rows->fields();
      call.output().IndTipoCont =
          call.ValoreDefault(row.item("CG86_INDTIPOCONT").value(), std::int16_t{0});
      main = call.text(row.item("DITTA").value());
    }
  });
  return main;
}

std::string LeggiDitteCollegate(Call& call, std::shared_ptr<Recordset>& companies) noexcept {
  std::string list;
  ignoreErrors([&] {
    if (!call.InizializzaMetodo(Connect::Yes)) {
      return;
    }
    const std::shared_ptr<Command> command =
        groupOfCall(call, {.withoutMain = true, .withoutCurrent = true});
    std::int64_t affected = 0;
    companies = command->execute(affected, CommandOption::StoredProcedure);
    list = join(command->parameters().item("@DitteCollegate").value());
    command->setActiveConnection(nullptr);
  });
  return list;
}

void ControllaDittaPrincipale(Call& call) noexcept {
  method(call, " in ControllaDittaPrincipale", [&] {
    // Without a year the look-up would only answer that it knows no main company.
    static_cast<void>(call.requiredYear(ZeroYear::IsMissing));
    const std::string main = GetDittaPrincipale(call);
    call.output().Gbol_DittaPrincipale =
        main == join(call.ValoreDefault(call.input().Pvar_Ditta, std::int16_t{-1}));
  });
}

void ControllaDittaCollegata(Call& call) noexcept {
  method(call, " in ControllaDittaCollegata", [&] {
    const std::string company = join(call.input().Pvar_Ditta);
    const std::shared_ptr<Recordset> links = call.open(
        join("SELECT * FROM CG86_AZIENDECOLL",                              //
             " WHERE CG86_INDTIPO = 0",                                     //
             " AND CG86_DITTA_CG18 <> CG86_DITTACOLL_CG18",                 //
             " AND CG86_ANNOIVA = ", call.requiredYear(ZeroYear::IsAYear),  //
             " AND (CG86_DITTA_CG18 = ", company, " OR CG86_DITTACOLL_CG18 = ", company, ")"));
    call.output().Gbol_DittaPrincipale = links->recordCount() != 0;
    if (call.output().Gbol_DittaPrincipale) {
      links->moveFirst();
      call.output().IndTipoCont = links->fields().item("CG86_INDTIPOCONT").value();
      call.output().Gvar_DittaPrincipale = links->fields().item("CG86_DITTA_CG18").value();
    }
  });
}

bool isLinkedIn(Call& call, const Variant& year) {
  const Borrowed yearOfCall{call.input().AnnoSolare, year};
  ControllaDittaCollegata(call);
  return call.succeeded() && call.output().Gbol_DittaPrincipale;
}

}  // namespace azcoll::linked
