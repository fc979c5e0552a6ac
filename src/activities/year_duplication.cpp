// The activity configuration of one VAT year copied onto another.

#include <utility>
#include <vector>

#include "activities/fragments.h"
#include "activities/year_pairing.h"
#include "component/service.h"
#include "component/values.h"
#include "data/tables.h"
#include "data/text.h"

namespace azcoll {
namespace {

using activities::lines;

/// The columns that the copy writes. The letter-of-intent flag is left to the database's default.
std::vector<std::string_view> copiedColumns() {
  std::vector<std::string_view> columns;
  for (const std::string_view column : tables::kActivityColumns) {
    if (column != "CG86_INDCOMLETTINT") {
      columns.push_back(column);
    }
  }
  return columns;
}

/// The rows of the company's configuration in a year.
std::string rowsOfYear(const Variant& company, const Variant& year) {
  return lines(" FROM   CG86_AZIENDECOLL",             //
               " WHERE  CG86_INDTIPO = 0",             //
               join("   AND  CG86_ANNOIVA = ", year),  //
               join("   AND  CG86_DITTA_CG18 = ", company));
}

std::string mainActivitiesOfYear(const Variant& company, const Variant& year,
                                 std::string_view columns) {
  return lines(join(" SELECT ", columns), rowsOfYear(company, year),
               "   AND  CG86_FLGATTIVITAPRINC = 1");
}

std::string flagUpdate(int flag) {
  return lines(" UPDATE CG86_AZIENDECOLL", join("    SET CG86_FLGATTIVITAPRINC = ", flag));
}

/// The row of the lowest activity code becomes the main activity.
std::string lowestCodeUpdate(const Variant& company, const Variant& year) {
  return lines(flagUpdate(1), " FROM   CG86_AZIENDECOLL",
               " WHERE  CG86_IDATTIVITA IN (SELECT TOP 1 CG86_IDATTIVITA",
               "                             FROM   CG86_AZIENDECOLL",
               "                             WHERE  CG86_INDTIPO = 0",
               join("                               AND  CG86_ANNOIVA = ", year),
               join("                               AND  CG86_DITTA_CG18 = ", company),
               "                             ORDER BY CG86_CODATTIVITA)");
}

}  // namespace

void CLSCO_AZIENDECOLL::DuplicaAttività() noexcept {
  // Not `Mbol_TransazioneAperta`: the methods called on the way reset it.
  bool begun = false;
  metodo(
      " in DuplicaAttività", [&] { duplicaAttività(begun); },
      [&] {
        if (begun) {
          connessione().rollbackTrans();
        }
      });
}

/// The work of `DuplicaAttività`; `iniziata` tells whether its transaction is open.
void CLSCO_AZIENDECOLL::duplicaAttività(bool& iniziata) {
  CLSCO_INPUTAZCOLL& in = input();
  const DuplicazioneAnno anni{.ditta = in.Pvar_Ditta,
                              .origine = ValoreDefault(in.AnnoSolareDaDuplicare, std::int16_t{0}),
                              // A year 0 is refused: taken for the current year, it would have
                              // that year's activities replaced.
                              .destinazione = AnnoRiferimento(false)};
  if (rifiutaDuplicazione(anni)) {
    return;
  }
  in.Pbol_AggiungiCampiDecodificheAttività = false;
  output().Grst_AttivitaCollegate = nullptr;
  RecordsetAttivitaCollegate();
  if (!riuscito()) {
    return;  // nothing has been changed yet
  }
  if (isNumber(anni.destinazione, anni.origine.toInt64())) {
    return;  // a year is its own copy; once its rows were deleted there would be nothing to copy
  }
  const std::shared_ptr<Recordset> old = output().Grst_AttivitaCollegate;
  connessione().beginTrans();
  iniziata = true;
  const std::shared_ptr<Recordset> remembered =
      leggi(mainActivitiesOfYear(anni.ditta, anni.destinazione, "*"));
  esegui(lines(flagUpdate(0), rowsOfYear(anni.ditta, anni.destinazione)));
  std::string removal = lines(" DELETE", rowsOfYear(anni.ditta, anni.destinazione));
  if (!mancante(in.CodiceAttività)) {
    removal = lines(removal, join(" AND CG86_CODATTIVITA = ", in.CodiceAttività));
  }
  esegui(removal);
  const bool hadRows = !RecordsetVuoto(old);
  if (hadRows) {
    eliminaAttivitàCollegate(*old, anni);
  }
  // Callers rely on it: when a linked company keeps its activities, the failure is reported and the
  // year is copied all the same.
  esegui(copiaAnno(anni));
  if (riuscito() && hadRows) {
    output().Grst_AttivitaCollegate = nullptr;
    RecordsetAttivitaCollegate();
    if (!RecordsetVuoto(output().Grst_AttivitaCollegate)) {
      activities::carryValues(*old, *output().Grst_AttivitaCollegate, anni.ditta, anni.origine,
                              anni.destinazione);
    }
  }
  ripristinaAttivitàPrincipale(*remembered, anni);
  connessione().commitTrans();
  iniziata = false;
}

/// Whether the call is refused: a year is missing, or the target year holds the other kind of
/// configuration.
bool CLSCO_AZIENDECOLL::rifiutaDuplicazione(const DuplicazioneAnno& anni) {
  const auto refuse = [this](std::string message) {
    Stato = kRefused;
    Errore = std::move(message);
    return true;
  };
  if (!isPositive(anni.origine)) {
    return refuse("Anno solare da duplicare mancante!");
  }
  if (!isPositive(anni.destinazione)) {
    return refuse(join("Anno solare su cui duplicare l'anno ", anni.origine, " mancante!"));
  }
  const bool overSeveral = input().IndProvenienzaMultiAziende;
  const std::string count = lines(" SELECT COUNT(1) AS NUM",                //
                                  " FROM   CG86_AZIENDECOLL WITH(NOLOCK)",  //
                                  " WHERE  CG86_INDTIPO = 0");
  const std::string statement = overSeveral
                                    ? lines(count,                                               //
                                            join("   AND  CG86_DITTACOLL_CG18 = ", anni.ditta),  //
                                            join("   AND  CG86_ANNOIVA = ", anni.destinazione),  //
                                            "   AND  CG86_DITTA_CG18 = CG86_DITTACOLL_CG18")
                                    : lines(count,                                                //
                                            join("   AND ( CG86_DITTACOLL_CG18 = ", anni.ditta),  //
                                            join("         OR CG86_DITTA_CG18 = ", anni.ditta, ")"),
                                            join("   AND CG86_ANNOIVA = ", anni.destinazione),  //
                                            "   AND CG86_DITTA_CG18 <> CG86_DITTACOLL_CG18");
  // The company's own default activity does not stand against links.
  const std::int64_t tolerated = overSeveral ? 1 : 0;
  if (leggi(statement)->fields().item("NUM").value().toInt64() <= tolerated) {
    return false;
  }
  return refuse(join("Impossibile eseguire la duplicazione!", kLineBreak, "L'azienda ", anni.ditta,
                     overSeveral
                         ? " gestisce l'esercizio di multiattività su singola azienda nell'anno "
                         : " gestisce l'esercizio di multiattività su più aziende nell'anno ",
                     anni.destinazione, "."));
}

/// For every linked company of the source year: its own activities give way to the links. The
/// company itself, linked under another one, is left out where they are what is to be copied.
void CLSCO_AZIENDECOLL::eliminaAttivitàCollegate(Recordset& vecchie, const DuplicazioneAnno& anni) {
  const auto value = [&](std::string_view column) { return vecchie.fields().item(column).value(); };
  vecchie.setFilter(join("CG86_ANNOIVA = ", anni.origine));
  for (; !vecchie.atEnd() && riuscito(); vecchie.moveNext()) {
    const Variant linked = value("CG86_DITTACOLL_CG18");
    const bool copied =
        !input().IndProvenienzaMultiAziende && isNumber(anni.ditta, linked.toInt64());
    if (!sameValue(value("CG86_DITTA_CG18"), linked) && !copied) {
      const Borrowed company{input().Pvar_Ditta, linked};
      EliminaAttivitàSingolaCollegamentoMultiAzienda();
    }
  }
}

/// The statement that copies the source year onto the target year.
std::string CLSCO_AZIENDECOLL::copiaAnno(const DuplicazioneAnno& anni) {
  constexpr std::size_t behindYear = 2;
  const CLSCO_INPUTAZCOLL& in = input();
  const std::vector<std::string_view> columns = copiedColumns();
  std::string text =
      lines(join(" INSERT INTO CG86_AZIENDECOLL (", tables::joined(columns), ") ",
                 " SELECT CG86_INDTIPO, ", anni.destinazione, ", ",
                 tables::joined(tables::Names{columns}.subspan(behindYear)),
                 " FROM   CG86_AZIENDECOLL WITH(NOLOCK)"),
            " WHERE  CG86_INDTIPO = 0",                      //
            join("   AND  CG86_ANNOIVA = ", anni.origine),   //
            join("   AND  CG86_DITTA_CG18 = ", anni.ditta),  //
            in.IndProvenienzaMultiAziende ? " AND CG86_DITTA_CG18 <> CG86_DITTACOLL_CG18"
                                          : "   AND CG86_DITTA_CG18 = CG86_DITTACOLL_CG18");
  if (!mancante(in.CodiceAttività)) {
    text = lines(text, join(" AND CG86_CODATTIVITA = ", in.CodiceAttività));
  }
  if (!mancante(in.IdAttività)) {
    text = lines(text, join(" AND CG86_IDATTIVITA = ", in.IdAttività));
  }
  return text;
}

/// Gives the target year its main activity back when the copy left it without one: those that it
/// had, else the one of the lowest code.
void CLSCO_AZIENDECOLL::ripristinaAttivitàPrincipale(Recordset& ricordate,
                                                     const DuplicazioneAnno& anni) {
  const auto hasMainActivity = [&] {
    return isPositive(leggi(mainActivitiesOfYear(anni.ditta, anni.destinazione, "COUNT(1)"))
                          ->fields()
                          .item(std::size_t{0})
                          .value());
  };
  if (hasMainActivity()) {
    return;
  }
  bool tried = false;
  for (; !ricordate.atEnd(); ricordate.moveNext()) {
    const Variant code = ricordate.fields().item("CG86_CODATTIVITA").value();
    if (mancante(code)) {
      continue;  // a link without activity cannot be told by its code
    }
    tried = true;
    esegui(lines(flagUpdate(1), rowsOfYear(anni.ditta, anni.destinazione),
                 join("   AND  CG86_CODATTIVITA = ", code)));
  }
  if (!tried || !hasMainActivity()) {
    esegui(lowestCodeUpdate(anni.ditta, anni.destinazione));
  }
}

}  // namespace azcoll
