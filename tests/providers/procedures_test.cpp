#include <string>

#include "providers/provider.h"

namespace azcoll::test {
namespace {

class Procedures : public OnProvider {
 protected:
  void SetUp() override {
    OnProvider::SetUp();
    if (IsSkipped()) {
      return;
    }
    AZCOLL_NEEDS(Procedures);
    drop();
    run(provider().createProcedure);
  }
  void TearDown() override {
    if (hasOpenConnection()) {
      drop();
    }
    OnProvider::TearDown();
  }

  std::shared_ptr<Command> command() {
    std::shared_ptr<Command> result = connection().newCommand();
    result->setActiveConnection(shared());
    result->setCommandText("P1_PROVA");
    result->setCommandType(CommandOption::StoredProcedure);
    result->setCommandTimeout(0);
    result->setPrepared(true);
    return result;
  }

  [[nodiscard]] std::string named(const std::string& parameter) const {
    return provider().parameterMark + parameter;
  }

 private:
  [[nodiscard]] bool hasOpenConnection() { return shared() && shared()->isOpen(); }

  // A run that broke off leaves it behind; a missing one is no failure.
  void drop() {
    try {
      run(provider().dropProcedure);
    } catch (const Error&) {
      connection().errors().clear();
    }
  }
};

TEST_P(Procedures, ParametersAreThoseOfTheDeclaration) {
  AZCOLL_NEEDS(Outputs);
  const auto call = command();
  ASSERT_EQ(call->parameters().count(), 2U);
  EXPECT_EQ(call->parameters().item(named("testo")).direction(), ParameterDirection::InputOutput);
}

TEST_P(Procedures, ParametersAreFoundByNameWithoutRegardToCase) {
  const auto call = command();
  EXPECT_NO_THROW(static_cast<void>(call->parameters().item(named("CODICE"))));
  EXPECT_NO_THROW(static_cast<void>(call->parameters().item(named("codice"))));
  EXPECT_FALSE(failureOf([&] {
                 static_cast<void>(call->parameters().item(named("ALTRO")));
               }).fromProvider());
}

TEST_P(Procedures, TheRowsOutliveTheCommand) {
  const auto call = command();
  call->parameters().item(named("Codice")).setValue(std::int32_t{12});
  std::int64_t affected = 0;
  const auto rows = call->execute(affected, CommandOption::StoredProcedure);
  call->setActiveConnection(nullptr);
  ASSERT_NE(rows, nullptr);
  ASSERT_EQ(rows->recordCount(), 1);
  rows->setActiveConnection(nullptr);
  rows->find("DITTA = 12", 0, SearchDirection::Forward, Bookmark::First);
  EXPECT_FALSE(rows->atEnd());
}

TEST_P(Procedures, OutputsAreThereAfterTheCall) {
  AZCOLL_NEEDS(Outputs);
  const auto call = command();
  call->parameters().item(named("Codice")).setValue(std::int32_t{12});
  std::int64_t affected = 0;
  call->execute(affected, CommandOption::StoredProcedure);
  EXPECT_EQ(call->parameters().item(named("Testo")).value(), Variant{"codice 12"});
}

TEST_P(Procedures, ANullInputArrivesAsNull) {
  const auto call = command();
  call->parameters().item(named("Codice")).setValue(kNull);
  std::int64_t affected = 0;
  const auto rows = call->execute(affected, CommandOption::StoredProcedure);
  ASSERT_NE(rows, nullptr);
  EXPECT_TRUE(rows->fields().item("DITTA").value().isNull());
}

TEST_P(Procedures, AValueTakesTheDeclaredTypeBeforeItIsSent) {
  const auto given = [&](const Variant& value) {
    const auto call = command();
    call->parameters().item(named("Codice")).setValue(value);
    std::int64_t affected = 0;
    const auto rows = call->execute(affected, CommandOption::StoredProcedure);
    return rows->fields().item("DITTA").value().toInt64();
  };
  EXPECT_EQ(given(Decimal::parse("3.5").value()), 4);
  EXPECT_EQ(given(Decimal::parse("2.5").value()), 2);
  EXPECT_EQ(given(-2.7), -3);
  EXPECT_EQ(given("12.0"), 12);
  EXPECT_EQ(given("3.5"), 4);
}

TEST_P(Procedures, AValueThatCannotTakeTheDeclaredTypeIsNotSent) {
  for (const Variant& value :
       {Variant{"dodici"}, Variant{""}, Variant{std::int64_t{3'000'000'000}}}) {
    const auto call = command();
    call->parameters().item(named("Codice")).setValue(value);
    std::int64_t affected = 0;
    connection().errors().clear();
    EXPECT_FALSE(
        failureOf([&] { call->execute(affected, CommandOption::StoredProcedure); }).fromProvider())
        << value.text();
    EXPECT_EQ(connection().errors().count(), 0U);
  }
}

TEST_P(Procedures, OneThatIsNotThereIsAnErrorOfTheProvider) {
  const auto call = command();
  call->setCommandText("P9_MANCANTE");
  std::int64_t affected = 0;
  EXPECT_TRUE(
      failureOf([&] { call->execute(affected, CommandOption::StoredProcedure); }).fromProvider());
}

TEST_P(Procedures, TheParametersOfOneThatIsNotThereAreAnErrorOfTheProvider) {
  AZCOLL_NEEDS(Outputs);
  const auto call = command();
  call->setCommandText("P9_MANCANTE");
  const Error error =
      failureOf([&] { call->parameters().item(named("Codice")).setValue(std::int32_t{1}); });
  EXPECT_TRUE(error.fromProvider());
  EXPECT_EQ(error.info().nativeNumber, 2812);
  EXPECT_EQ(connection().errors().count(), 1U);
}

INSTANTIATE_TEST_SUITE_P(Providers, Procedures, testing::ValuesIn(providerNames()), nameOfCase);

}  // namespace
}  // namespace azcoll::test
