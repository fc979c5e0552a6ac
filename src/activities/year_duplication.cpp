// The activity configuration of one VAT year copied onto another.

#include "activities/year_duplication.h"

#include <memory>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "activities/deletion.h"
#include "activities/fragments.h"
#include "activities/query.h"
#include "activities/year_pairing.h"
#include "component/frame.h"
#include "component/values.h"
#include "data/tables.h"
#include "data/text.h"
#include "text/joining.h"

namespace azcoll::activities {
namespace {

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

/// One duplication of a year: what its steps hand on to each other.
class YearDuplication {
 public:
  /// `begun` says whether its transaction is open, and outlives it.
  YearDuplication(Call& call, bool& begun)
      : call_{call},
        in_{call.input()},
        begun_{begun},
        company_{in_.Pvar_Ditta},
        from_{call.ValoreDefault(in_.AnnoSolareDaDuplicare, std::int16_t{0})},
        // A year 0 is refused: taken for the current year, it would have that year's activities
        // replaced.
        to_{call.AnnoRiferimento(ZeroYear::IsAYear)} {}

  /// The work of `DuplicaAttività`.
  void run();

 private:
  [[nodiscard]] bool refuses();
  [[nodiscard]] bool refusesOtherConfiguration();
  void removeTarget();
  void removeOwnActivitiesOfLinked(Recordset& old);
  [[nodiscard]] std::string copy();
  void carryFields(Recordset& old);
  [[nodiscard]] bool hasMainActivity();
  void restoreMainActivity(Recordset& remembered);

  Call& call_;
  CLSCO_INPUTAZCOLL& in_;
  bool& begun_;
  Variant company_;
  Variant from_;
  Variant to_;
};

void YearDuplication::run() {
  if (refuses()) {
    return;
  }
  in_.Pbol_AggiungiCampiDecodificheAttività = false;
  call_.output().Grst_AttivitaCollegate = nullptr;
  RecordsetAttivitaCollegate(call_);
  if (!call_.succeeded()) {
    return;  // nothing has been changed yet
  }
  if (equalsNumber(to_, from_.toInt64())) {
    return;  // a year is its own copy; once its rows were deleted there would be nothing to copy
  }
  const std::shared_ptr<Recordset> old = call_.output().Grst_AttivitaCollegate;
  call_.connection().beginTrans();
  begun_ = true;
  const std::shared_ptr<Recordset> remembered =
      call_.read(mainActivitiesOfYear(company_, to_, "*"));
  removeTarget();
  const bool hadRows = !RecordsetVuoto(old);
  if (hadRows) {
    removeOwnActivitiesOfLinked(*old);
  }
  // Callers rely on it: when a linked company keeps its activities, the failure is reported and the
  // year is copied all the same.
  call_.run(copy());
  if (call_.succeeded() && hadRows) {
    carryFields(*old);
  }
  restoreMainActivity(*remembered);
  call_.connection().commitTrans();
  begun_ = false;
}

/// Whether the call is refused: a year is missing, or the target year holds the other kind of
/// configuration.
bool YearDuplication::refuses() {
  if (!isPositive(from_)) {
    call_.refuse("Anno solare da duplicare mancante!");
    return true;
  }
  if (!isPositive(to_)) {
    call_.refuse(join("Anno solare su cui duplicare l'anno ", from_, " mancante!"));
    return true;
  }
  return refusesOtherConfiguration();
}

bool YearDuplication::refusesOtherConfiguration() {
  const bool overSeveral = in_.IndProvenienzaMultiAziende;
  const std::string count = lines(" SELECT COUNT(1) AS NUM",                //
                                  " FROM   CG86_AZIENDECOLL WITH(NOLOCK)",  //
                                  " WHERE  CG86_INDTIPO = 0");
  const std::string statement = overSeveral
                                    ? lines(count,                                             //
                                            join("   AND  CG86_DITTACOLL_CG18 = ", company_),  //
                                            join("   AND  CG86_ANNOIVA = ", to_),              //
                                            "   AND  CG86_DITTA_CG18 = CG86_DITTACOLL_CG18")
                                    : lines(count,                                              //
                                            join("   AND ( CG86_DITTACOLL_CG18 = ", company_),  //
                                            join("         OR CG86_DITTA_CG18 = ", company_, ")"),
                                            join("   AND CG86_ANNOIVA = ", to_),  //
                                            "   AND CG86_DITTA_CG18 <> CG86_DITTACOLL_CG18");
  // The company's own default activity does not stand against links.
  const std::int64_t tolerated = overSeveral ? 1 : 0;
  if (call_.read(statement)->fields().item("NUM").value().toInt64() <= tolerated) {
    return false;
  }
  call_.refuse(join("Impossibile eseguire la duplicazione!", kLineBreak, "L'azienda ", company_,
                    overSeveral
                        ? " gestisce l'esercizio di multiattività su singola azienda nell'anno "
                        : " gestisce l'esercizio di multiattività su più aziende nell'anno ",
                    to_, "."));
  return true;
}

/// Empties the target year, after taking its main activities their flag.
void YearDuplication::removeTarget() {
  call_.run(lines(flagUpdate(0), rowsOfYear(company_, to_)));
  std::string removal = lines(" DELETE", rowsOfYear(company_, to_));
  if (!call_.isMissing(in_.CodiceAttività)) {
    removal = lines(removal, join(" AND CG86_CODATTIVITA = ", in_.CodiceAttività));
  }
  call_.run(removal);
}

/// For every linked company of the source year: its own activities give way to the links. The
/// company itself, linked under another one, is left out where they are what is to be copied.
void YearDuplication::removeOwnActivitiesOfLinked(Recordset& old) {
  const auto value = [&](std::string_view column) { return old.fields().item(column).value(); };
  old.setFilter(join("CG86_ANNOIVA = ", from_));
  for (; !old.atEnd() && call_.succeeded(); old.moveNext()) {
    const Variant linked = value("CG86_DITTACOLL_CG18");
    const bool copied = !in_.IndProvenienzaMultiAziende && equalsNumber(company_, linked.toInt64());
    if (!sameValue(value("CG86_DITTA_CG18"), linked) && !copied) {
      const Borrowed company{in_.Pvar_Ditta, linked};
      EliminaAttivitàSingolaCollegamentoMultiAzienda(call_);
    }
  }
}

/// The statement that copies the source year onto the target year.
std::string YearDuplication::copy() {
  constexpr std::size_t behindYear = 2;
  const std::vector<std::string_view> columns = copiedColumns();
  std::string text =
      lines(join(" INSERT INTO CG86_AZIENDECOLL (", joinAll(columns, ", "), ") ",
                 " SELECT CG86_INDTIPO, ", to_, ", ",
                 joinAll(tables::Names{columns}.subspan(behindYear), ", "),
                 " FROM   CG86_AZIENDECOLL WITH(NOLOCK)"),
            " WHERE  CG86_INDTIPO = 0",                    //
            join("   AND  CG86_ANNOIVA = ", from_),        //
            join("   AND  CG86_DITTA_CG18 = ", company_),  //
            in_.IndProvenienzaMultiAziende ? " AND CG86_DITTA_CG18 <> CG86_DITTACOLL_CG18"
                                           : "   AND CG86_DITTA_CG18 = CG86_DITTACOLL_CG18");
  if (!call_.isMissing(in_.CodiceAttività)) {
    text = lines(text, join(" AND CG86_CODATTIVITA = ", in_.CodiceAttività));
  }
  if (!call_.isMissing(in_.IdAttività)) {
    text = lines(text, join(" AND CG86_IDATTIVITA = ", in_.IdAttività));
  }
  return text;
}

/// Gives the copied rows the values that the source rows showed before.
void YearDuplication::carryFields(Recordset& old) {
  call_.output().Grst_AttivitaCollegate = nullptr;
  RecordsetAttivitaCollegate(call_);
  if (!RecordsetVuoto(call_.output().Grst_AttivitaCollegate)) {
    carryValues(old, *call_.output().Grst_AttivitaCollegate, company_, from_, to_);
  }
}

bool YearDuplication::hasMainActivity() {
  return isPositive(call_.read(mainActivitiesOfYear(company_, to_, "COUNT(1)"))
                        ->fields()
                        .item(std::size_t{0})
                        .value());
}

/// Gives the target year its main activity back when the copy left it without one: those that it
/// had, else the one of the lowest code.
void YearDuplication::restoreMainActivity(Recordset& remembered) {
  if (hasMainActivity()) {
    return;
  }
  bool tried = false;
  for (; !remembered.atEnd(); remembered.moveNext()) {
    const Variant code = remembered.fields().item("CG86_CODATTIVITA").value();
    if (call_.isMissing(code)) {
      continue;  // a link without activity cannot be recognized by its code
    }
    tried = true;
    call_.run(
        lines(flagUpdate(1), rowsOfYear(company_, to_), join("   AND  CG86_CODATTIVITA = ", code)));
  }
  if (!tried || !hasMainActivity()) {
    call_.run(lowestCodeUpdate(company_, to_));
  }
}

}  // namespace

void DuplicaAttività(Call& call) noexcept {
  // Not `Mbol_TransazioneAperta`: the methods called on the way reset it.
  bool begun = false;
  method(
      call, " in DuplicaAttività",
      [&] {
        YearDuplication{call, begun}.run();
      },
      [&] {
        if (begun) {
          call.connection().rollbackTrans();
        }
      });
}

}  // namespace azcoll::activities
