// The configuration screens of the user-interface library: what they are given, and showing them.

#include "component/service.h"
#include "component/values.h"
#include "data/error.h"
#include "data/text.h"

namespace azcoll {
namespace {

constexpr std::string_view kLinksScreen = "AZCOLLUI.CLSCO_AZIENDECOLL";
constexpr std::string_view kActivitiesScreen = "AZCOLLUI.CLSCO_ATTIVITACOLL";

/// A screen that has the caller's framework object, by reference, and nothing else yet.
std::shared_ptr<NamedMembers> newScreen(Platform& platform, std::string_view progId,
                                        const std::shared_ptr<Object>& activeInterface) {
  std::shared_ptr<NamedMembers> screen = platform.createObject(progId);
  if (!screen) {
    throw Error(join("Oggetto non impostato: ", progId));
  }
  screen->set("ActiveInterface", activeInterface);
  return screen;
}

}  // namespace

/// The year whose links are offered for copying: the one that the caller names, else the year
/// before when the company took part in a link then; Empty otherwise, and after any failure.
Variant CLSCO_AZIENDECOLL::annoDaCopiare() noexcept {
  Variant year;
  ignoreErrors([&] {
    const CLSCO_INPUTAZCOLL& in = input();
    if (!mancante(in.AnnoSolareDaDuplicare)) {
      year = in.AnnoSolareDaDuplicare;
      return;
    }
    if (mancante(in.Pvar_Ditta)) {
      return;
    }
    const Variant previous = std::int32_t{annoDellaChiamata(false).toInt16()} - 1;
    if (collegataNellAnno(previous)) {
      year = previous;
    }
  });
  return year;
}

/// Shows the screen of the links between companies. Does nothing without the caller's interface.
void CLSCO_AZIENDECOLL::configuraCollegamenti() {
  const CLSCO_INPUTAZCOLL& in = input();
  if (!in.ActiveInterface) {
    return;
  }
  const std::shared_ptr<NamedMembers> screen =
      newScreen(*platform_, kLinksScreen, in.ActiveInterface);
  screen->set("CodiceAzienda", in.Pvar_Ditta);
  screen->set("AnnoSolareDaDuplicare", annoDaCopiare());
  if (mancante(screen->get("AnnoSolareDaDuplicare"))) {
    screen->set("AnnoIva", annoDellaChiamata(false));
  }
  platform_->show(*screen, in.ActiveInterface);
}

/// Shows the screen of the company's activities. Does nothing without the caller's interface.
void CLSCO_AZIENDECOLL::configuraAttività() {
  const CLSCO_INPUTAZCOLL& in = input();
  if (!in.ActiveInterface) {
    return;
  }
  const std::shared_ptr<NamedMembers> screen =
      newScreen(*platform_, kActivitiesScreen, in.ActiveInterface);
  screen->set("CodDitta", in.Pvar_Ditta);
  // Callers rely on it: this screen is given the year of the call, not the year to copy from.
  screen->set("AnnoSolareDaDuplicare", annoDellaChiamata(false));
  screen->set("CodiceAttività", in.CodiceAttività);
  platform_->show(*screen, in.ActiveInterface);
}

}  // namespace azcoll
