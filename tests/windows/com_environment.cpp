#include "windows/com_environment.h"

namespace {

const ::testing::Environment* const kCom =
    ::testing::AddGlobalTestEnvironment(new azcoll::test::ComEnvironment);

}  // namespace
