// The companies of a group read from the links: as an open recordset, or as a list.

#include "linked/recordsets.h"

#include "component/frame.h"
#include "data/text.h"
#include "linked/statements.h"

namespace azcoll::linked {
namespace {

using GroupStatement = std::string (*)(const CompanyOfYear&);

/// The statement that `compose` makes for the company and the year of the call.
std::string statementOfCall(Call& call, GroupStatement compose) {
  return compose(
      {.company = call.input().Pvar_Ditta, .year = call.requiredYear(ZeroYear::IsAYear)});
}

/// Opens a recordset of the group in the output object.
Recordset& openGroup(Call& call, GroupStatement compose) {
  call.open(statementOfCall(call, compose), call.output().Grst_DitteCollegate);
  return *call.output().Grst_DitteCollegate;
}

/// Positions on the first company and hands out the accounting type of its link; false when there
/// is no company.
bool handOutAccountingType(Call& call, Recordset& companies) {
  if (companies.recordCount() == 0) {
    return false;
  }
  companies.moveFirst();
  call.output().IndTipoCont = companies.fields().item("CG86_INDTIPOCONT").value();
  return true;
}

/// Hands out the companies of `companies`, then the current one, separated by ", "; nothing when
/// `companies` has no company. Callers rely on it: the current company is the last one whether it
/// is the main company or not, and a company with several rows stands there several times.
void listCompanies(Call& call, Recordset& companies) {
  if (!handOutAccountingType(call, companies)) {
    return;
  }
  for (; !companies.atEnd(); companies.moveNext()) {
    call.output().DitteCollegate =
        join(call.output().DitteCollegate, companies.fields().item("DITTA").value(), ", ");
  }
  call.output().DitteCollegate = join(call.output().DitteCollegate, call.input().Pvar_Ditta);
}

}  // namespace

void DitteCollegate(Call& call) noexcept {
  method(call, " in DitteCollegate",
         [&] { listCompanies(call, *call.open(statementOfCall(call, linkedCompanies))); });
}

void DitteCollegatePiuPrincipale(Call& call) noexcept {
  method(call, " in DitteCollegatePiuPrincipale", [&] {
    std::shared_ptr<Recordset> companies = call.open(statementOfCall(call, linkedCompanies));
    if (companies->recordCount() == 0) {
      companies = call.open(statementOfCall(call, othersOfLinked));
    }
    listCompanies(call, *companies);
  });
}

void RecordsetDitteCollegate(Call& call) noexcept {
  method(call, " in RecordsetDitteCollegate",
         [&] { handOutAccountingType(call, openGroup(call, linkedCompanies)); });
}

void RecordsetDitteCollegatePiuPrincipale(Call& call) noexcept {
  method(call, " in RecordsetDitteCollegatePiuPrincipale",
         [&] { handOutAccountingType(call, openGroup(call, mainCompanyFirst)); });
}

void RecordsetDitteCollegatePiuPrincipaleNoPrinc(Call& call) noexcept {
  method(call, " in RecordsetDitteCollegatePiuPrincipaleNoPrinc", [&] {
    if (!handOutAccountingType(call, openGroup(call, withMainCompany))) {
      handOutAccountingType(call, openGroup(call, groupOfLinked));
    }
  });
}

void RecordsetDitteCollegatePiuPrincipalePiuDenunciaIva(Call& call) noexcept {
  // Callers rely on it: the message names the method without the VAT return.
  method(call, " in RecordsetDitteCollegatePiuPrincipale",
         [&] { handOutAccountingType(call, openGroup(call, withVatReturnData)); });
}

void RecordsetDitteCollegatePiuPrincipalePerChiuApeEsercizio(Call& call) noexcept {
  // Callers rely on it: the message names the method with the main company first.
  method(call, " in RecordsetDitteCollegatePiuPrincipale",
         [&] { handOutAccountingType(call, openGroup(call, mainCompanyLast)); });
}

}  // namespace azcoll::linked
