// Which activity applies: by sectional register, by the selection of the input object, and whether
// it exists at all.

#include "activities/fragments.h"
#include "component/service.h"
#include "component/values.h"
#include "data/text.h"

namespace azcoll {
namespace {

using activities::lines;

constexpr std::int16_t kRegisterCodeWidth = 2;

/// The activity of a register: the one that it names, else the first one of its company and year,
/// which only the regimes 0 and 1 have.
std::string registerStatement(const Variant& company, const Variant& year,
                              std::string_view registerCode) {
  return lines(" SELECT CG86_CODATTIVITA, CG96_DESCRATTIVITA, CG86_IDATTIVITA",
               " FROM   CG32_ANADITTAPSEZ WITH (NOLOCK)",
               "    LEFT OUTER JOIN CG86_AZIENDECOLL WITH (NOLOCK)",
               "       ON CG86_IDATTIVITA = CASE WHEN CG32_IDATTIVITA_CG86 IS NOT NULL",
               "                                 THEN CG32_IDATTIVITA_CG86",
               "                                 ELSE ( SELECT TOP 1 A.CG86_IDATTIVITA",
               "                                        FROM CG86_AZIENDECOLL A WITH (NOLOCK)",
               "                                         LEFT OUTER JOIN CG25_ANADITTAGEST"
               " WITH (NOLOCK)",
               "                                           ON CG25_DITTA_CG18 ="
               " A.CG86_DITTACOLL_CG18",
               "                                         WHERE A.CG86_DITTACOLL_CG18 ="
               " CG32_DITTA_CG18",
               "                                          AND A.CG86_ANNOIVA = CG32_ANNO",
               "                                          AND CG25_FLGIVAQUATER IN(0,1)",
               "                                          AND A.CG86_INDTIPO = 0",
               "                                      )", "                            END",
               "   LEFT OUTER JOIN CG96_ANAGATTIVITA WITH(NOLOCK)",
               "      ON CG96_DITTA_CG18 = CG86_DITTACOLL_CG18",
               "     AND CG96_CODATTIVITA = CG86_CODATTIVITA",
               join(" WHERE  CG32_DITTA_CG18 = ", company),  //
               join(" AND    CG32_ANNO = ", year),
               join(" AND    CG32_SEZIONALE = '", registerCode, "'"));
}

}  // namespace

void CLSCO_AZIENDECOLL::azzeraAttività() {
  CLSCO_OUTPUTAZCOLL& out = output();
  out.CodiceAttività = kNull;
  out.DescrAttività = kNull;
  out.IdAttività = kNull;
}

/// Hands out the activity of the first row, when there is one.
void CLSCO_AZIENDECOLL::riportaAttività(Recordset& righe) {
  if (righe.atEnd()) {
    return;
  }
  Fields& row = righe.fields();
  CLSCO_OUTPUTAZCOLL& out = output();
  out.CodiceAttività = row.item("CG86_CODATTIVITA").value();
  out.DescrAttività = ValoreDefault(row.item("CG96_DESCRATTIVITA").value(), "");
  out.IdAttività = row.item("CG86_IDATTIVITA").value();
}

void CLSCO_AZIENDECOLL::GetCodiceAttivitàDaSezionale() noexcept {
  metodoSenzaPreambolo(" in GetCodiceAttivitàDaSezionale", [this] {
    azzeraAttività();
    const CLSCO_INPUTAZCOLL& in = input();
    const auto refuse = [this](std::string_view message) {
      Stato = kRefused;
      Errore = message;
    };
    if (!in.Connessione) {
      return refuse("Non è stata definita la connessione.");
    }
    if (mancante(in.Pvar_Ditta)) {
      return refuse("Non è stato definito il codice azienda.");
    }
    if (mancante(in.AnnoSolare)) {
      return refuse("Non è stato definito l'anno solare.");
    }
    if (mancante(in.Sezionale)) {
      // Callers rely on it: this message has no full stop.
      return refuse("Non è stato definito il codice sezionale");
    }
    const Variant company = in.Pvar_Ditta;  // a seeding that fails may leave another one there
    InserisciAttivitàDaPeriodoPrecedente();
    azzeraAttività();
    riportaAttività(*leggi(registerStatement(company, in.AnnoSolare,
                                             FormattaCampo(in.Sezionale, kRegisterCodeWidth))));
  });
}

void CLSCO_AZIENDECOLL::GetCodiceAttività() noexcept {
  metodoSenzaPreambolo(" in GetCodiceAttività", [this] {
    azzeraAttività();
    if (!InizializzaMetodo(Connect::Yes)) {
      return;
    }
    riportaAttività(*leggi(lines(
        " SELECT CG86_CODATTIVITA, CG96_DESCRATTIVITA, CG86_IDATTIVITA",
        " FROM   CG86_AZIENDECOLL WITH(NOLOCK)", " LEFT OUTER JOIN CG96_ANAGATTIVITA WITH(NOLOCK)",
        "   ON  CG96_DITTA_CG18 = CG86_DITTACOLL_CG18",
        "  AND  CG96_CODATTIVITA = CG86_CODATTIVITA", ComponiWhereAttività("", true))));
  });
}

bool CLSCO_AZIENDECOLL::VerificaEsistenzaAttivita() noexcept {
  bool exists = false;
  // Callers rely on it: the message names the method without the accent of its neighbours.
  metodo(" in VerificaEsistenzaAttivita", [&] {
    exists = true;
    if (mancante(input().CodiceAttività)) {
      return;
    }
    GetCodiceAttività();
    if (!mancante(output().CodiceAttività)) {
      return;
    }
    // Callers rely on it: a look-up that failed counts as a missing activity, and is told in the
    // end whatever came of it.
    const Variant lookup = Stato;
    switch (LeggiFlagIvaQuater()) {
      case regimes::kOneActivity:
        InserisciAttivitàDaPeriodoPrecedente();
        break;
      case regimes::kOverSeveralCompanies:
        exists = ControllaDittaNonCollegata();
        break;
      case regimes::kWithinOneCompany:
        exists = ControllaAttivitaNonCollegata();
        break;
      default:
        break;
    }
    if (riuscito()) {
      Stato = lookup;
    }
  });
  return exists;
}

}  // namespace azcoll
