// A year without activities takes over those of the latest year before it.

#include "activities/previous_period.h"

#include "activities/fragments.h"
#include "activities/insertion.h"
#include "activities/query.h"
#include "component/frame.h"
#include "component/values.h"
#include "data/text.h"
#include "linked/accounting_year.h"

namespace azcoll::activities {
namespace {

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

/// Inserts into the reference year what the latest year of `rows` has, row by row. The company,
/// the year and the activity of each row are put into the input object for the call.
///
/// Callers rely on it: a row that fails does not keep the others from their turn, and its values
/// stay in the input object together with its state and message; of several, those of the first. A
/// row that cannot even be read ends the work.
void takeOverPeriod(Call& call, Recordset& rows) {
  struct Values {
    Variant company, yearToCopy, activity, state, message;
  };
  CLSCO_INPUTAZCOLL& in = call.input();
  const auto current = [&] {
    return Values{in.Pvar_Ditta, in.AnnoSolareDaDuplicare, in.CodiceAttività, call.Stato,
                  call.Errore};
  };
  Values kept = current();
  bool failed = false;
  const auto value = [&](std::string_view column) { return rows.fields().item(column).value(); };
  rows.setFilter(join("CG86_ANNOIVA = ", value("CG86_ANNOIVA")));
  for (; !rows.atEnd(); rows.moveNext()) {
    in.Pvar_Ditta = value("CG86_DITTACOLL_CG18");
    in.AnnoSolareDaDuplicare = value("CG86_ANNOIVA");
    in.CodiceAttività = value("CG86_CODATTIVITA");
    InserisciAttività(call);
    if (!failed && !call.succeeded()) {
      failed = true;
      kept = current();
    }
  }
  in.Pvar_Ditta = kept.company;
  in.AnnoSolareDaDuplicare = kept.yearToCopy;
  in.CodiceAttività = kept.activity;
  if (failed) {
    call.Stato = kept.state;
    call.Errore = kept.message;
  }
}

}  // namespace

std::int16_t LeggiFlagIvaQuater(Call& call) noexcept {
  std::int16_t regime = 0;
  // Callers rely on it: the statements that follow a failure here say what is wrong.
  ignoreErrors([&] {
    const std::shared_ptr<Recordset> data =
        call.read(lines(" SELECT CG25_FLGIVAQUATER",               //
                        " FROM   CG25_ANADITTAGEST WITH(NOLOCK)",  //
                        join(" WHERE  CG25_DITTA_CG18 = ", call.input().Pvar_Ditta)));
    if (!data->atEnd()) {
      regime = call.ValoreDefault(data->fields().item("CG25_FLGIVAQUATER").value(), std::int16_t{0})
                   .toInt16();
    }
  });
  return regime;
}

void InserisciAttivitàDaPeriodoPrecedente(Call& call) noexcept {
  // Callers rely on it: the message names the insertion.
  method(call, " in InserisciAttività", [&] {
    const CLSCO_INPUTAZCOLL& in = call.input();
    const bool wanted = in.InserisciAttivitàDaPeriodoPrecedente || LeggiFlagIvaQuater(call) == 0;
    if (!wanted || !linked::VerificaAnnoIvaEsercizioContabile(call)) {
      return;
    }
    const Variant year = activityYear(call);
    const std::shared_ptr<Recordset> earlier =
        call.read(lines(earlierRows("*", year, in.Pvar_Ditta), " ORDER BY CG86_ANNOIVA DESC"));
    if (earlier->atEnd() || !call.read(groupRowsOfYear(year, in.Pvar_Ditta))->atEnd()) {
      InserisciAttività(call);
      return;
    }
    takeOverPeriod(call, *earlier);
  });
}

}  // namespace azcoll::activities
