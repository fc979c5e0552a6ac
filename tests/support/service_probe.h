#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>

#include "component/service.h"

namespace azcoll {

/// Reaches the private helpers of the service for its tests. Every function forwards one call and
/// adds nothing, so that a test sees what the helper does and throws.
class ServiceProbe {
 public:
  using Service = CLSCO_AZIENDECOLL;

  static bool InizializzaMetodo(Service& service, bool apri) {
    return service.InizializzaMetodo(apri ? Service::Connect::Yes : Service::Connect::No);
  }
  static void ApriConnessione(Service& service) { service.ApriConnessione(); }
  static Variant ValoreDefault(Service& service, const Variant& valore,
                               const Variant& predefinito) {
    return service.ValoreDefault(valore, predefinito);
  }
  static Variant AnnoRiferimento(Service& service, bool numerico) {
    return service.AnnoRiferimento(numerico);
  }
  static bool RecordsetVuoto(const std::shared_ptr<Recordset>& rs) {
    return Service::RecordsetVuoto(rs);
  }
  static Variant DataDB(Service& service, const Variant& data) { return service.DataDB(data); }
  static std::string FormattaCampo(const Variant& valore, std::int16_t larghezza) {
    return Service::FormattaCampo(valore, larghezza);
  }
  static std::int16_t ValoreGestioneDuplicazioneCliFor(Service& service) {
    return service.ValoreGestioneDuplicazioneCliFor();
  }
  static std::string LeggiDitteCollegate(Service& service, std::shared_ptr<Recordset>& ditte) {
    return service.LeggiDitteCollegate(ditte);
  }
  static bool CodiceCliForLibero(Service& service, const std::string& ditta,
                                 const std::string& principale, const Variant& elenco,
                                 Variant& codice, bool primaChiamata) {
    return service.CodiceCliForLibero(ditta, principale, elenco, codice, primaChiamata);
  }
  static void AggiornaCodiceCliFor(Service& service, const Variant& nuovoCodice) {
    service.AggiornaCodiceCliFor(nuovoCodice);
  }
  static std::shared_ptr<Recordset> AggiornaCodice(Service& service, std::string_view tabella,
                                                   const Variant& nuovoCodice) {
    return service.aggiornaCodice(tabella, nuovoCodice);
  }
  static void NumeraCliFor(Service& service, const std::string& ditta,
                           const std::string& principale, const Variant& elenco,
                           const Variant& codice) {
    service.NumeraCliFor(ditta, principale, elenco, codice);
  }
  static Variant AgenteCollegato(Service& service, const Variant& idAgente, const Variant& ditta) {
    return service.AgenteCollegato(idAgente, ditta);
  }
  static void ControllaIntermedio(Service& service, const Variant& ditta, const Variant& tipoCF,
                                  const Variant& intermedio) {
    service.ControllaIntermedio(ditta, tipoCF, intermedio);
  }
  static void ControllaSedi(Service& service, const Variant& ditta, const Variant& sede) {
    service.ControllaSedi(ditta, sede);
  }
  static bool& connessioneAperta(Service& service) { return service.Mbol_ConnessioneAperta; }
  static bool& transazioneAperta(Service& service) { return service.Mbol_TransazioneAperta; }
  static bool& gestioneDuplicazione(Service& service) {
    return service.Mbol_GestioneDuplicazioneCliFor;
  }
};

}  // namespace azcoll
