// The configuration screens of the user-interface library: what they are given, and showing them.

#include "linked/configuration_screens.h"

#include "component/values.h"
#include "data/error.h"
#include "data/text.h"
#include "linked/resolution.h"

namespace azcoll::linked {
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

/// The year whose links are offered for copying: the one that the caller names, else the year
/// before when the company took part in a link then; Empty otherwise, and after any failure.
Variant yearToCopy(Call& call) noexcept {
  Variant year;
  ignoreErrors([&] {
    const CLSCO_INPUTAZCOLL& in = call.input();
    if (!call.isMissing(in.AnnoSolareDaDuplicare)) {
      year = in.AnnoSolareDaDuplicare;
      return;
    }
    if (call.isMissing(in.Pvar_Ditta)) {
      return;
    }
    const Variant previous = std::int32_t{call.requiredYear(ZeroYear::IsAYear).toInt16()} - 1;
    if (isLinkedIn(call, previous)) {
      year = previous;
    }
  });
  return year;
}

}  // namespace

void configureLinks(Call& call) {
  const CLSCO_INPUTAZCOLL& in = call.input();
  if (!in.ActiveInterface) {
    return;
  }
  const std::shared_ptr<NamedMembers> screen =
      newScreen(call.platform(), kLinksScreen, in.ActiveInterface);
  screen->set("CodiceAzienda", in.Pvar_Ditta);
  screen->set("AnnoSolareDaDuplicare", yearToCopy(call));
  if (call.isMissing(screen->get("AnnoSolareDaDuplicare"))) {
    screen->set("AnnoIva", call.requiredYear(ZeroYear::IsAYear));
  }
  call.platform().show(*screen, in.ActiveInterface);
}

void configureActivities(Call& call) {
  const CLSCO_INPUTAZCOLL& in = call.input();
  if (!in.ActiveInterface) {
    return;
  }
  const std::shared_ptr<NamedMembers> screen =
      newScreen(call.platform(), kActivitiesScreen, in.ActiveInterface);
  screen->set("CodDitta", in.Pvar_Ditta);
  // Callers rely on it: this screen is given the year of the call, not the year to copy from.
  screen->set("AnnoSolareDaDuplicare", call.requiredYear(ZeroYear::IsAYear));
  screen->set("CodiceAttività", in.CodiceAttività);
  call.platform().show(*screen, in.ActiveInterface);
}

}  // namespace azcoll::linked
