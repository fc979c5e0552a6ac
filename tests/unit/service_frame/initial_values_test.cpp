#include <gtest/gtest.h>
#include <memory>
#include <string_view>
#include <type_traits>
#include <variant>

#include "component/session.h"
#include "service/members.h"
#include "unit/service_frame/fakes.h"

namespace azcoll::frame_tests {
namespace {

/// What a field of each kind holds in an object that nobody has touched.
void expectEmptyValue(std::string_view name, const Variant& value) {
  EXPECT_EQ(value.kind(), Variant::Kind::Empty) << name;
}
void expectEmptyValue(std::string_view name, const std::string& value) {
  EXPECT_EQ(value, "") << name;
}
void expectEmptyValue(std::string_view name, const bool& value) { EXPECT_FALSE(value) << name; }
template <typename Enum>
requires std::is_enum_v<Enum>
void expectEmptyValue(std::string_view name, const Enum& value) {
  EXPECT_EQ(static_cast<int>(value), 0) << name;
}
template <typename Target>
void expectEmptyValue(std::string_view name, const std::shared_ptr<Target>& value) {
  EXPECT_EQ(value, nullptr) << name;
}

template <typename Object, typename Table>
void expectAllEmpty(const Object& object, const Table& table) {
  for (const auto& field : table) {
    std::visit([&](auto member) { expectEmptyValue(field.name, object.*member); }, field.member);
  }
}

TEST(InitialValues, EveryInputFieldIsEmpty) { expectAllEmpty(CLSCO_INPUTAZCOLL{}, kInputFields); }

TEST(InitialValues, EveryOutputFieldIsEmpty) {
  expectAllEmpty(CLSCO_OUTPUTAZCOLL{}, kOutputFields);
}

TEST(InitialValues, InputEnumerationsStartAtTheirFirstMember) {
  const CLSCO_INPUTAZCOLL input;
  EXPECT_EQ(input.Pint_TipoCF, Cliente);
  EXPECT_EQ(input.TipoMsgAziendeColl, MsgProvenienzaEserciziAzienda);
}

void expectNew(CLSCO_AZIENDECOLL& service) {
  ASSERT_NE(service.CPInput, nullptr);
  ASSERT_NE(service.CPOutput, nullptr);
  expectAllEmpty(*service.CPInput, kInputFields);
  expectAllEmpty(*service.CPOutput, kOutputFields);
  EXPECT_EQ(service.Stato, Variant{std::int16_t{0}});
  EXPECT_EQ(service.Errore.kind(), Variant::Kind::Empty);
}

TEST(InitialValues, ANewServiceHasItsTwoObjectsAndNoOutcomeYet) {
  CLSCO_AZIENDECOLL service{std::make_shared<FakePlatform>()};
  expectNew(service);
}

TEST(InitialValues, ANewSessionHasOpenedNothing) {
  const Session session;
  EXPECT_FALSE(session.Mbol_ConnessioneAperta);
  EXPECT_FALSE(session.Mbol_TransazioneAperta);
  EXPECT_FALSE(session.Mbol_GestioneDuplicazioneCliFor);
  EXPECT_EQ(session.opened.lock(), nullptr);
}

TEST(InitialValues, TwoServicesShareNothing) {
  const auto platform = std::make_shared<FakePlatform>();
  CLSCO_AZIENDECOLL first{platform};
  CLSCO_AZIENDECOLL second{platform};
  EXPECT_NE(first.CPInput, second.CPInput);
  EXPECT_NE(first.CPOutput, second.CPOutput);
}

TEST(InitialValues, CreatingAServiceAsksThePlatformForNoConnection) {
  const auto platform = std::make_shared<FakePlatform>();
  { const CLSCO_AZIENDECOLL service{platform}; }
  EXPECT_TRUE(platform->requested.empty());
}

}  // namespace
}  // namespace azcoll::frame_tests
