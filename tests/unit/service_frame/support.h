#pragma once

#include <cstdint>
#include <gtest/gtest.h>
#include <memory>
#include <string>
#include <utility>

#include "component/call.h"
#include "service/service.h"
#include "unit/service_frame/fakes.h"

namespace azcoll::frame_tests {

inline const Variant kSucceeded{std::int16_t{0}};
inline const Variant kRefusedCall{std::int16_t{1}};
inline const Variant kTrappedFailure{std::int16_t{99}};

/// One row as the link table gives it: company 10 is the main one of company 12.
inline Rows oneLink() {
  return {{"DITTA", "CG86_DITTA_CG18", "CG86_DITTACOLL_CG18", "CG86_INDTIPOCONT"},
          {{std::int32_t{12}, std::int32_t{10}, std::int32_t{12}, std::int16_t{2}}}};
}

/// The procedure's answer for the same group.
inline Rows groupRows() {
  return {{"DITTA", "PRINCIPALE", "CG86_INDTIPOCONT"},
          {{std::int32_t{12}, std::int32_t{0}, std::int16_t{2}},
           {std::int32_t{10}, std::int32_t{1}, std::int16_t{3}}}};
}

/// A service on a fake platform; the connection is the platform's until a test says otherwise.
class ServiceTest : public ::testing::Test {
 protected:
  std::shared_ptr<FakePlatform> platform = std::make_shared<FakePlatform>();
  std::unique_ptr<CLSCO_AZIENDECOLL> service = std::make_unique<CLSCO_AZIENDECOLL>(platform);
  mutable Session session = sessionOn(platform);

  /// A call on the service's objects and outcome, with a session of the test's own: what the
  /// methods do before they work, and the helpers that all of them share.
  [[nodiscard]] Call call() const {
    return {service->CPInput, service->CPOutput, service->Stato, service->Errore, session};
  }

  [[nodiscard]] CLSCO_INPUTAZCOLL& input() const { return *service->CPInput; }
  [[nodiscard]] CLSCO_OUTPUTAZCOLL& output() const { return *service->CPOutput; }
  [[nodiscard]] FakeConnection& database() const { return *platform->connection; }

  /// Fills what the common preamble requires, the connection string included.
  void fillInput() const {
    input().StringaConnessione = "Provider=fake;Data Source=x";
    input().Pvar_Ditta = std::int32_t{10};
    input().AnnoSolare = std::int32_t{2024};
  }

  /// An open connection of the caller's, put into the input.
  [[nodiscard]] std::shared_ptr<FakeConnection> giveConnection() const {
    auto given = std::make_shared<FakeConnection>(true);
    input().Connessione = given;
    input().Pvar_Ditta = std::int32_t{10};
    input().AnnoSolare = std::int32_t{2024};
    return given;
  }

  static Session sessionOn(std::shared_ptr<Platform> platform) {
    Session session;
    session.platform = std::move(platform);
    return session;
  }

  void expectOutcome(const Variant& stato, const Variant& errore) const {
    EXPECT_EQ(service->Stato, stato) << "Stato";
    EXPECT_EQ(service->Errore, errore) << "Errore";
  }
};

}  // namespace azcoll::frame_tests
