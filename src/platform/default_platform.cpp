#include "component/platform.h"
#include "platform/provider_factory.h"

namespace azcoll {
namespace {

class DefaultPlatform final : public Platform {
 public:
  std::shared_ptr<Connection> newConnection(std::string_view connectionString) override {
    return newConnectionFor(connectionString);
  }
};

}  // namespace

std::shared_ptr<Platform> defaultPlatform() { return std::make_shared<DefaultPlatform>(); }

}  // namespace azcoll
