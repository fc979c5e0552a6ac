#pragma once

#include <cstdint>
#include <memory>
#include <string>

#include "component/service.h"

namespace azcoll {

/// Opens the private side of the service to its tests; every function forwards and adds nothing.
class ServiceProbe {
 public:
  static bool inizializza(CLSCO_AZIENDECOLL& service, bool apri) {
    using Connect = CLSCO_AZIENDECOLL::Connect;
    return service.InizializzaMetodo(apri ? Connect::Yes : Connect::No);
  }
  static void apriConnessione(CLSCO_AZIENDECOLL& service) { service.ApriConnessione(); }
  static Variant valoreDefault(CLSCO_AZIENDECOLL& service, const Variant& valore,
                               const Variant& predefinito) {
    return service.ValoreDefault(valore, predefinito);
  }
  static Variant annoRiferimento(CLSCO_AZIENDECOLL& service, bool numerico) {
    return service.AnnoRiferimento(numerico);
  }
  static bool recordsetVuoto(const std::shared_ptr<Recordset>& rs) {
    return CLSCO_AZIENDECOLL::RecordsetVuoto(rs);
  }
  static Variant dataDB(CLSCO_AZIENDECOLL& service, const Variant& data) {
    return service.DataDB(data);
  }
  static std::string formattaCampo(const Variant& valore, std::int16_t larghezza) {
    return CLSCO_AZIENDECOLL::FormattaCampo(valore, larghezza);
  }
  static std::int16_t valoreGestione(CLSCO_AZIENDECOLL& service) {
    return service.ValoreGestioneDuplicazioneCliFor();
  }
  static bool& connessioneAperta(CLSCO_AZIENDECOLL& service) {
    return service.Mbol_ConnessioneAperta;
  }
  static bool& transazioneAperta(CLSCO_AZIENDECOLL& service) {
    return service.Mbol_TransazioneAperta;
  }
  static bool& gestioneDuplicazione(CLSCO_AZIENDECOLL& service) {
    return service.Mbol_GestioneDuplicazioneCliFor;
  }
};

}  // namespace azcoll
