// A year without activities takes over those of the latest year before it.

#include "activities/fragments.h"
#include "component/service.h"
#include "component/values.h"
#include "data/text.h"

namespace azcoll {
namespace {

using activities::groupFilter;
using activities::lines;

/// The rows of the group before `year`, with the select list `columns`.
std::string earlierRows(std::string_view columns, const Variant& year, const Variant& company) {
  return lines(join(" SELECT ", columns),                        //
               " FROM   CG86_AZIENDECOLL AS CG86 WITH(NOLOCK)",  //
               " WHERE  CG86.CG86_INDTIPO = 0",                  //
               join("   AND  CG86.CG86_ANNOIVA < ", year),       //
               groupFilter("CG86", join(company)));
}

/// The rows of `year` of the main companies that have earlier ones.
std::string groupRowsOfYear(const Variant& year, const Variant& company) {
  return lines(
      " SELECT *",                                      //
      " FROM   CG86_AZIENDECOLL AS CG86 WITH(NOLOCK)",  //
      " WHERE  CG86.CG86_INDTIPO = 0",                  //
      join("   AND  CG86.CG86_ANNOIVA = ", year),
      join("   AND  CG86_DITTA_CG18 IN(", earlierRows("CG86_DITTA_CG18", year, company), ")"));
}

}  // namespace

/// The company's regime (`CG25_FLGIVAQUATER`); 0 when it has no VAT management data, and after any
/// failure.
std::int16_t CLSCO_AZIENDECOLL::LeggiFlagIvaQuater() noexcept {
  std::int16_t regime = 0;
  // Callers rely on it: the statements that follow a failure here say what is wrong.
  ignoreErrors([&] {
    const std::shared_ptr<Recordset> data =
        leggi(lines(" SELECT CG25_FLGIVAQUATER",               //
                    " FROM   CG25_ANADITTAGEST WITH(NOLOCK)",  //
                    join(" WHERE  CG25_DITTA_CG18 = ", input().Pvar_Ditta)));
    if (!data->atEnd()) {
      regime = ValoreDefault(data->fields().item("CG25_FLGIVAQUATER").value(), std::int16_t{0})
                   .toInt16();
    }
  });
  return regime;
}

void CLSCO_AZIENDECOLL::InserisciAttivitàDaPeriodoPrecedente() noexcept {
  // Callers rely on it: the message names the insertion.
  metodo(" in InserisciAttività", [this] {
    const CLSCO_INPUTAZCOLL& in = input();
    const bool wanted = in.InserisciAttivitàDaPeriodoPrecedente || LeggiFlagIvaQuater() == 0;
    if (!wanted || !VerificaAnnoIvaEsercizioContabile()) {
      return;
    }
    const Variant year = annoAttività();
    const std::shared_ptr<Recordset> earlier =
        leggi(lines(earlierRows("*", year, in.Pvar_Ditta), " ORDER BY CG86_ANNOIVA DESC"));
    if (earlier->atEnd() || !leggi(groupRowsOfYear(year, in.Pvar_Ditta))->atEnd()) {
      InserisciAttività();
      return;
    }
    riprendiPeriodo(*earlier);
  });
}

/// Inserts into the reference year what the latest year of `righe` has, row by row. The company,
/// the year and the activity of each row are put into the input object for the call.
///
/// Callers rely on it: a row that fails does not keep the others from their turn, and its values
/// stay in the input object together with its state and message; of several, those of the first. A
/// row that cannot even be read ends the work.
void CLSCO_AZIENDECOLL::riprendiPeriodo(Recordset& righe) {
  struct Call {
    Variant company, yearToCopy, activity, state, message;
  };
  CLSCO_INPUTAZCOLL& in = input();
  const auto current = [&] {
    return Call{in.Pvar_Ditta, in.AnnoSolareDaDuplicare, in.CodiceAttività, Stato, Errore};
  };
  Call kept = current();
  bool failed = false;
  const auto value = [&](std::string_view column) { return righe.fields().item(column).value(); };
  righe.setFilter(join("CG86_ANNOIVA = ", value("CG86_ANNOIVA")));
  for (; !righe.atEnd(); righe.moveNext()) {
    in.Pvar_Ditta = value("CG86_DITTACOLL_CG18");
    in.AnnoSolareDaDuplicare = value("CG86_ANNOIVA");
    in.CodiceAttività = value("CG86_CODATTIVITA");
    InserisciAttività();
    if (!failed && !riuscito()) {
      failed = true;
      kept = current();
    }
  }
  in.Pvar_Ditta = kept.company;
  in.AnnoSolareDaDuplicare = kept.yearToCopy;
  in.CodiceAttività = kept.activity;
  if (failed) {
    Stato = kept.state;
    Errore = kept.message;
  }
}

}  // namespace azcoll
