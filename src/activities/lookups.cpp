// Which activity applies: by sectional register, by the selection of the input object, and whether
// it exists at all.

#include "activities/lookups.h"

#include "activities/fragments.h"
#include "activities/previous_period.h"
#include "activities/query.h"
#include "component/frame.h"
#include "component/values.h"
#include "data/text.h"
#include "linked/configuration_checks.h"

namespace azcoll::activities {
namespace {

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

void clearActivity(Call& call) {
  CLSCO_OUTPUTAZCOLL& out = call.output();
  out.CodiceAttività = kNull;
  out.DescrAttività = kNull;
  out.IdAttività = kNull;
}

/// Hands out the activity of the first row, when there is one.
void handOutActivity(Call& call, Recordset& rows) {
  if (rows.atEnd()) {
    return;
  }
  Fields& row = rows.fields();
  CLSCO_OUTPUTAZCOLL& out = call.output();
  out.CodiceAttività = row.item("CG86_CODATTIVITA").value();
  out.DescrAttività = call.ValoreDefault(row.item("CG96_DESCRATTIVITA").value(), "");
  out.IdAttività = row.item("CG86_IDATTIVITA").value();
}

}  // namespace

void GetCodiceAttivitàDaSezionale(Call& call) noexcept {
  unpreparedMethod(call, " in GetCodiceAttivitàDaSezionale", [&] {
    clearActivity(call);
    const CLSCO_INPUTAZCOLL& in = call.input();
    if (!in.Connessione) {
      return call.refuse("Non è stata definita la connessione.");
    }
    if (call.isMissing(in.Pvar_Ditta)) {
      return call.refuse("Non è stato definito il codice azienda.");
    }
    if (call.isMissing(in.AnnoSolare)) {
      return call.refuse("Non è stato definito l'anno solare.");
    }
    if (call.isMissing(in.Sezionale)) {
      // Callers rely on it: this message has no full stop.
      return call.refuse("Non è stato definito il codice sezionale");
    }
    const Variant company = in.Pvar_Ditta;  // a seeding that fails may leave another one there
    InserisciAttivitàDaPeriodoPrecedente(call);
    clearActivity(call);
    handOutActivity(call,
                    *call.read(registerStatement(company, in.AnnoSolare,
                                                 FormattaCampo(in.Sezionale, kRegisterCodeWidth))));
  });
}

void GetCodiceAttività(Call& call) noexcept {
  unpreparedMethod(call, " in GetCodiceAttività", [&] {
    clearActivity(call);
    if (!call.InizializzaMetodo(Connect::Yes)) {
      return;
    }
    handOutActivity(
        call, *call.read(lines(" SELECT CG86_CODATTIVITA, CG96_DESCRATTIVITA, CG86_IDATTIVITA",
                               " FROM   CG86_AZIENDECOLL WITH(NOLOCK)",
                               " LEFT OUTER JOIN CG96_ANAGATTIVITA WITH(NOLOCK)",
                               "   ON  CG96_DITTA_CG18 = CG86_DITTACOLL_CG18",
                               "  AND  CG96_CODATTIVITA = CG86_CODATTIVITA",
                               ComponiWhereAttività(call))));
  });
}

bool VerificaEsistenzaAttivita(Call& call) noexcept {
  bool exists = false;
  // Callers rely on it: the message names the method without the accent of its neighbours.
  method(call, " in VerificaEsistenzaAttivita", [&] {
    exists = true;
    if (call.isMissing(call.input().CodiceAttività)) {
      return;
    }
    GetCodiceAttività(call);
    if (!call.isMissing(call.output().CodiceAttività)) {
      return;
    }
    // Callers rely on it: a look-up that failed counts as a missing activity, and is reported in
    // the end whatever came of it.
    const Variant lookup = call.Stato;
    switch (LeggiFlagIvaQuater(call)) {
      case regimes::kOneActivity:
        InserisciAttivitàDaPeriodoPrecedente(call);
        break;
      case regimes::kOverSeveralCompanies:
        exists = linked::ControllaDittaNonCollegata(call);
        break;
      case regimes::kWithinOneCompany:
        exists = linked::ControllaAttivitaNonCollegata(call);
        break;
      default:
        break;
    }
    if (call.succeeded()) {
      call.Stato = lookup;
    }
  });
  return exists;
}

}  // namespace azcoll::activities
