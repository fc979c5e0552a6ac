// What must be there in a target company before a customer/supplier is copied into it.

#include "clifor/prerequisites.h"

#include <string_view>

#include "component/values.h"
#include "data/text.h"
#include "text/quoting.h"

namespace azcoll::clifor {
namespace {

/// A Unicode literal with its apostrophes doubled, or Null.
std::string sqlDoubledText(Call& call, const Variant& value) {
  return call.isMissing(value) ? "Null, " : join("N", inQuotes(join(value), '\''), ", ");
}

/// Runs the work of a routine with a message of its own: the message is left in `Errore`
/// and the failure goes on to the public method's trap.
template <typename Work>
void withMessage(Call& call, std::string_view suffix, const Work& work) {
  try {
    work();
  } catch (...) {
    call.Errore = join(currentDescription(), suffix);
    throw;
  }
}

}  // namespace

void ControllaIntermedio(Call& call, const Variant& company, const Variant& kind,
                         const Variant& intermediary) {
  withMessage(call, " in ControllaIntermedio", [&] {
    if (call.isMissing(intermediary)) {
      return;
    }
    const auto query = [&](const Variant& of) {
      return join("SELECT *",                       //
                  " FROM CG40_ANADITTAINTER",       //
                  " WHERE CG40_DITTA_CG18 = ", of,  //
                  " AND CG40_TIPOCF = ", kind,      //
                  " AND CG40_INTERMEDIO = ", intermediary);
    };
    if (call.read(query(company))->recordCount() != 0) {
      return;
    }
    const std::shared_ptr<Recordset> source = call.read(query(call.input().Pvar_Ditta));
    const auto value = [&](std::string_view column) {
      return source->fields().item(column).value();
    };
    call.run(
        join("INSERT INTO CG40_ANADITTAINTER (CG40_DITTA_CG18, CG40_TIPOCF, CG40_INTERMEDIO,"
             " CG40_DESCR, CG40_IDMEDIA_CG99)",
             " VALUES (", company, ", ", value("CG40_TIPOCF"), ", ", value("CG40_INTERMEDIO"), ", ",
             sqlDoubledText(call, value("CG40_DESCR")),
             call.ValoreDefault(value("CG40_IDMEDIA_CG99"), "Null"), ")"));
  });
}

void ControllaSedi(Call& call, const Variant& company, const Variant& branch) {
  withMessage(call, " in ControllaSedi", [&] {
    if (call.isMissing(branch)) {
      return;
    }
    const auto query = [&](const Variant& of) {
      return join("SELECT *",                       //
                  " FROM CG31_ANADITTASEDI",        //
                  " WHERE CG31_DITTA_CG18 = ", of,  //
                  " AND CG31_CODICE = ", branch);
    };
    if (call.read(query(company))->recordCount() != 0) {
      return;
    }
    const std::shared_ptr<Recordset> source = call.read(query(call.input().Pvar_Ditta));
    const auto value = [&](std::string_view column) {
      return source->fields().item(column).value();
    };
    call.run(
        join("INSERT INTO CG31_ANADITTASEDI (CG31_DITTA_CG18, CG31_CODICE, CG31_INDIRIZZO,"
             " CG31_CAP, CG31_CITTA, CG31_PROV, CG31_IDMEDIA_CG99)",
             " VALUES (", company, ", ", value("CG31_CODICE"), ", ",
             sqlDoubledText(call, value("CG31_INDIRIZZO")), sqlDoubledText(call, value("CG31_CAP")),
             sqlDoubledText(call, value("CG31_CITTA")), sqlDoubledText(call, value("CG31_PROV")),
             call.ValoreDefault(value("CG31_IDMEDIA_CG99"), "Null"), ")"));
  });
}

Variant AgenteCollegato(Call& call, const Variant& agentId, const Variant& target) {
  if (call.isMissing(agentId) || call.isMissing(target)) {
    return "";
  }
  const std::shared_ptr<Recordset> agent =
      call.read(join(" SELECT     DST.MG17_IDAGENTE AS IDAGENTE",                //
                     " FROM       MG17_AGENTI AS SRC WITH(NOLOCK)",              //
                     " INNER JOIN MG17_AGENTI AS DST WITH(NOLOCK)",              //
                     "         ON DST.MG17_DITTA_CG18 = ", target,               //
                     "        AND DST.MG17_ANAGEN_CG16 = SRC.MG17_ANAGEN_CG16",  //
                     " WHERE      SRC.MG17_IDAGENTE = ", agentId));
  if (agent->atStart() || agent->atEnd()) {
    return "";
  }
  return call.ValoreDefault(agent->fields().item("IDAGENTE").value(), "");
}

}  // namespace azcoll::clifor
