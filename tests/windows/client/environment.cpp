// Automation and the host's classes for the whole test program.

#include <gtest/gtest.h>
#include <memory>

#include "windows/client/host.h"

namespace azcoll::test {
namespace {

class HostEnvironment final : public ::testing::Environment {
 public:
  void SetUp() override {
    ASSERT_TRUE(SUCCEEDED(CoInitialize(nullptr)));
    classes_ = std::make_unique<HostClasses>();
  }
  void TearDown() override {
    classes_.reset();
    CoUninitialize();
  }

 private:
  std::unique_ptr<HostClasses> classes_;
};

const ::testing::Environment* const kHost =
    ::testing::AddGlobalTestEnvironment(new HostEnvironment);

}  // namespace
}  // namespace azcoll::test
