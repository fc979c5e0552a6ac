// The companies of a group read from the links: as an open recordset, or as a list.

#include "component/service.h"
#include "data/text.h"
#include "linked/statements.h"

namespace azcoll {

/// The statement that `componi` makes for the company and the year of the call.
std::string CLSCO_AZIENDECOLL::istruzioneDitte(IstruzioneDitte componi) {
  return componi({.company = input().Pvar_Ditta, .year = annoDellaChiamata(false)});
}

/// Opens a recordset of the group in the output object.
Recordset& CLSCO_AZIENDECOLL::apriDitteCollegate(IstruzioneDitte componi) {
  apriRecordset(istruzioneDitte(componi), output().Grst_DitteCollegate);
  return *output().Grst_DitteCollegate;
}

/// Positions on the first company and hands out the accounting type of its link; false when there
/// is no company.
bool CLSCO_AZIENDECOLL::riportaTipoCont(Recordset& ditte) {
  if (ditte.recordCount() == 0) {
    return false;
  }
  ditte.moveFirst();
  output().IndTipoCont = ditte.fields().item("CG86_INDTIPOCONT").value();
  return true;
}

/// Hands out the companies of `ditte`, then the current one, parted by ", "; nothing when `ditte`
/// has no company. Callers rely on it: the current company is the last one whether it is the main
/// company or not, and a company with several rows stands there several times.
void CLSCO_AZIENDECOLL::elencaDitte(Recordset& ditte) {
  if (!riportaTipoCont(ditte)) {
    return;
  }
  for (; !ditte.atEnd(); ditte.moveNext()) {
    output().DitteCollegate =
        join(output().DitteCollegate, ditte.fields().item("DITTA").value(), ", ");
  }
  output().DitteCollegate = join(output().DitteCollegate, input().Pvar_Ditta);
}

void CLSCO_AZIENDECOLL::DitteCollegate() noexcept {
  metodo(" in DitteCollegate",
         [this] { elencaDitte(*apriRecordset(istruzioneDitte(linked::linkedCompanies))); });
}

void CLSCO_AZIENDECOLL::DitteCollegatePiuPrincipale() noexcept {
  metodo(" in DitteCollegatePiuPrincipale", [this] {
    std::shared_ptr<Recordset> ditte = apriRecordset(istruzioneDitte(linked::linkedCompanies));
    if (ditte->recordCount() == 0) {
      ditte = apriRecordset(istruzioneDitte(linked::othersOfLinked));
    }
    elencaDitte(*ditte);
  });
}

void CLSCO_AZIENDECOLL::RecordsetDitteCollegate() noexcept {
  metodo(" in RecordsetDitteCollegate",
         [this] { riportaTipoCont(apriDitteCollegate(linked::linkedCompanies)); });
}

void CLSCO_AZIENDECOLL::RecordsetDitteCollegatePiuPrincipale() noexcept {
  metodo(" in RecordsetDitteCollegatePiuPrincipale",
         [this] { riportaTipoCont(apriDitteCollegate(linked::mainCompanyFirst)); });
}

void CLSCO_AZIENDECOLL::RecordsetDitteCollegatePiuPrincipaleNoPrinc() noexcept {
  metodo(" in RecordsetDitteCollegatePiuPrincipaleNoPrinc", [this] {
    if (!riportaTipoCont(apriDitteCollegate(linked::withMainCompany))) {
      riportaTipoCont(apriDitteCollegate(linked::groupOfLinked));
    }
  });
}

void CLSCO_AZIENDECOLL::RecordsetDitteCollegatePiuPrincipalePiuDenunciaIva() noexcept {
  // Callers rely on it: the message names the method without the VAT return.
  metodo(" in RecordsetDitteCollegatePiuPrincipale",
         [this] { riportaTipoCont(apriDitteCollegate(linked::withVatReturnData)); });
}

void CLSCO_AZIENDECOLL::RecordsetDitteCollegatePiuPrincipalePerChiuApeEsercizio() noexcept {
  // Callers rely on it: the message names the method with the main company first.
  metodo(" in RecordsetDitteCollegatePiuPrincipale",
         [this] { riportaTipoCont(apriDitteCollegate(linked::mainCompanyLast)); });
}

}  // namespace azcoll
