// What must be there in a target company before a customer/supplier is copied into it.

#include "component/service.h"
#include "component/values.h"
#include "data/text.h"

namespace azcoll {

/// A Unicode literal with its apostrophes doubled, or Null.
std::string CLSCO_AZIENDECOLL::testoRaddoppiatoSql(const Variant& valore) {
  return mancante(valore) ? "Null, " : join("N'", doubleApostrophes(join(valore)), "', ");
}

/// Runs the work of a private routine with a message of its own: the message is left in `Errore`
/// and the failure goes on to the public method's trap.
void CLSCO_AZIENDECOLL::conMessaggio(std::string_view suffix, const Work& work) {
  try {
    work();
  } catch (...) {
    Errore = join(currentDescription(), suffix);
    throw;
  }
}

void CLSCO_AZIENDECOLL::ControllaIntermedio(const Variant& ditta, const Variant& tipoCF,
                                            const Variant& intermedio) {
  conMessaggio(" in ControllaIntermedio", [&] {
    if (mancante(intermedio)) {
      return;
    }
    const auto query = [&](const Variant& company) {
      return join("SELECT *",                            //
                  " FROM CG40_ANADITTAINTER",            //
                  " WHERE CG40_DITTA_CG18 = ", company,  //
                  " AND CG40_TIPOCF = ", tipoCF,         //
                  " AND CG40_INTERMEDIO = ", intermedio);
    };
    if (leggi(query(ditta))->recordCount() != 0) {
      return;
    }
    const std::shared_ptr<Recordset> source = leggi(query(input().Pvar_Ditta));
    const auto value = [&](std::string_view column) {
      return source->fields().item(column).value();
    };
    esegui(
        join("INSERT INTO CG40_ANADITTAINTER (CG40_DITTA_CG18, CG40_TIPOCF, CG40_INTERMEDIO,"
             " CG40_DESCR, CG40_IDMEDIA_CG99)",
             " VALUES (", ditta, ", ", value("CG40_TIPOCF"), ", ", value("CG40_INTERMEDIO"), ", ",
             testoRaddoppiatoSql(value("CG40_DESCR")),
             ValoreDefault(value("CG40_IDMEDIA_CG99"), "Null"), ")"));
  });
}

void CLSCO_AZIENDECOLL::ControllaSedi(const Variant& ditta, const Variant& sede) {
  conMessaggio(" in ControllaSedi", [&] {
    if (mancante(sede)) {
      return;
    }
    const auto query = [&](const Variant& company) {
      return join("SELECT *",                            //
                  " FROM CG31_ANADITTASEDI",             //
                  " WHERE CG31_DITTA_CG18 = ", company,  //
                  " AND CG31_CODICE = ", sede);
    };
    if (leggi(query(ditta))->recordCount() != 0) {
      return;
    }
    const std::shared_ptr<Recordset> source = leggi(query(input().Pvar_Ditta));
    const auto value = [&](std::string_view column) {
      return source->fields().item(column).value();
    };
    esegui(
        join("INSERT INTO CG31_ANADITTASEDI (CG31_DITTA_CG18, CG31_CODICE, CG31_INDIRIZZO,"
             " CG31_CAP, CG31_CITTA, CG31_PROV, CG31_IDMEDIA_CG99)",
             " VALUES (", ditta, ", ", value("CG31_CODICE"), ", ",
             testoRaddoppiatoSql(value("CG31_INDIRIZZO")), testoRaddoppiatoSql(value("CG31_CAP")),
             testoRaddoppiatoSql(value("CG31_CITTA")), testoRaddoppiatoSql(value("CG31_PROV")),
             ValoreDefault(value("CG31_IDMEDIA_CG99"), "Null"), ")"));
  });
}

/// The same agent in another company: the one of the same general-registry entry. "" when there is
/// none.
Variant CLSCO_AZIENDECOLL::AgenteCollegato(const Variant& idAgente,
                                           const Variant& dittaDestinazione) {
  if (mancante(idAgente) || mancante(dittaDestinazione)) {
    return "";
  }
  const std::shared_ptr<Recordset> agent =
      leggi(join(" SELECT     DST.MG17_IDAGENTE AS IDAGENTE",                //
                 " FROM       MG17_AGENTI AS SRC WITH(NOLOCK)",              //
                 " INNER JOIN MG17_AGENTI AS DST WITH(NOLOCK)",              //
                 "         ON DST.MG17_DITTA_CG18 = ", dittaDestinazione,    //
                 "        AND DST.MG17_ANAGEN_CG16 = SRC.MG17_ANAGEN_CG16",  //
                 " WHERE      SRC.MG17_IDAGENTE = ", idAgente));
  if (agent->atStart() || agent->atEnd()) {
    return "";
  }
  return ValoreDefault(agent->fields().item("IDAGENTE").value(), "");
}

}  // namespace azcoll
