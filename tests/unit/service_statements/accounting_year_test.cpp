#include "configuration_fixture.h"

namespace azcoll::test {
namespace {

std::string statement(const std::string& first, const std::string& last,
                      const std::string& company = "20") {
  return " SELECT COUNT(1)\r"
         " FROM   CG19_ANADITTAESER WITH (NOLOCK)\r"
         " WHERE  CG19_DITTA_CG18 = " +
         company +
         "\r"
         "   AND (CG19_DATAAPE BETWEEN  '" +
         first + "' AND '" + last +
         "'\r"
         "        OR CG19_DATACHIU BETWEEN  '" +
         first + "' AND '" + last +
         "'\r"
         "        OR (CG19_DATAAPE < '" +
         first + "' AND CG19_DATACHIU > '" + last +
         "')\r"
         "       ) ";
}

class AccountingYearTest : public ConfigurationTest {
 protected:
  AccountingYearTest() { counted(1); }
  // The count has no column name: it is read by position.
  void counted(const Variant& found) {
    connection->answerPrefix(" SELECT COUNT(1)\r", rowSet({""}, {found}));
  }
};

/// A converter that takes down its texts and numbers the dates it gives.
class NotingConverter final : public DateConverter {
 public:
  NotingConverter(Lines& texts, int result) : texts_{texts}, result_{result} {}
  void setText(std::string_view text) override { texts_.emplace_back(text); }
  [[nodiscard]] int validationResult() const override { return result_; }
  [[nodiscard]] std::string databaseForm() const override {
    return "D" + std::to_string(texts_.size());
  }

 private:
  Lines& texts_;
  int result_;
};

TEST_F(AccountingYearTest, CountsTheYearsThatTouchTheCalendarYear) {
  EXPECT_TRUE(service.VerificaAnnoIvaEsercizioContabile());
  EXPECT_EQ(steps(), Lines{statement("20240101", "20241231")});
  EXPECT_EQ(connection->operations.size(), 1U);
  EXPECT_EQ(connection->operations.front().name, "Execute");
  EXPECT_EQ(connection->operations.front().options, Ints{1});
  expectSilentSuccess();
}

TEST_F(AccountingYearTest, NoneMeansNo) {
  counted(0);
  EXPECT_FALSE(service.VerificaAnnoIvaEsercizioContabile());
  expectSilentSuccess();
  counted(3);
  EXPECT_TRUE(service.VerificaAnnoIvaEsercizioContabile());
}

TEST_F(AccountingYearTest, TheYearIsThatOfTheCall) {
  input().AnnoSolare = "2022";
  (void)service.VerificaAnnoIvaEsercizioContabile();
  EXPECT_EQ(steps().back(), statement("20220101", "20221231"));
  input().AnnoSolare = kNull;
  input().DataInizioElaborazione = "30/06/2019";
  (void)service.VerificaAnnoIvaEsercizioContabile();
  EXPECT_EQ(steps().back(), statement("20190101", "20191231"));
  input().DataInizioElaborazione = Variant{};
  platform->now = Date{.year = 2031, .month = 12, .day = 31};
  (void)service.VerificaAnnoIvaEsercizioContabile();
  EXPECT_EQ(steps().back(), statement("20310101", "20311231"));
}

TEST_F(AccountingYearTest, TheDaysAreWrittenAsTheFrameworkWritesThem) {
  Lines texts;
  platform->converter = [&texts] { return std::make_unique<NotingConverter>(texts, 0); };
  (void)service.VerificaAnnoIvaEsercizioContabile();
  EXPECT_EQ(texts, (Lines{"01/01/2024", "31/12/2024"}));
  EXPECT_EQ(steps().back(), statement("D1", "D2"));
}

TEST_F(AccountingYearTest, DaysThatTheFrameworkRefusesAreWrittenAsNothing) {
  Lines texts;
  platform->converter = [&texts] { return std::make_unique<NotingConverter>(texts, 1); };
  (void)service.VerificaAnnoIvaEsercizioContabile();
  EXPECT_EQ(steps().back(), statement("", ""));
}

// Such a year has no first and no last day: the texts hold nothing between their quotes.
TEST_F(AccountingYearTest, AYearOutsideTheCalendarIsTouchedByNone) {
  counted(0);
  for (const Variant& year :
       {Variant{std::int16_t{0}}, Variant{std::int32_t{-1}}, Variant{std::int32_t{10000}},
        Variant{"0"}, Variant{"10000"}, Variant{std::int64_t{5000000000}},
        Variant{*Decimal::parse("-3.00")}}) {
    input().AnnoSolare = year;
    connection->operations.clear();
    EXPECT_FALSE(service.VerificaAnnoIvaEsercizioContabile()) << year.text();
    EXPECT_EQ(steps(), Lines{statement("", "")}) << year.text();
    expectSilentSuccess();
  }
  for (const std::int32_t year : {1, 9999}) {
    input().AnnoSolare = year;
    (void)service.VerificaAnnoIvaEsercizioContabile();
    const std::string digits = year == 1 ? "0001" : "9999";
    EXPECT_EQ(steps().back(), statement(digits + "0101", digits + "1231"));
  }
}

TEST_F(AccountingYearTest, AYearThatIsNoNumberIsAFailure) {
  input().AnnoSolare = "duemila";
  EXPECT_FALSE(service.VerificaAnnoIvaEsercizioContabile());
  EXPECT_EQ(service.Stato, Variant{std::int16_t{99}});
  EXPECT_TRUE(service.Errore.text().ends_with(" in VerificaAnnoIvaEsercizioContabile"))
      << service.Errore.text();
  EXPECT_TRUE(connection->operations.empty());
}

TEST_F(AccountingYearTest, AFailingCountIsReportedUnderTheMethodsName) {
  for (const Failure failure : {Failure::Provider, Failure::Own, Failure::Foreign}) {
    connection->fail(" SELECT COUNT(1)\r", failure, "Rotto");
    EXPECT_FALSE(service.VerificaAnnoIvaEsercizioContabile());
    expectState(99, "Rotto in VerificaAnnoIvaEsercizioContabile");
  }
}

TEST_F(AccountingYearTest, ACallWithoutCompanyOrConnectionDoesNothing) {
  input().Pvar_Ditta = Variant{};
  EXPECT_FALSE(service.VerificaAnnoIvaEsercizioContabile());
  expectState(1, "Codice azienda mancante!");
  input().Connessione = nullptr;
  EXPECT_FALSE(service.VerificaAnnoIvaEsercizioContabile());
  expectState(1, "Stringa di connessione mancante!");
  EXPECT_TRUE(connection->operations.empty());
}

}  // namespace
}  // namespace azcoll::test
