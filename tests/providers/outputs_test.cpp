// Texts and numbers on their way into a procedure and out of it again, whatever the server tells of
// the length and the digits of its parameters.

#include <string>

#include "providers/provider.h"

namespace azcoll::test {
namespace {

constexpr const char* kProcedure =
    "CREATE PROCEDURE P1_PROVA @Testo VARCHAR(8000), @Esteso NVARCHAR(4000),"
    " @Importo DECIMAL(18,4) = 3.25,"
    " @Breve VARCHAR(20) = NULL OUTPUT, @Lungo VARCHAR(8000) = NULL OUTPUT,"
    " @Largo NVARCHAR(4000) = NULL OUTPUT AS BEGIN SET NOCOUNT ON"
    " SET @Breve = @Testo SET @Lungo = @Testo SET @Largo = @Esteso SELECT @Importo AS IMPORTO END";
constexpr const char* kTotal =
    "CREATE PROCEDURE P2_PROVA @Importo DECIMAL(18,4), @Totale DECIMAL(18,4) = NULL OUTPUT AS BEGIN"
    " SET NOCOUNT ON SET @Totale = @Importo END";

class Outputs : public OnProvider {
 protected:
  void SetUp() override {
    OnProvider::SetUp();
    if (IsSkipped()) {
      return;
    }
    AZCOLL_NEEDS(Outputs);
    AZCOLL_NEEDS(Procedures);
    drop();
    run(kProcedure);
    call_ = connection().newCommand();
    call_->setActiveConnection(shared());
    call_->setCommandText("P1_PROVA");
    call_->setCommandType(CommandOption::StoredProcedure);
  }
  void TearDown() override {
    if (call_) {
      drop();
    }
    OnProvider::TearDown();
  }

  /// The procedure gives its inputs back.
  std::shared_ptr<Recordset> call(const Variant& testo, const Variant& esteso,
                                  const Variant& importo = kNull) {
    call_->parameters().item("@Testo").setValue(testo);
    call_->parameters().item("@Esteso").setValue(esteso);
    call_->parameters().item("@Importo").setValue(importo);
    std::int64_t affected = 0;
    return call_->execute(affected, CommandOption::StoredProcedure);
  }
  Variant output(std::string_view name) { return call_->parameters().item(name).value(); }

 private:
  void drop() {
    for (const char* const name : {"P1_PROVA", "P2_PROVA"}) {
      try {
        run(std::string{"DROP PROCEDURE "} + name);
      } catch (const Error&) {
        connection().errors().clear();
      }
    }
  }

  std::shared_ptr<Command> call_;
};

std::string repeated(std::string_view text, std::size_t times) {
  std::string result;
  for (std::size_t i = 0; i < times; ++i) {
    result += text;
  }
  return result;
}

TEST_P(Outputs, ComeBackWhole) {
  call("12, 15, 20", "12, 15");
  EXPECT_EQ(output("@Breve"), Variant{"12, 15, 20"});
  EXPECT_EQ(output("@Lungo"), Variant{"12, 15, 20"});
  EXPECT_EQ(output("@Largo"), Variant{"12, 15"});
}

TEST_P(Outputs, HoldTheirFullDeclaredLength) {
  call(repeated("x", 8000), repeated("y", 4000));
  EXPECT_EQ(output("@Breve"), Variant{repeated("x", 20)});
  EXPECT_EQ(output("@Lungo"), Variant{repeated("x", 8000)});
  EXPECT_EQ(output("@Largo"), Variant{repeated("y", 4000)});
}

TEST_P(Outputs, KeepCharactersThatAreNotAscii) {
  call("Forlì, però", repeated("€è", 2000));
  EXPECT_EQ(output("@Breve"), Variant{"Forlì, però"});
  EXPECT_EQ(output("@Lungo"), Variant{"Forlì, però"});
  EXPECT_EQ(output("@Largo"), Variant{repeated("€è", 2000)});
}

TEST_P(Outputs, TellAnEmptyTextFromNull) {
  call("", "");
  EXPECT_EQ(output("@Breve"), Variant{""});
  EXPECT_EQ(output("@Lungo"), Variant{""});
  EXPECT_EQ(output("@Largo"), Variant{""});
  call(kNull, kNull);
  EXPECT_TRUE(output("@Breve").isNull());
  EXPECT_TRUE(output("@Lungo").isNull());
  EXPECT_TRUE(output("@Largo").isNull());
}

TEST_P(Outputs, ADecimalInputArrivesWithAllItsDigitsWhateverTheServerTellsOfThem) {
  for (const char* const text : {"12345678901234.5678", "-0.0001", "0", "12.5"}) {
    const Decimal number = Decimal::parse(text).value();
    const auto rows = call("", "", number);
    EXPECT_EQ(rows->fields().item("IMPORTO").value().toDecimal(), number) << text;
  }
}

TEST_P(Outputs, ADecimalComesBackExactlyOrIsRefusedByName) {
  run(kTotal);
  const auto total = connection().newCommand();
  total->setActiveConnection(shared());
  total->setCommandText("P2_PROVA");
  total->setCommandType(CommandOption::StoredProcedure);
  for (const char* const text : {"12345678901234.5678", "-0.0001", "0", "12.5"}) {
    const Decimal number = Decimal::parse(text).value();
    total->parameters().item("@Importo").setValue(number);
    std::int64_t affected = 0;
    try {
      total->execute(affected, CommandOption::StoredProcedure);
      EXPECT_EQ(total->parameters().item("@Totale").value().toDecimal(), number) << text;
    } catch (const Error& error) {
      EXPECT_EQ(error.info().sqlState, "HYC00") << error.description();
      EXPECT_TRUE(error.description().find("@Totale") != std::string::npos ||
                  error.description().find("@totale") != std::string::npos)
          << error.description();
      EXPECT_FALSE(error.info().connectionLost);
    }
  }
  call("12", "12");  // the connection goes on
  EXPECT_EQ(output("@Breve"), Variant{"12"});
}

TEST_P(Outputs, AnInputLeftEmptyTakesItsDeclaredDefault) {
  const auto rows = call("12, 15", "città", Variant{});
  ASSERT_EQ(rows->recordCount(), 1);
  EXPECT_EQ(rows->fields().item("IMPORTO").value().toDecimal(), Decimal::parse("3.25").value());
  EXPECT_EQ(rows->nextRecordset(), nullptr);
  EXPECT_EQ(output("@Breve"), Variant{"12, 15"});
  EXPECT_EQ(output("@Lungo"), Variant{"12, 15"});
  EXPECT_EQ(output("@Largo"), Variant{"città"});
}

TEST_P(Outputs, AnInputLeftEmptyWithoutADefaultIsRefusedByTheDatabase) {
  const Error error = failureOf([&] { call(Variant{}, "x", Variant{}); });
  EXPECT_TRUE(error.fromProvider());
  EXPECT_FALSE(error.description().empty());
}

INSTANTIATE_TEST_SUITE_P(Providers, Outputs, testing::ValuesIn(providerNames()), nameOfCase);

}  // namespace
}  // namespace azcoll::test
