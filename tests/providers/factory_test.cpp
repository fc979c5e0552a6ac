#include <string>

#include "platform/provider_factory.h"
#include "providers/provider.h"
#include "service/service.h"

namespace azcoll::test {
namespace {

constexpr const char* kServer = "Driver=FreeTDS;Server=esempio;UID=prova;PWD=Segret@9";

TEST(Factory, TheEmbeddedEngineIsChosenByItsName) {
  const auto connection = newConnectionFor("provider = EMBEDDED;Data Source=:memory:");
  connection->open("", "", CommandOption::Unspecified);
  EXPECT_TRUE(connection->isOpen());
}

TEST(Factory, AServiceOnTheDefaultPlatformOpensWhatItsStringNames) {
  CLSCO_AZIENDECOLL service;
  EXPECT_EQ(service.Stato, Variant{std::int16_t{0}});
  EXPECT_TRUE(service.Errore.isEmpty());
  service.CPInput->StringaConnessione = "Provider=embedded;Data Source=:memory:";
  service.CPInput->Pvar_Ditta = std::int32_t{10};
  service.CPInput->AnnoSolare = std::int32_t{2024};
  service.ControllaDittaCollegata();  // there is no table yet
  EXPECT_EQ(service.Stato, Variant{std::int16_t{99}});
  ASSERT_NE(service.CPInput->Connessione, nullptr);
  EXPECT_TRUE(service.CPInput->Connessione->isOpen());
}

#ifdef AZCOLL_WITH_ODBC

TEST(Factory, EveryOtherStringGoesToOdbcAsItIs) {
  for (const char* const text : {kServer, "DSN=x", "Provider=SQLOLEDB;Data Source=x", ""}) {
    const auto connection = newConnectionFor(text);
    EXPECT_EQ(connection->connectionString(), text);
    EXPECT_FALSE(connection->isOpen());
  }
}

TEST(Factory, AStringThatNoDriverTakesFailsAtOpening) {
  const auto connection = newConnectionFor("Provider=SQLOLEDB;Data Source=x;Password=Segret@9");
  const Error error = failureOf([&] { connection->open("", "", CommandOption::Unspecified); });
  EXPECT_TRUE(error.fromProvider());
  EXPECT_EQ(error.info().sqlState.substr(0, 2), "IM") << error.description();
  EXPECT_EQ(error.description().find("Segret@9"), std::string::npos);
  EXPECT_EQ(connection->errors().count(), 1U);
}

#else

TEST(Factory, ABuildWithoutOdbcSaysSoAndHidesThePassword) {
  const Error error = failureOf([] { static_cast<void>(newConnectionFor(kServer)); });
  EXPECT_FALSE(error.fromProvider());
  EXPECT_NE(error.description().find("ODBC"), std::string::npos);
  EXPECT_EQ(error.description().find("Segret@9"), std::string::npos);
}

#endif

}  // namespace
}  // namespace azcoll::test
