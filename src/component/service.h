#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <string_view>

#include "component/input.h"
#include "component/output.h"
#include "component/platform.h"
#include "data/tables.h"
#include "data/variant.h"

namespace azcoll {

/// The linked companies of a VAT year and what is kept common to them.
///
/// A caller fills `CPInput`, calls one method, reads `Stato` and `Errore`, then `CPOutput`. No
/// method throws. `Stato` is 0 after a success, 1 when the call was refused for missing or invalid
/// input, 99 after a failure; `Errore` holds the message of the last failure and is not cleared by
/// a success. One caller at a time; the object keeps no state between calls but its connection.
class CLSCO_AZIENDECOLL {
 public:
  /// A service on the default platform of this build.
  CLSCO_AZIENDECOLL();
  explicit CLSCO_AZIENDECOLL(std::shared_ptr<Platform> platform);
  CLSCO_AZIENDECOLL(const CLSCO_AZIENDECOLL&) = delete;
  CLSCO_AZIENDECOLL(CLSCO_AZIENDECOLL&&) = delete;
  CLSCO_AZIENDECOLL& operator=(const CLSCO_AZIENDECOLL&) = delete;
  CLSCO_AZIENDECOLL& operator=(CLSCO_AZIENDECOLL&&) = delete;
  /// Closes the connection only if the service opened it; drops the input's reference in any case.
  ~CLSCO_AZIENDECOLL();

  /// Parameters of the next call; a caller may put an object of its own here.
  std::shared_ptr<CLSCO_INPUTAZCOLL> CPInput;
  /// Results of the last call; a caller may put an object of its own here.
  std::shared_ptr<CLSCO_OUTPUTAZCOLL> CPOutput;
  /// Outcome of the last call, a 16-bit integer.
  Variant Stato{std::int16_t{0}};
  /// Message of the last failure; Empty until the first one.
  Variant Errore;

  /// Spreads a customer/supplier just saved in `Pvar_Ditta` over the group: moves it to a code that
  /// is free in every company (`Pvar_CliFor` then holds the new code), writes a full copy into the
  /// main company and a reduced, inactive one into every linked company, and records the code in
  /// the document numbering. One transaction. Failures: " in DuplicaClifor".
  void DuplicaCliFor() noexcept;

  /// Sets `Gbol_DittaPrincipale`: whether the company is the main company of its group.
  void ControllaDittaPrincipale() noexcept;

  /// Sets `Gbol_DittaPrincipale`: whether the company takes part in a link of the year; if so, also
  /// `IndTipoCont` and `Gvar_DittaPrincipale` from the first link found.
  void ControllaDittaCollegata() noexcept;

  /// Sets `DitteCollegate`: the companies linked to this main company, then the company itself,
  /// parted by ", "; "" when there are none. Sets `IndTipoCont` from the first link.
  void DitteCollegate() noexcept;

  /// Code of the main company of the group, as text; "" when there is none or it cannot be found
  /// out. Sets `IndTipoCont` when there is one. A database failure is swallowed.
  std::string GetDittaPrincipale() noexcept;

 private:
  friend class ServiceProbe;  // the tests of the private helpers

  // The frame of a public method (component/frame.cpp).
  enum class Connect : bool { No, Yes };
  using Work = std::function<void()>;
  void metodo(std::string_view suffix, const Work& work) noexcept;
  void metodo(std::string_view suffix, const Work& work, const Work& onFailure) noexcept;
  void conMessaggio(std::string_view suffix, const Work& work);
  void intrappola(std::string_view suffix, const Work& onFailure) noexcept;
  [[nodiscard]] CLSCO_INPUTAZCOLL& input() const;
  [[nodiscard]] CLSCO_OUTPUTAZCOLL& output() const;
  [[nodiscard]] Connection& connessione() const;

  // Helpers shared by all methods (component/helpers.cpp).
  bool InizializzaMetodo(Connect apri) noexcept;
  void ApriConnessione() noexcept;
  Variant ValoreDefault(const Variant& valore, const Variant& predefinito);
  Variant AnnoRiferimento(bool numerico) noexcept;
  static bool RecordsetVuoto(const std::shared_ptr<Recordset>& rs) noexcept;
  Variant DataDB(const Variant& data);
  static std::string FormattaCampo(const Variant& valore, std::int16_t larghezza) noexcept;
  std::int16_t ValoreGestioneDuplicazioneCliFor() noexcept;
  bool mancante(const Variant& valore);
  std::string testo(const Variant& valore);
  std::shared_ptr<Recordset> leggi(std::string_view sql);
  void esegui(std::string_view sql);
  std::shared_ptr<Recordset> apriRecordset(std::string sql);

  // The group of linked companies (linked/).
  struct FiltriGruppo {
    bool escludiPrincipale = false;
    bool escludiCorrente = false;
    Variant tipoCF = kNull;
    Variant codIntermedio = kNull;
    Variant codSede = kNull;
  };
  std::shared_ptr<Command> comandoDitteCollegate(const FiltriGruppo& filtri);
  std::string LeggiDitteCollegate(std::shared_ptr<Recordset>& ditte) noexcept;

  // Customers and suppliers (clifor/).
  void duplica();
  void copiaCompleta(const Variant& principale, Fields& sorgente);
  void copieRidotte(Recordset& ditte, Fields& sorgente);
  static std::string inizioInserimentoMaestro();
  std::string inserimentoCompleto(const Variant& principale, Fields& sorgente,
                                  const Variant& agente);
  std::string codaInserimentoRidotto(Fields& sorgente);
  std::string inserimentoDatiVendita(const Variant& principale, Fields& sorgente);
  std::string valoreSql(tables::ValueRule rule, const Variant& principale, const Variant& valore);
  std::string numeroSql(const Variant& valore);
  std::string testoSql(const Variant& valore);
  std::string testoRaddoppiatoSql(const Variant& valore);
  std::string dataSql(const Variant& valore);
  void annullaDopoErrore();
  void ControllaIntermedio(const Variant& ditta, const Variant& tipoCF, const Variant& intermedio);
  void ControllaSedi(const Variant& ditta, const Variant& sede);
  bool CodiceCliForLibero(const std::string& ditta, const std::string& dittaPrincipale,
                          const Variant& elenco, Variant& codice, bool primaChiamata);
  void AggiornaCodiceCliFor(const Variant& nuovoCodice);
  std::shared_ptr<Recordset> aggiornaCodice(std::string_view tabella, const Variant& nuovoCodice);
  void NumeraCliFor(const std::string& ditta, const std::string& dittaPrincipale,
                    const Variant& elenco, const Variant& codice);
  Variant AgenteCollegato(const Variant& idAgente, const Variant& dittaDestinazione);

  std::shared_ptr<Platform> platform_;
  std::weak_ptr<Connection> opened_;  ///< the connection that `ApriConnessione` opened
  bool Mbol_ConnessioneAperta = false;
  bool Mbol_TransazioneAperta = false;
  bool Mbol_GestioneDuplicazioneCliFor = false;
};

}  // namespace azcoll
