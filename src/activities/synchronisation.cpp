// The company's VAT data, its activities and their registry entries kept in step.

#include "activities/synchronisation.h"

#include "activities/fragments.h"
#include "activities/insertion.h"
#include "activities/previous_period.h"
#include "activities/query.h"
#include "component/frame.h"
#include "component/values.h"
#include "data/tables.h"
#include "data/text.h"

namespace azcoll::activities {
namespace {

/// Every registry entry of the company takes the company's values.
std::string registryUpdate(const Variant& company) {
  return lines(" UPDATE CG96_ANAGATTIVITA",                       //
               "    SET CG96_CODICE_CG6A = CG18_ATECOCOD_CG6A,",  //
               "        CG96_INDCATPART = CG25_INDCATPART,",      //
               "        CG96_FLGIVAEDIT = CG25_FLGIVAEDIT,",      //
               "        CG96_INDAGRIC = CG25_INDAGRIC",           //
               " FROM   CG96_ANAGATTIVITA WITH(NOLOCK)",          //
               " INNER  JOIN CG25_ANADITTAGEST WITH(NOLOCK)",     //
               "        ON CG96_DITTA_CG18 = CG25_DITTA_CG18",    //
               " INNER  JOIN CG18_ANADITTABASE WITH(NOLOCK)",     //
               "    ON  CG18_DITTA = CG25_DITTA_CG18",            //
               " LEFT   OUTER JOIN CG30_ANADITTADATE",            //
               "    ON  CG30_DITTA_CG18 = CG18_DITTA",            //
               join(" WHERE  CG18_DITTA = ", company));
}

/// The activity rows of `where` take the settings of their company.
std::string activityUpdate(std::string_view where) {
  return lines(
      " UPDATE CG86_AZIENDECOLL",
      join("    SET ", assignments("CG86_", "CG25_", tables::kVatSettings)),
      " FROM   CG86_AZIENDECOLL WITH(NOLOCK)", " INNER  JOIN CG25_ANADITTAGEST WITH(NOLOCK)",
      "        ON CG86_DITTACOLL_CG18 = CG25_DITTA_CG18",
      " INNER  JOIN CG18_ANADITTABASE WITH(NOLOCK)", "    ON  CG18_DITTA = CG25_DITTA_CG18", where);
}

/// The companies of the rows of `where` take the settings of these rows.
std::string companyUpdate(std::string_view where) {
  return lines(
      " UPDATE CG25_ANADITTAGEST",
      join("    SET ", assignments("CG25_", "CG86_", tables::kVatSettings)),
      " FROM   CG25_ANADITTAGEST WITH(NOLOCK)", " INNER  JOIN CG86_AZIENDECOLL WITH(NOLOCK)",
      "        ON CG86_DITTACOLL_CG18 = CG25_DITTA_CG18",
      " INNER  JOIN CG18_ANADITTABASE WITH(NOLOCK)", "    ON  CG18_DITTA = CG25_DITTA_CG18", where);
}

/// The rows of `where` that may write into their company: in regime 2 the main activity only, and
/// none as long as a later year of `company` ("" when not given) has one.
std::string writingRows(std::string_view company, std::string_view where) {
  std::string text = lines(" SELECT *",                                         //
                           " FROM   CG86_AZIENDECOLL AS CG86 WITH(NOLOCK)",     //
                           " INNER  JOIN CG25_ANADITTAGEST WITH(NOLOCK)",       //
                           "        ON CG86_DITTACOLL_CG18 = CG25_DITTA_CG18",  //
                           join("    AND (((SELECT ", mainActivity("CG86")),    //
                           "        ) = 1 AND CG25_FLGIVAQUATER = 2)",          //
                           "        OR CG25_FLGIVAQUATER <> 2)");
  if (!company.empty()) {
    text = lines(text,                                                 //
                 "    AND NOT EXISTS(",                                //
                 " SELECT 1",                                          //
                 " FROM   CG86_AZIENDECOLL AS CG86_2 WITH(NOLOCK)",    //
                 " INNER  JOIN CG25_ANADITTAGEST WITH(NOLOCK)",        //
                 "        ON CG86_DITTACOLL_CG18 = CG25_DITTA_CG18",   //
                 join("    AND ((SELECT ", mainActivity("CG86_2")),    //
                 "        ) = 1 AND CG25_FLGIVAQUATER = 2)",           //
                 "    AND CG86_2.CG86_ANNOIVA > CG86.CG86_ANNOIVA",    //
                 "    AND CG86_2.CG86_INDTIPO = 0",                    //
                 join(" AND CG86_2.CG86_DITTACOLL_CG18 = ", company),  //
                 " )");
  }
  return lines(text, where);
}

/// The registry entries of a company, or the one of `code` when it is given.
std::string registrySelection(const Variant& company, std::string_view code) {
  const std::string where = join(" WHERE  CG96_DITTA_CG18 = ", company);
  return code.empty() ? where : lines(where, join(" AND CG96_CODATTIVITA = ", code));
}

/// Writes the registry entry of the company's main activity of the latest year back into the
/// company; does nothing for any other activity.
std::string registryBatch(const Variant& company, const Variant& code) {
  const std::string entry = lines("WHERE CG96_DITTA_CG18  = @CodAzienda",  //
                                  "AND CG96_CODATTIVITA = @CodAttivita");
  return lines(
      join("DECLARE @CodAzienda   as int = ", company),  //
      join("      , @CodAttivita  as int = ", code),
      "IF (SELECT TOP(1) CG86_CODATTIVITA ",             //
      "    FROM CG86_AZIENDECOLL ",                      //
      "    WHERE CG86_DITTACOLL_CG18 = @CodAzienda ",    //
      "      AND CG86_FLGATTIVITAPRINC = 1 ",            //
      "    ORDER BY CG86_ANNOIVA DESC ",                 //
      "   ) = @CodAttivita ",                            //
      "BEGIN ",                                          //
      "  UPDATE CG25 ",                                  //
      "  SET   CG25_FLGIVAEDIT = CG96_FLGIVAEDIT, ",     //
      "        CG25_INDAGRIC = CG96_INDAGRIC, ",         //
      "        CG25_INDCATPART = CG96_INDCATPART ",      //
      "  FROM  CG25_ANADITTAGEST AS CG25 ",              //
      "INNER JOIN CG96_ANAGATTIVITA WITH(NOLOCK)",       //
      "   ON CG96_DITTA_CG18 = CG25_DITTA_CG18 ",        //
      entry,                                             //
      "  UPDATE CG18 ",                                  //
      "  SET   CG18_ATECOCOD_CG6A = CG96_CODICE_CG6A ",  //
      "  FROM CG18_ANADITTABASE AS CG18 ",               //
      "INNER JOIN CG96_ANAGATTIVITA WITH(NOLOCK)",       //
      "   ON CG96_DITTA_CG18 = CG18_DITTA ",             //
      entry,                                             //
      "UPDATE CG30 ",
      join("  SET   ", assignments("CG30_", "CG96_", tables::kRegisterDates, "        ", " ")),
      "  FROM CG30_ANADITTADATE AS CG30 ",          //
      "INNER JOIN CG96_ANAGATTIVITA WITH(NOLOCK)",  //
      "   ON CG96_DITTA_CG18 = CG30_DITTA_CG18 ",   //
      entry,                                        //
      "END ");
}

}  // namespace

void AggiornaAttività(Call& call) noexcept {
  method(call, " in AggiornaAttività", [&] {
    if (LeggiFlagIvaQuater(call) == regimes::kWithinOneCompany) {
      return;
    }
    const std::string where = ComponiWhereAttività(call);
    const std::shared_ptr<Recordset> rows =
        call.read(lines(" SELECT *",                                    //
                        " FROM   CG86_AZIENDECOLL WITH(NOLOCK)",        //
                        " INNER  JOIN CG25_ANADITTAGEST WITH(NOLOCK)",  //
                        "        ON CG86_DITTACOLL_CG18 = CG25_DITTA_CG18", where));
    if (rows->atEnd()) {
      InserisciAttività(call);
      return;
    }
    call.run(registryUpdate(call.input().Pvar_Ditta));
    call.run(activityUpdate(where));
  });
}

void AggiornaDateRegistriAnagraficaAttività(Call& call) noexcept {
  method(call, " in AggiornaDateRegistriAnagraficaAttività", [&] {
    if (LeggiFlagIvaQuater(call) == regimes::kWithinOneCompany) {
      return;
    }
    const std::string where =
        registrySelection(call.input().Pvar_Ditta, call.text(call.input().CodiceAttività));
    const std::shared_ptr<Recordset> entries =
        call.read(lines(" SELECT *", " FROM   CG96_ANAGATTIVITA WITH(NOLOCK)", where));
    if (entries->atEnd()) {
      InserisciAttività(call);
      return;
    }
    call.run(lines(" UPDATE CG96_ANAGATTIVITA",
                   join("    SET ", assignments("CG96_", "CG30_", tables::kRegisterDates)),
                   " FROM   CG96_ANAGATTIVITA WITH(NOLOCK)",  //
                   " LEFT   OUTER JOIN CG30_ANADITTADATE",    //
                   "    ON  CG30_DITTA_CG18 = CG96_DITTA_CG18", where));
  });
}

void AggiornaDatiGestionaliPerAttività(Call& call) noexcept {
  method(call, " in AggiornaDatiGestionaliPerAttività", [&] {
    const std::string company = call.text(call.input().Pvar_Ditta);
    if (!call.read(writingRows(company, ComponiWhereAttività(call, "CG86.")))->atEnd()) {
      call.run(companyUpdate(ComponiWhereAttività(call)));
    }
  });
}

void AggiornaDatiGestionaliPerAnagraficaAttività(Call& call) noexcept {
  method(call, " in AggiornaDatiGestionaliPerAnagraficaAttività", [&] {
    if (!call.isMissing(call.input().CodiceAttività)) {
      call.run(registryBatch(call.input().Pvar_Ditta, call.input().CodiceAttività));
    }
  });
}

}  // namespace azcoll::activities
