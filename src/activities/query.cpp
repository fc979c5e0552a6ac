// The activities of a company: the statement that reads them, and its recordset.

#include "activities/query.h"

#include <utility>

#include "activities/fragments.h"
#include "activities/previous_period.h"
#include "component/frame.h"
#include "component/values.h"
#include "data/text.h"

namespace azcoll::activities {
namespace {

/// The decoded columns: suite-wide parameters (a company's own value wins and the column keeps its
/// name), descriptions, management flags of the company.
std::string decodedColumns() {
  return lines(
      "      , CG35.CG35_IVADEBITO,",  //
      "        CG35.CG35_PERCINTIVA,", "        CG35.CG35_FLGINTULTPER,",
      "        ISNULL(CG38.CG38_PERCACCIVA, CG35.CG35_PERCACCIVA) AS CG38_PERCACCIVA,",
      "        ISNULL(CG38.CG38_GGCALACCIVA, CG35.CG35_GGCALACCIVA) AS CG38_GGCALACCIVA,",
      "        ISNULL(CG38.CG38_IMPMINVERSACC, CG35.CG35_IMPMINVERSACC)"
      " AS CG38_IMPMINVERSACC,",
      "        ISNULL(CG38.CG38_PERCFORFIVAEDIT, CG35.CG35_PERCFORFIVAEDIT)"
      " AS CG38_PERCFORFIVAEDIT,",
      "        CG35.CG35_A38BISLIMMIN,", "        CG35.CG35_A38BISMAXCOMP,",
      "        CG35.CG35_MAXCOMPNOVICO,", "        CG35.CG35_MAXCOMPNODICH,",
      "        CG35.CG35_NUMGGCOMPPOST,", "        CG35.CG35_MAXRIMBNOVICO,",
      "        CG16.CG16_RAGSOANAG AS RAGSOCDITTA,",
      "        CG6A.CG6A_DESCRIZ AS DESCRCODATECO2007,",
      "        CG28_A.CG28_DESCR AS DESCRCODIVAPREF,", "        CG28_B.CG28_DESCR AS DESCRCODIVA1,",
      "        CG28_C.CG28_DESCR AS DESCRCODIVA2,", "        CG28_D.CG28_DESCR AS DESCRCODIVA3,",
      "        CG28_E.CG28_DESCR AS DESCRCODIVA4,",
      "        CG25.CG25_FLGIVAQUATER AS CG25_FLGIVAQUATER,",
      "        CG25.CG25_FLGRIEPIVASEP AS CG25_FLGRIEPIVASEP,",
      "        CG25.CG25_FLGSEZ AS CG25_FLGSEZ,",
      "        CG25.CG25_DATAINISEZ AS CG25_DATAINISEZ,",
      "        CG25.CG25_FLGASSIVARIEP AS CG25_FLGASSIVARIEP,",
      "        CG25.CG25_TIPOCONT AS CG25_TIPOCONT,",
      "        CG25.CG25_INDCREDIVAF24 AS CG25_INDCREDIVAF24,",
      "        CG25.CG25_FLGCREDIVAACCF24 AS CG25_FLGCREDIVAACCF24,",
      "        CG25.CG25_FLGR38BIS AS CG25_FLGR38BIS,",
      "        CG25.CG25_FLGMONOFASERSM AS CG25_FLGMONOFASERSM");
}

/// The description of the VAT code in `column`, as the activity's company knows it.
std::string vatCodeJoin(std::string_view column, std::string_view alias) {
  return join("   OUTER APPLY DBO.FNCG28_TABCODIVA(CG86_AZIENDECOLL.", column,
              ", CG96_ANAGATTIVITA.CG96_DITTA_CG18) AS ", alias);
}

std::string decodedJoins() {
  return lines("   INNER JOIN CG18_ANADITTABASE AS CG18 WITH(NOLOCK)",
               "      ON CG18.CG18_DITTA = ISNULL(CG86_AZIENDECOLL.CG86_DITTACOLL_CG18,"
               " CG96_ANAGATTIVITA.CG96_DITTA_CG18)",
               "   CROSS JOIN CG35_PRSDATIPROC AS CG35 WITH(NOLOCK)",
               "   LEFT OUTER JOIN CG38_PARCOGE AS CG38 WITH(NOLOCK)",
               "      ON CG38_DITTA_CG18 = ISNULL(CG86_AZIENDECOLL.CG86_DITTACOLL_CG18,"
               " CG96_ANAGATTIVITA.CG96_DITTA_CG18)",
               "   INNER JOIN CG16_ANAGGEN AS CG16 WITH(NOLOCK)",
               "      ON CG18.CG18_CODICE_CG16 = CG16.CG16_CODICE",
               "   INNER JOIN CG25_ANADITTAGEST AS CG25 WITH(NOLOCK)",
               "      ON CG18.CG18_DITTA = CG25.CG25_DITTA_CG18",
               vatCodeJoin("CG86_CODICE_CG28", "CG28_A"),   //
               vatCodeJoin("CG86_ALQCOR1_CG28", "CG28_B"),  //
               vatCodeJoin("CG86_ALQCOR2_CG28", "CG28_C"),  //
               vatCodeJoin("CG86_ALQCOR3_CG28", "CG28_D"),  //
               vatCodeJoin("CG86_ALQCOR4_CG28", "CG28_E"),
               "   LEFT OUTER JOIN CG6A_TABATECO2007 AS CG6A WITH(NOLOCK)",
               "      ON CG6A.CG6A_CODICE = CG96_ANAGATTIVITA.CG96_CODICE_CG6A");
}

/// The sectional registers of a company with the activity of each: the one that the register names,
/// else the first one of the company and year, which only the regimes 0 and 1 have.
std::string registersStatement(std::string_view company) {
  return lines("SELECT CG32_DITTA_CG18, CG32_ANNO, CG32_SEZIONALE, CG86_CODATTIVITA",
               " FROM   CG32_ANADITTAPSEZ WITH (NOLOCK)",
               "    LEFT OUTER JOIN CG86_AZIENDECOLL WITH (NOLOCK)",
               "       ON CG86_IDATTIVITA = CASE WHEN CG32_IDATTIVITA_CG86 IS NOT NULL",
               "                                 THEN CG32_IDATTIVITA_CG86",
               "                                 ELSE ( SELECT TOP 1 A.CG86_IDATTIVITA",
               "                                        FROM CG86_AZIENDECOLL A WITH (NOLOCK)",
               "                                        LEFT OUTER JOIN CG25_ANADITTAGEST"
               " WITH (NOLOCK)",
               "                                          ON CG25_DITTA_CG18 ="
               " A.CG86_DITTACOLL_CG18",
               "                                        WHERE A.CG86_DITTACOLL_CG18 ="
               " CG32_DITTA_CG18",
               "                                        AND A.CG86_ANNOIVA = CG32_ANNO",
               "                                        AND CG25_FLGIVAQUATER IN(0,1)",
               "                                        AND A.CG86_INDTIPO = 0",
               "                                      )",  //
               "                            END", join(" WHERE  CG32_DITTA_CG18 = ", company),
               " ORDER BY CG32_DITTA_CG18, CG32_ANNO, CG32_SEZIONALE, CG86_CODATTIVITA");
}

/// Select list and source of the activity query, decoded columns included when they are asked for.
std::string selectList(const CLSCO_INPUTAZCOLL& in) {
  const bool registry = in.SelezionaSoloAnagraficheAttività;
  const bool decoded = in.Pbol_AggiungiCampiDecodificheAttività;
  std::string text =
      registry
          ? std::string{" SELECT CG96_ANAGATTIVITA.*"}
          : lines(join(" SELECT ", mainActivity("CG86_AZIENDECOLL"), " AS ATTIVITAPRINCIPALE,"),
                  "        CG86_AZIENDECOLL.*");
  if (decoded) {
    text = lines(text, decodedColumns());
  }
  if (registry) {
    // The join never matches: it is there for the decoded joins, which name the activity row and
    // fall back to the registry's company.
    text = lines(text,  //
                 " FROM   CG96_ANAGATTIVITA AS CG96_ANAGATTIVITA WITH(NOLOCK)",
                 " LEFT  OUTER JOIN CG86_AZIENDECOLL AS CG86_AZIENDECOLL WITH(NOLOCK)",
                 "   ON  0 = 1");
  } else {
    text = lines(text, "      , CG96_ANAGATTIVITA.*",
                 " FROM   CG86_AZIENDECOLL AS CG86_AZIENDECOLL WITH(NOLOCK)",
                 " INNER  JOIN CG96_ANAGATTIVITA AS CG96_ANAGATTIVITA WITH(NOLOCK)",
                 "    ON  CG96_ANAGATTIVITA.CG96_DITTA_CG18 ="
                 " CG86_AZIENDECOLL.CG86_DITTACOLL_CG18",
                 "   AND  CG96_ANAGATTIVITA.CG96_CODATTIVITA ="
                 " CG86_AZIENDECOLL.CG86_CODATTIVITA");
  }
  return decoded ? lines(text, decodedJoins()) : text;
}

/// The conditions of the activity query.
std::string conditions(Call& call) {
  const CLSCO_INPUTAZCOLL& in = call.input();
  const std::string company = join(in.Pvar_Ditta);
  if (in.SelezionaSoloAnagraficheAttività) {
    std::string where = join(" WHERE  CG96_ANAGATTIVITA.CG96_DITTA_CG18 = ", company);
    if (!call.isMissing(in.CodiceAttività)) {
      where = lines(where, join(" AND CG96_ANAGATTIVITA.CG96_CODATTIVITA = ", in.CodiceAttività));
    }
    return where;
  }
  return join(ComponiWhereAttività(
                  call, "CG86_AZIENDECOLL.",
                  in.SelezionaAttivitàSingolaAzienda ? Companies::CurrentOnly : Companies::All),
              in.MultiAziendaEscludiCollegate
                  ? join("   AND  CG86_AZIENDECOLL.CG86_DITTACOLL_CG18 = ", company)
                  : groupFilter("CG86_AZIENDECOLL", company));
}

/// The whole activity query.
std::string activityStatement(Call& call) {
  const CLSCO_INPUTAZCOLL& in = call.input();
  const bool wrapped = !in.StrSelectSQLAttività.empty();
  std::string text = lines(selectList(in), conditions(call));
  if (wrapped) {
    text =
        lines(join(" SELECT ", in.StrSelectSQLAttività, " FROM ("), text, ") AS CG86_AZIENDECOLL");
  }
  if (in.SelezionaSoloAnagraficheAttività) {
    return text;
  }
  // The company's own activities first, the main one before the others.
  return lines(text, join(" ORDER BY CG86_AZIENDECOLL.CG86_ANNOIVA,"
                          " CASE WHEN CG86_AZIENDECOLL.CG86_DITTACOLL_CG18 = ",
                          in.Pvar_Ditta,
                          wrapped ? " THEN CG86_AZIENDECOLL.ATTIVITAPRINCIPALE"
                                  : " THEN CG86_AZIENDECOLL.CG86_FLGATTIVITAPRINC",
                          " ELSE -1 END DESC, CG86_AZIENDECOLL.CG86_CODATTIVITA"));
}

/// Seeds the year, then gives the statement that reads the activities, with the registers' one
/// after it when that is asked for; "" when it cannot be composed.
///
/// Callers rely on it: a seeding that fails is reported, and what is there is read all the same.
std::string textAfterSeeding(Call& call) {
  CLSCO_INPUTAZCOLL& in = call.input();
  const Variant company = in.Pvar_Ditta;
  const Variant yearToCopy = in.AnnoSolareDaDuplicare;
  const Variant activity = in.CodiceAttività;
  InserisciAttivitàDaPeriodoPrecedente(call);
  // A row that failed has left its own values there; the caller asked for others.
  const Borrowed companyOfCall{in.Pvar_Ditta, company};
  const Borrowed yearOfCall{in.AnnoSolareDaDuplicare, yearToCopy};
  const Borrowed activityOfCall{in.CodiceAttività, activity};
  call.output().GstrSQL_AttivitaCollegate.clear();
  StringaSQLAttivitaCollegate(call);
  const std::string& text = call.output().GstrSQL_AttivitaCollegate;
  return text.empty() || !in.Pbol_ValorizzaRecordsetSezionali
             ? text
             : join(text, ";", registersStatement(join(company)));
}

}  // namespace

Variant activityYear(Call& call) { return call.requiredYear(ZeroYear::IsMissing); }

std::string ComponiWhereAttività(Call& call, std::string_view prefix, Companies companies) {
  const CLSCO_INPUTAZCOLL& in = call.input();
  std::string where = join(" WHERE ", prefix, "CG86_INDTIPO = 0", kLineBreak);
  if (companies == Companies::CurrentOnly && !call.isMissing(in.Pvar_Ditta)) {
    where += join(" AND ", prefix, "CG86_DITTACOLL_CG18 = ", in.Pvar_Ditta, kLineBreak);
  }
  if (const Variant year = activityYear(call); isPositive(year)) {
    // Callers rely on it: two years are always named; without one to duplicate the second is 0,
    // which no row has.
    where += join(" AND ", prefix, "CG86_ANNOIVA IN(", year, ", ",
                  call.ValoreDefault(in.AnnoSolareDaDuplicare, std::int16_t{0}), ")", kLineBreak);
  }
  if (!call.isMissing(in.CodiceAttività)) {
    where += join(" AND ", prefix, "CG86_CODATTIVITA = ", in.CodiceAttività, kLineBreak);
  }
  if (!call.isMissing(in.IdAttività)) {
    where += join(" AND ", prefix, "CG86_IDATTIVITA = ", in.IdAttività, kLineBreak);
  }
  if (in.SelezionaAttivitàPrincipale) {
    where += join(" AND ", prefix, "CG86_FLGATTIVITAPRINC = 1", kLineBreak);
  }
  return where;
}

void StringaSQLAttivitaCollegate(Call& call) noexcept {
  textMethod(call, " in StringaSQLAttivitaCollegate",
             [&] { call.output().GstrSQL_AttivitaCollegate = activityStatement(call); });
}

void RecordsetAttivitaCollegate(Call& call) noexcept {
  method(call, " in RecordsetAttivitaCollegate", [&] {
    std::string text = textAfterSeeding(call);
    if (text.empty()) {
      return;  // it could not be composed, and says why
    }
    call.open(std::move(text), call.output().Grst_AttivitaCollegate);
    const std::shared_ptr<Recordset> rows = call.output().Grst_AttivitaCollegate;
    if (call.input().SelezionaSoloAnagraficheAttività || rows->recordCount() == 0) {
      return;
    }
    rows->moveFirst();
    const auto value = [&](std::string_view column) { return rows->fields().item(column).value(); };
    call.output().IndTipoCont = value("CG86_INDTIPOCONT");
    call.output().CodiceAttività = value("CG86_CODATTIVITA");
    call.output().DescrAttività = value("CG96_DESCRATTIVITA");
    call.output().IdAttività = value("CG86_IDATTIVITA");
  });
}

}  // namespace azcoll::activities
