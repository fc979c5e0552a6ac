#pragma once

#include <memory>
#include <string>

#include "data/recordset.h"
#include "data/variant.h"

namespace azcoll {

/// The results of a call. Only `DitteCollegate` is cleared at the start of a call; every other
/// field keeps the value of the last call that set it, so that a caller reads only what its method
/// sets.
struct CLSCO_OUTPUTAZCOLL {
  /// After `ControllaDittaPrincipale`: the company is the main one; after
  /// `ControllaDittaCollegata`: the company takes part in a link, as main or as linked company.
  bool Gbol_DittaPrincipale = false;
  /// Comma-separated list of companies; "" at the start of every call.
  Variant DitteCollegate;
  /// Recordset of the companies of the group.
  std::shared_ptr<Recordset> Grst_DitteCollegate;
  /// `CG86_INDTIPOCONT` of the link found.
  Variant IndTipoCont;
  /// Code of the main company found by `ControllaDittaCollegata`.
  Variant Gvar_DittaPrincipale;
  /// Recordset of the activities.
  std::shared_ptr<Recordset> Grst_AttivitaCollegate;
  /// Statement composed by the methods that give SQL text.
  std::string GstrSQL_AttivitaCollegate;
  /// Activity found.
  Variant CodiceAttività;
  Variant DescrAttività;
  Variant IdAttività;
};

}  // namespace azcoll
