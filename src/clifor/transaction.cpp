#include "clifor/transaction.h"

namespace azcoll::clifor {

void beginTransaction(Call& call) {
  call.connection().beginTrans();
  call.session().Mbol_TransazioneAperta = true;
}

void commitTransaction(Call& call) {
  call.connection().commitTrans();
  call.session().Mbol_TransazioneAperta = false;
}

void rollbackTransaction(Call& call) {
  call.connection().rollbackTrans();
  call.session().Mbol_TransazioneAperta = false;
}

void undoAfterError(Call& call) {
  if (call.session().Mbol_TransazioneAperta && call.connection().errors().count() > 0) {
    call.connection().errors().clear();
    call.connection().rollbackTrans();
  }
}

}  // namespace azcoll::clifor
