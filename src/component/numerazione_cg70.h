#pragma once

#include "component/platform.h"

namespace azcoll {

/// The default document numbering: keeps the last number used in `CG70_NUMERDOC`, on the connection
/// that it is given. Mode 3 records a number that is already in use: the last number is raised to
/// it, never lowered, and a missing row is inserted.
class NumerazioneCG70 final : public NumerazioneDocumenti {
 public:
  /// Values of `Stato`.
  enum class Esito : std::int32_t {
    Riuscita = 0,         ///< recorded
    DatiMancanti = 1,     ///< no connection, or company or number that is not a whole number
    ModoNonPrevisto = 2,  ///< another mode than 3
    ErroreDatabase = 3    ///< a statement was refused
  };

  void ElaboraNumerazione() override;
  [[nodiscard]] std::int32_t Stato() const override { return static_cast<std::int32_t>(esito_); }

 private:
  void registra();

  Esito esito_ = Esito::Riuscita;
};

}  // namespace azcoll
