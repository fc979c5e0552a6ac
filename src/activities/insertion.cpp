// An activity row for the reference year: the default one, or a copy of the latest.

#include "activities/fragments.h"
#include "component/service.h"
#include "component/values.h"
#include "data/tables.h"
#include "data/text.h"

namespace azcoll {
namespace {

using activities::lines;

/// The company's data from which a default activity is made.
std::string companyData() {
  return lines(" FROM   CG25_ANADITTAGEST WITH(NOLOCK)",
               " INNER  JOIN CG18_ANADITTABASE WITH(NOLOCK)",
               "    ON  CG18_DITTA = CG25_DITTA_CG18");
}

/// The registry entry of the default activity, from the company's data and register dates.
std::string registryInsert(std::string_view company, std::string_view code) {
  std::string dates;
  for (const std::string_view date : tables::kRegisterDates) {
    dates += join(dates.empty() ? "" : ", ", "CG30_", date);
  }
  return lines(
      join(" INSERT INTO CG96_ANAGATTIVITA(", tables::joined(tables::kRegistryColumns), ")"),
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
  // Two of the settings stand behind the main-activity flag in the order of the columns.
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
  return lines(
      " IF NOT EXISTS(SELECT 1",                                      //
      "               FROM   CG86_AZIENDECOLL WITH(NOLOCK)",          //
      "               WHERE  CG86_INDTIPO = 0",                       //
      join("                  AND CG86_DITTA_CG18 = ", company),      //
      join("                  AND CG86_DITTACOLL_CG18 = ", company),  //
      join("                  AND CG86_CODATTIVITA = ", code),        //
      join("                  AND CG86_ANNOIVA = ", year),            //
      ")",                                                            //
      " BEGIN",                                                       //
      join(" INSERT INTO CG86_AZIENDECOLL(", tables::joined(tables::kActivityColumns), ")"),
      row,  //
      " END");
}

/// The row with the identity `id`, all values taken over but the year.
std::string copiedRow(const Variant& id, const Variant& year) {
  constexpr std::size_t behindYear = 2;
  return lines(
      join(" SELECT CG86_INDTIPO, ", year, ", ",
           tables::joined(tables::Names{tables::kActivityColumns}.subspan(behindYear)), " "),
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
      join(" INSERT INTO CG86_AZIENDECOLL (", tables::joined(tables::kActivityColumns), ")"),
      row,  //
      " END");
}

}  // namespace

void CLSCO_AZIENDECOLL::InserisciAttività() noexcept {
  metodo(" in InserisciAttività", [this] {
    const std::shared_ptr<Recordset> rows = leggi(join(
        lines(" SELECT *", " FROM   CG86_AZIENDECOLL WITH(NOLOCK)", ComponiWhereAttività("", true)),
        " ORDER BY CG86_ANNOIVA DESC"));
    if (rows->atEnd()) {
      inserisciAttivitàPredefinita();
    } else {
      copiaUltimaAttività(*rows);
    }
  });
}

/// Inserts a row, or hands it out instead when the caller wants to see it first.
void CLSCO_AZIENDECOLL::inserisciOConsegna(std::string_view riga, std::string_view inserimento) {
  if (input().PopolaRecordsetInserimentoAttivitàMultiAzienda) {
    output().Grst_AttivitaCollegate = leggi(riga);
  } else {
    esegui(inserimento);
  }
}

/// Makes the default activity of a company that has none: registry entry, then row.
void CLSCO_AZIENDECOLL::inserisciAttivitàPredefinita() {
  const std::string company = join(input().Pvar_Ditta);
  const std::string code = join(ValoreDefault(input().CodiceAttività, company));
  const Variant year = annoAttività();
  const std::shared_ptr<Recordset> entries =
      leggi(lines(" SELECT COUNT(1) AS NUM",                    //
                  " FROM   CG96_ANAGATTIVITA",                  //
                  join(" WHERE  CG96_DITTA_CG18 = ", company),  //
                  join("   AND  CG96_CODATTIVITA = ", code)));
  if (isNumber(entries->fields().item("NUM").value(), 0)) {
    esegui(registryInsert(company, code));
  }
  const std::string row = defaultRow(company, code, year);
  inserisciOConsegna(row, defaultInsert(company, code, year, row));
}

/// Copies the first of `righe`, the latest year first, into the reference year when that has none.
void CLSCO_AZIENDECOLL::copiaUltimaAttività(Recordset& righe) {
  const auto value = [&](std::string_view column) { return righe.fields().item(column).value(); };
  if (!isPositive(annoAttività())) {
    input().AnnoSolare = value("CG86_ANNOIVA").plusOne();
  }
  const Variant year = annoAttività();
  if (isPositive(year)) {
    righe.setFilter(join("CG86_ANNOIVA = ", year));
    if (!righe.atEnd() && !input().PopolaRecordsetInserimentoAttivitàMultiAzienda) {
      output().CodiceAttività = value("CG86_CODATTIVITA");
      return;
    }
    righe.setFilter("");
  }
  const Variant id = value("CG86_IDATTIVITA");
  const std::string row = copiedRow(id, year);
  inserisciOConsegna(row, copyInsert(id, year, row));
  output().CodiceAttività = value("CG86_CODATTIVITA");
}

}  // namespace azcoll
