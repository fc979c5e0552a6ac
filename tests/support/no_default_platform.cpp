#include "component/platform.h"

namespace azcoll {

// A test program that hands its own platform to every service needs no database provider. The
// service's default constructor still refers to this function: it is here for the linker alone, and
// no test may use what it gives.
std::shared_ptr<Platform> defaultPlatform() { return nullptr; }

}  // namespace azcoll
