// A company whose activities are not configured for the year: found, and asked about.

#include "linked/configuration_checks.h"

#include "component/frame.h"
#include "component/values.h"
#include "data/text.h"
#include "linked/configuration_screens.h"
#include "linked/resolution.h"

namespace azcoll::linked {
namespace {

constexpr std::string_view kTitle = "Richiesta";
constexpr int kYesNoQuestion = 36;  // buttons Yes and No, question icon

/// Counts 1 when the company is in this regime and has no row of the year that satisfies
/// `condition`.
std::string missingCount(int regime, const Variant& company, const Variant& year,
                         std::string_view condition) {
  return join(" SELECT COUNT(1) AS NUM",                                     //
              " FROM   CG25_ANADITTAGEST",                                   //
              " WHERE  CG25_DITTA_CG18 = ", company,                         //
              "    AND CG25_FLGIVAQUATER = ", regime,                        //
              "    AND NOT EXISTS (SELECT 1",                                //
              "                    FROM   CG86_AZIENDECOLL",                 //
              "                    WHERE  CG86_INDTIPO = 0",                 //
              "                       AND CG86_ANNOIVA = ", year,            //
              "                       AND CG86_DITTACOLL_CG18 = ", company,  //
              condition,                                                     //
              "                    )");
}

std::string_view customersOrSuppliers(EnumTipoCF kind) {
  switch (kind) {
    case Cliente:
      return "clienti";
    case Fornitore:
      return "fornitori";
  }
  return "clienti/fornitori";
}

std::string linksQuestion(const CLSCO_INPUTAZCOLL& in, const Variant& year) {
  const std::string warning = in.TipoMsgAziendeColl == MsgProvenienzaPrimaNota
                                  ? std::string{}
                                  : join("Questo potrebbe causare un disallineamento tra i ",
                                         customersOrSuppliers(in.Pint_TipoCF), ".", kLineBreak);
  return join(
      "L'azienda corrente gestisce l'esercizio delle multi attività su più aziende, ma non"
      " esistono collegamenti per l'anno ",
      year, ".", kLineBreak, warning, "Si vuole procedere al collegamento?");
}

/// `activity` is "" when no activity is meant in particular.
std::string activitiesQuestion(std::string_view activity, const Variant& year) {
  return join(
      "L'azienda corrente gestisce l'esercizio delle multi attività su singola azienda, ma"
      " non esiste la configurazione",
      activity.empty() ? std::string{} : join(" dell'attività ", activity), " per l'anno ", year,
      ".", kLineBreak, "Si vuole procedere alla configurazione?");
}

/// Asks, for as long as `count` finds something missing, whether to configure it now, and runs
/// `configure` on a yes. Returns whether nothing is missing in the end. Callers rely on it: a yes
/// that changed nothing leads to the same question again.
template <typename Configure>
bool askToConfigure(Call& call, const std::string& count, const std::string& question,
                    const Configure& configure) {
  while (call.read(count)->fields().item("NUM").value().toInt64() != 0) {
    if (call.platform().messageBox(question, kYesNoQuestion, kTitle) != Answer::Yes) {
      return false;
    }
    configure();
  }
  return true;
}

}  // namespace

bool ControllaDittaNonCollegata(Call& call) noexcept {
  bool configured = false;
  method(call, " in ControllaDittaNonCollegata", [&] {
    const CLSCO_INPUTAZCOLL& in = call.input();
    if (!call.isMissing(in.AnnoSolareDaDuplicare) && !isLinkedIn(call, in.AnnoSolareDaDuplicare)) {
      return;
    }
    const Variant year = call.requiredYear(ZeroYear::IsAYear);
    configured =
        askToConfigure(call, missingCount(regimes::kOverSeveralCompanies, in.Pvar_Ditta, year, ""),
                       linksQuestion(in, year), [&] { configureLinks(call); });
  });
  return configured;
}

bool ControllaAttivitaNonCollegata(Call& call) noexcept {
  bool configured = false;
  method(call, " in ControllaAttivitaNonCollegata", [&] {
    const CLSCO_INPUTAZCOLL& in = call.input();
    const Variant year = call.requiredYear(ZeroYear::IsAYear);
    const std::string activity = call.text(in.CodiceAttività);
    const std::string condition =
        activity.empty() ? std::string{} : join(" AND CG86_CODATTIVITA = ", activity);
    configured = askToConfigure(
        call, missingCount(regimes::kWithinOneCompany, in.Pvar_Ditta, year, condition),
        activitiesQuestion(activity, year), [&] { configureActivities(call); });
  });
  return configured;
}

}  // namespace azcoll::linked
