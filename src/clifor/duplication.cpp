#include "clifor/duplication.h"

#include <memory>
#include <string>

#include "clifor/code_change.h"
#include "clifor/copies.h"
#include "clifor/free_code.h"
#include "clifor/prerequisites.h"
#include "clifor/transaction.h"
#include "component/frame.h"
#include "component/values.h"
#include "data/text.h"
#include "linked/resolution.h"

namespace azcoll::clifor {
namespace {

/// One duplication: what its steps hand on to each other.
class Duplication {
 public:
  explicit Duplication(Call& call) : call_{call}, in_{call.input()} {}

  /// The work of `DuplicaCliFor`.
  void run();

 private:
  void readGroup();
  [[nodiscard]] bool hasNobodyToShareWith();
  void takeFreeCode();
  [[nodiscard]] std::shared_ptr<Recordset> master();
  void writeFullCopy(Fields& source);
  void writeReducedCopies(Fields& source);

  Call& call_;
  CLSCO_INPUTAZCOLL& in_;
  Group group_;
  std::shared_ptr<Recordset> linked_;  ///< the companies to receive reduced copies
  Variant code_;                       ///< that the customer/supplier has in the end
};

void Duplication::run() {
  // Without a year the look-ups would only find no group.
  static_cast<void>(call_.requiredYear(ZeroYear::IsMissing));
  bool& duplicating = call_.session().Mbol_GestioneDuplicazioneCliFor;
  duplicating = true;
  readGroup();
  if (hasNobodyToShareWith()) {
    duplicating = false;
    return;
  }
  takeFreeCode();
  const std::shared_ptr<Recordset> source = master();
  if (source->recordCount() == 0) {
    // Callers rely on it: the transaction stays open and belongs to the owner of the connection,
    // and there is no message.
    duplicating = false;
    call_.Stato = kTrapped;
    return;
  }
  if (group_.company != group_.main) {
    writeFullCopy(source->fields());
  }
  if (linked_ && linked_->recordCount() != 0) {
    writeReducedCopies(source->fields());
  }
  NumeraCliFor(call_, group_, code_);
  // Callers rely on it: a numbering that failed is reported, and the copies are committed all the
  // same.
  commitTransaction(call_);
  duplicating = false;
}

void Duplication::readGroup() {
  group_.company = call_.text(in_.Pvar_Ditta);
  group_.main = linked::GetDittaPrincipale(call_);
  group_.others = linked::LeggiDitteCollegate(call_, linked_);
}

/// Whether there is no group, or one whose companies keep their accounts apart.
bool Duplication::hasNobodyToShareWith() {
  const bool sharesNothing = equalsNumber(call_.ValoreDefault(call_.output().IndTipoCont, ""), 1);
  return (group_.main.empty() && group_.others.empty()) || sharesNothing;
}

/// Begins the transaction, and moves the customer/supplier when another company holds its code.
void Duplication::takeFreeCode() {
  code_ = in_.Pvar_CliFor;
  beginTransaction(call_);
  if (!CodiceCliForLibero(call_, group_, code_)) {
    AggiornaCodiceCliFor(call_, code_);
    in_.Pvar_CliFor = code_;
  }
}

/// The customer/supplier's row in the current company.
std::shared_ptr<Recordset> Duplication::master() {
  return call_.read(join("SELECT *",                                                //
                         " FROM CG44_CLIFOR",                                       //
                         " WHERE CG44_DITTA_CG18 = ", in_.Pvar_Ditta,               //
                         " AND CG44_TIPOCF = ", static_cast<int>(in_.Pint_TipoCF),  //
                         " AND CG44_CLIFOR = ", in_.Pvar_CliFor));
}

/// Makes the customer/supplier whole in the main company: intermediary and branch, master row with
/// its agent, sales data when there are any.
void Duplication::writeFullCopy(Fields& source) {
  const std::shared_ptr<Recordset> sales =
      call_.read(join("SELECT *",                                                     //
                      " FROM MG19_CLIFORVA",                                          //
                      " WHERE MG19_DITTA_CG18 = ", in_.Pvar_Ditta,                    //
                      " AND MG19_TIPOCF_CG44 = ", static_cast<int>(in_.Pint_TipoCF),  //
                      " AND MG19_CLIFOR_CG44 = ", in_.Pvar_CliFor));
  const Variant main{group_.main};
  ControllaIntermedio(call_, main, static_cast<std::int32_t>(in_.Pint_TipoCF),
                      source.item("CG44_INTERMEDIO_CG40").value());
  ControllaSedi(call_, main, source.item("CG44_CODSEDE_CG31").value());
  const Variant agent = AgenteCollegato(
      call_, call_.ValoreDefault(source.item("CG44_IDAGENTE_MG17").value(), ""), main);
  call_.run(fullMasterInsert(call_, main, source, agent));
  if (sales->recordCount() != 0) {
    call_.run(salesDataInsert(call_, main, sales->fields()));
  }
}

/// Writes the reduced, inactive copy into every linked company.
void Duplication::writeReducedCopies(Fields& source) {
  const auto kind = static_cast<std::int32_t>(in_.Pint_TipoCF);
  const Variant intermediary = source.item("CG44_INTERMEDIO_CG40").value();
  const Variant branch = source.item("CG44_CODSEDE_CG31").value();
  const std::string head = masterInsertHead();
  const std::string tail = reducedMasterTail(call_, source);
  for (linked_->moveFirst(); !linked_->atEnd(); linked_->moveNext()) {
    const Variant company = linked_->fields().item("DITTA").value();
    ControllaIntermedio(call_, company, kind, intermediary);
    ControllaSedi(call_, company, branch);
    call_.run(join(head, company, tail));
  }
}

}  // namespace

void DuplicaCliFor(Call& call) noexcept {
  // Callers rely on it: the message names the method with a lower-case "f".
  method(
      call, " in DuplicaClifor", [&] { Duplication{call}.run(); }, [&] { undoAfterError(call); });
}

}  // namespace azcoll::clifor
