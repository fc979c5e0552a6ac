// The service on the default platform: defined where that platform is, so that whoever brings a
// platform of his own needs no database provider.

#include "component/platform.h"
#include "service/service.h"

namespace azcoll {

CLSCO_AZIENDECOLL::CLSCO_AZIENDECOLL() : CLSCO_AZIENDECOLL(defaultPlatform()) {}

}  // namespace azcoll
