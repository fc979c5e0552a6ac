// An activity row for the reference year: the default one, or a copy of the latest.

#include "activities/insertion.h"

#include "activities/fragments.h"
#include "activities/query.h"
#include "component/frame.h"
#include "component/values.h"
#include "data/tables.h"
#include "data/text.h"
#include "text/joining.h"

namespace azcoll::activities {
namespace {

/// The company's data from which a default activity is made.
std::string companyData() {
  return lines(" FROM   CG25_ANADITTAGEST WITH(NOLOCK)",
               " INNER  JOIN CG18_ANADITTABASE WITH(NOLOCK)",
               "    ON  CG18_DITTA = CG25_DITTA_CG18");
}

/// The registry entry of the default activity, from the company's data and register dates.
std::string registryInsert(std::string_view company, std::string_view code) {
  const std::string dates = joinAll(tables::kRegisterDates, ", ",
                                    [](std::string_view date) { return join("CG30_", date); });
  return lines(
      join(" INSERT INTO CG96_ANAGATTIVITA(", joinAll(tables::kRegistryColumns, ", "), ")"),
      join(" SELECT CG18_DITTA AS CG96_DITTA_CG18, ", code, " AS CG96_CODATTIVITA,"),
      join("        N'Attività ", code, " (azienda ", company, ")' AS CG96_DESCRATTIVITA,"),
      "        CG18_ATECOCOD_CG6A, CG25_INDCATPART, CG25_FLGIVAEDIT, CG25_INDAGRIC,",
      join("        ", dates), companyData(),
      " LEFT   OUTER JOIN CG30_ANADITTADATE",  //
      "    ON  CG30_DITTA_CG18 = CG18_DITTA",  //
      join(" WHERE  CG18_DITTA = ", company));
}

/// The default activity row, from the company's data.
std::string defaultRow(std::string_view company, std::string_view code, const Variant& year) {
  // Two of the settings come after the main-activity flag in the order of the columns.
  constexpr auto first = tables::kVatSettings.size() - 2;
  std::string settings;
  for (const std::string_view setting : tables::Names{tables::kVatSettings}.first(first)) {
    settings += join("CG25_", setting, " AS CG86_", setting, ", ");
  }
  return lines(join(" SELECT 0 AS CG86_INDTIPO, ", year,
                    " AS CG86_ANNOIVA, 0 AS CG86_INDTIPOCONT, CG18_DITTA AS CG86_DITTA_CG18,"
                    " CG18_DITTA AS CG86_DITTACOLL_CG18,"),
               join(" ", code, " AS CG86_CODATTIVITA,"),
               join("        ", settings,
                    "1 AS CG86_FLGATTIVITAPRINC, CG25_INDIVAACQAGRIC AS CG86_INDIVAACQAGRIC,"
                    " CG25_FLGIVAPER AS CG86_FLGIVAPER, 0 AS CG86_INDCOMLETTINT "),
               " , 30 AS CG86_INDNOITAEXP, NULL AS CG86_DATAININOITAEXP ", companyData(),
               join(" WHERE  CG18_DITTA = ", company));
}

/// Inserts `row` unless the year has the default activity.
std::string defaultInsert(std::string_view company, std::string_view code, const Variant& year,
                          std::string_view row) {
  return lines(" IF NOT EXISTS(SELECT 1",                                      //
               "               FROM   CG86_AZIENDECOLL WITH(NOLOCK)",          //
               "               WHERE  CG86_INDTIPO = 0",                       //
               join("                  AND CG86_DITTA_CG18 = ", company),      //
               join("                  AND CG86_DITTACOLL_CG18 = ", company),  //
               join("                  AND CG86_CODATTIVITA = ", code),        //
               join("                  AND CG86_ANNOIVA = ", year),            //
               ")",                                                            //
               " BEGIN",                                                       //
               join(" INSERT INTO CG86_AZIENDECOLL(", joinAll(tables::kActivityColumns, ", "), ")"),
               row,  //
               " END");
}

/// The row with the identity `id`, all values taken over but the year.
std::string copiedRow(const Variant& id, const Variant& year) {
  constexpr std::size_t behindYear = 2;
  return lines(
      join(" SELECT CG86_INDTIPO, ", year, ", ",
           joinAll(tables::Names{tables::kActivityColumns}.subspan(behindYear), ", "), " "),
      " FROM   CG86_AZIENDECOLL WITH(NOLOCK)",  //
      join(" WHERE  CG86_IDATTIVITA = ", id));
}

/// Inserts `row` unless the year has the activity of the row with the identity `id`.
std::string copyInsert(const Variant& id, const Variant& year, std::string_view row) {
  const auto copied = [&](std::string_view column) {
    return join(column, " = (SELECT TOP 1 ", column,
                " FROM CG86_AZIENDECOLL WITH(NOLOCK) WHERE CG86_IDATTIVITA = ", id, ")");
  };
  return lines(
      " IF NOT EXISTS(SELECT 1",                                      //
      "               FROM   CG86_AZIENDECOLL WITH(NOLOCK)",          //
      join("               WHERE  ", copied("CG86_INDTIPO")),         //
      join("                  AND ", copied("CG86_DITTA_CG18")),      //
      join("                  AND ", copied("CG86_DITTACOLL_CG18")),  //
      join("                  AND ", copied("CG86_CODATTIVITA")),     //
      join("                  AND CG86_ANNOIVA = ", year),            //
      ")",                                                            //
      " BEGIN",                                                       //
      join(" INSERT INTO CG86_AZIENDECOLL (", joinAll(tables::kActivityColumns, ", "), ")"),
      row,  //
      " END");
}

/// Inserts a row, or hands it out instead when the caller wants to see it first.
void insertOrHandOut(Call& call, std::string_view row, std::string_view insert) {
  if (call.input().PopolaRecordsetInserimentoAttivitàMultiAzienda) {
    call.output().Grst_AttivitaCollegate = call.read(row);
  } else {
    call.run(insert);
  }
}

/// Makes the default activity of a company that has none: registry entry, then row.
void insertDefaultActivity(Call& call) {
  const std::string company = join(call.input().Pvar_Ditta);
  const std::string code = join(call.ValoreDefault(call.input().CodiceAttività, company));
  const Variant year = activityYear(call);
  const std::shared_ptr<Recordset> entries =
      call.read(lines(" SELECT COUNT(1) AS NUM",                    //
                      " FROM   CG96_ANAGATTIVITA",                  //
                      join(" WHERE  CG96_DITTA_CG18 = ", company),  //
                      join("   AND  CG96_CODATTIVITA = ", code)));
  if (equalsNumber(entries->fields().item("NUM").value(), 0)) {
    call.run(registryInsert(company, code));
  }
  const std::string row = defaultRow(company, code, year);
  insertOrHandOut(call, row, defaultInsert(company, code, year, row));
}

/// Copies the first of `rows`, the latest year first, into the reference year when that has none.
void copyLatestActivity(Call& call, Recordset& rows) {
  const auto value = [&](std::string_view column) { return rows.fields().item(column).value(); };
  if (!isPositive(activityYear(call))) {
    call.input().AnnoSolare = value("CG86_ANNOIVA").plusOne();
  }
  const Variant year = activityYear(call);
  if (isPositive(year)) {
    rows.setFilter(join("CG86_ANNOIVA = ", year));
    if (!rows.atEnd() && !call.input().PopolaRecordsetInserimentoAttivitàMultiAzienda) {
      call.output().CodiceAttività = value("CG86_CODATTIVITA");
      return;
    }
    rows.setFilter("");
  }
  const Variant id = value("CG86_IDATTIVITA");
  const std::string row = copiedRow(id, year);
  insertOrHandOut(call, row, copyInsert(id, year, row));
  call.output().CodiceAttività = value("CG86_CODATTIVITA");
}

}  // namespace

void InserisciAttività(Call& call) noexcept {
  method(call, " in InserisciAttività", [&] {
    const std::shared_ptr<Recordset> rows = call.read(join(
        lines(" SELECT *", " FROM   CG86_AZIENDECOLL WITH(NOLOCK)", ComponiWhereAttività(call)),
        " ORDER BY CG86_ANNOIVA DESC"));
    if (rows->atEnd()) {
      insertDefaultActivity(call);
    } else {
      copyLatestActivity(call, *rows);
    }
  });
}

}  // namespace azcoll::activities
