// A company whose activities are not configured for the year: found, and asked about.

#include "component/service.h"
#include "component/values.h"
#include "data/text.h"

namespace azcoll {
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

}  // namespace

/// Asks, for as long as `conteggio` finds something missing, whether to configure it now, and runs
/// `configura` on a yes. Returns whether nothing is missing in the end. Callers rely on it: a yes
/// that changed nothing leads to the same question again.
bool CLSCO_AZIENDECOLL::richiediConfigurazione(const std::string& conteggio,
                                               const std::string& domanda, const Work& configura) {
  while (leggi(conteggio)->fields().item("NUM").value().toInt64() != 0) {
    if (platform_->messageBox(domanda, kYesNoQuestion, kTitle) != Answer::Yes) {
      return false;
    }
    configura();
  }
  return true;
}

/// Whether the company takes part in a link of `anno`; a failure counts as no.
bool CLSCO_AZIENDECOLL::collegataNellAnno(const Variant& anno) {
  const Borrowed year{input().AnnoSolare, anno};
  ControllaDittaCollegata();
  return riuscito() && output().Gbol_DittaPrincipale;
}

bool CLSCO_AZIENDECOLL::ControllaDittaNonCollegata() noexcept {
  bool configured = false;
  metodo(" in ControllaDittaNonCollegata", [&] {
    const CLSCO_INPUTAZCOLL& in = input();
    if (!mancante(in.AnnoSolareDaDuplicare) && !collegataNellAnno(in.AnnoSolareDaDuplicare)) {
      return;
    }
    const Variant year = annoDellaChiamata(false);
    configured = richiediConfigurazione(
        missingCount(regimes::kOverSeveralCompanies, in.Pvar_Ditta, year, ""),
        linksQuestion(in, year), [this] { configuraCollegamenti(); });
  });
  return configured;
}

bool CLSCO_AZIENDECOLL::ControllaAttivitaNonCollegata() noexcept {
  bool configured = false;
  metodo(" in ControllaAttivitaNonCollegata", [&] {
    const CLSCO_INPUTAZCOLL& in = input();
    const Variant year = annoDellaChiamata(false);
    const std::string activity = testo(in.CodiceAttività);
    const std::string condition =
        activity.empty() ? std::string{} : join(" AND CG86_CODATTIVITA = ", activity);
    configured = richiediConfigurazione(
        missingCount(regimes::kWithinOneCompany, in.Pvar_Ditta, year, condition),
        activitiesQuestion(activity, year), [this] { configuraAttività(); });
  });
  return configured;
}

}  // namespace azcoll
