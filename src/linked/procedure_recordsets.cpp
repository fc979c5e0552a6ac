// The group seen from the current company: what the stored procedure gives.

#include "linked/procedure_recordsets.h"

#include "component/frame.h"
#include "linked/resolution.h"

namespace azcoll::linked {

namespace {

/// Hands out the group without the current company; null and false when nobody is left of it.
bool handOutGroup(Call& call, const GroupFilter& filter) {
  CLSCO_OUTPUTAZCOLL& out = call.output();
  readGroup(call, filter, out.Grst_DitteCollegate);
  if (out.Grst_DitteCollegate->atEnd()) {
    out.Grst_DitteCollegate = nullptr;
    return false;
  }
  out.IndTipoCont = out.Grst_DitteCollegate->fields().item("CG86_INDTIPOCONT").value();
  return true;
}

/// The same for the methods with a filter, which ask as the duplication does.
void handOutFilteredGroup(Call& call, const GroupFilter& filter) {
  call.session().Mbol_GestioneDuplicazioneCliFor = true;
  if (!handOutGroup(call, filter)) {
    // Callers rely on it: the flag stays set for the next calls when companies were found.
    call.session().Mbol_GestioneDuplicazioneCliFor = false;
  }
}

}  // namespace

void RecordsetDitteCollegateOPrincipale(Call& call) noexcept {
  method(call, " in RecordsetDitteCollegateOPrincipale",
         [&] { handOutGroup(call, {.withoutCurrent = true}); });
}

void RecordsetDitteCollegateOPrincipalePerSedi(Call& call) noexcept {
  method(call, " in RecordsetDitteCollegateOPrincipalePerSedi", [&] {
    const CLSCO_INPUTAZCOLL& in = call.input();
    if (!call.isMissing(in.CodiceSede)) {
      handOutFilteredGroup(call, {.withoutCurrent = true, .branch = in.CodiceSede});
    }
  });
}

void RecordsetDitteCollegateOPrincipalePerIntermedi(Call& call) noexcept {
  method(call, " in RecordsetDitteCollegateOPrincipalePerIntermedi", [&] {
    const CLSCO_INPUTAZCOLL& in = call.input();
    const Variant kind = static_cast<std::int32_t>(in.Pint_TipoCF);
    if (!call.isMissing(in.CodiceIntermedio) && !call.isMissing(kind)) {
      handOutFilteredGroup(
          call, {.withoutCurrent = true, .kind = kind, .intermediary = in.CodiceIntermedio});
    }
  });
}

}  // namespace azcoll::linked
