#include <cstdint>
#include <gtest/gtest.h>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "component/numerazione_cg70.h"
#include "unit/service_frame/fakes.h"

namespace azcoll::frame_tests {
namespace {

constexpr std::int32_t kRecorded = 0;
constexpr std::int32_t kMissingData = 1;
constexpr std::int32_t kOtherMode = 2;
constexpr std::int32_t kDatabaseError = 3;

bool contains(std::string_view text, std::string_view part) {
  return text.find(part) != std::string_view::npos;
}

/// Records code 57 as customer code of company 10.
class Numbering : public ::testing::Test {
 protected:
  void SetUp() override {
    numbering.TipoDocumento = 901;
    numbering.Ditta = std::int32_t{10};
    numbering.Modo = 3;
    numbering.Sezione = "00";
    numbering.Anno = 0;
    numbering.Data = Date{.year = 2024, .month = 3, .day = 5};
    numbering.Codice = std::int32_t{57};
    numbering.Connessione = database;
    lastNumber({});
  }

  /// The table's row for the key, when it has one.
  void lastNumber(const std::vector<Variant>& values) const {
    database->rows.columns = {"CG70_ULTNUMDOC"};
    database->rows.values.clear();
    for (const Variant& value : values) {
      database->rows.values.push_back({value});
    }
  }

  [[nodiscard]] std::vector<std::string> changes() const {
    std::vector<std::string> found;
    for (const std::string& statement : database->statements) {
      if (!statement.starts_with("SELECT")) {
        found.push_back(statement);
      }
    }
    return found;
  }

  std::int32_t record() {
    numbering.ElaboraNumerazione();
    return numbering.Stato();
  }

  std::shared_ptr<FakeConnection> database = std::make_shared<FakeConnection>(true);
  NumerazioneCG70 numbering;
};

TEST_F(Numbering, ReadsTheRowOfItsKey) {
  EXPECT_EQ(record(), kRecorded);
  ASSERT_FALSE(database->statements.empty());
  const std::string& query = database->statements.front();
  EXPECT_TRUE(query.starts_with("SELECT")) << query;
  for (const char* part : {"CG70_ULTNUMDOC", "CG70_NUMERDOC", "CG70_DITTA_CG18 = 10",
                           "CG70_SEZ_CG68 = ", "'00'", "CG70_ANNO = 0", "CG70_TIPODOCINT = 901"}) {
    EXPECT_TRUE(contains(query, part)) << part << " in " << query;
  }
}

TEST_F(Numbering, InsertsTheMissingRow) {
  EXPECT_EQ(record(), kRecorded);
  ASSERT_EQ(changes().size(), 1U);
  const std::string insertion = changes().front();
  EXPECT_TRUE(insertion.starts_with("INSERT INTO CG70_NUMERDOC")) << insertion;
  for (const char* part : {"CG70_DITTA_CG18", "CG70_SEZ_CG68", "CG70_ANNO", "CG70_TIPODOCINT",
                           "CG70_ULTNUMDOC", "10", "'00'", "901", "57"}) {
    EXPECT_TRUE(contains(insertion, part)) << part << " in " << insertion;
  }
}

TEST_F(Numbering, RaisesALowerLastNumber) {
  lastNumber({std::int32_t{56}});
  EXPECT_EQ(record(), kRecorded);
  ASSERT_EQ(changes().size(), 1U);
  const std::string update = changes().front();
  EXPECT_TRUE(update.starts_with("UPDATE CG70_NUMERDOC")) << update;
  for (const char* part : {"CG70_ULTNUMDOC = 57", "CG70_DITTA_CG18 = 10", "'00'", "CG70_ANNO = 0",
                           "CG70_TIPODOCINT = 901"}) {
    EXPECT_TRUE(contains(update, part)) << part << " in " << update;
  }
}

TEST_F(Numbering, RaisesALastNumberThatWasNeverSet) {
  lastNumber({kNull});
  EXPECT_EQ(record(), kRecorded);
  ASSERT_EQ(changes().size(), 1U);
  EXPECT_TRUE(changes().front().starts_with("UPDATE")) << changes().front();
  EXPECT_TRUE(contains(changes().front(), "CG70_ULTNUMDOC = 57")) << changes().front();
}

TEST_F(Numbering, NeverLowersTheLastNumber) {
  for (const Variant& last : {Variant{std::int32_t{57}}, Variant{std::int32_t{58}},
                              Variant{*Decimal::parse("1000000")}, Variant{"100"}}) {
    lastNumber({last});
    EXPECT_EQ(record(), kRecorded) << last.text();
    EXPECT_TRUE(changes().empty()) << last.text();
  }
}

TEST_F(Numbering, ComparesAsNumbersNotAsTexts) {
  lastNumber({std::int32_t{9}});
  EXPECT_EQ(record(), kRecorded);
  ASSERT_EQ(changes().size(), 1U);
  EXPECT_TRUE(contains(changes().front(), "CG70_ULTNUMDOC = 57")) << changes().front();
}

TEST_F(Numbering, UsesTheGivenKey) {
  lastNumber({std::int32_t{1}});
  numbering.TipoDocumento = 902;
  numbering.Ditta = "12";
  numbering.Sezione = "07";
  numbering.Anno = 2024;
  numbering.Codice = "58";
  EXPECT_EQ(record(), kRecorded);
  for (const std::string& statement : database->statements) {
    for (const char* part :
         {"CG70_DITTA_CG18 = 12", "'07'", "CG70_ANNO = 2024", "CG70_TIPODOCINT = 902"}) {
      EXPECT_TRUE(contains(statement, part)) << part << " in " << statement;
    }
  }
  ASSERT_EQ(changes().size(), 1U);
  EXPECT_TRUE(contains(changes().front(), "CG70_ULTNUMDOC = 58"));
}

TEST_F(Numbering, ASectionCannotEndItsLiteral) {
  numbering.Sezione = "0'";
  EXPECT_EQ(record(), kRecorded);
  ASSERT_FALSE(database->statements.empty());
  for (const std::string& statement : database->statements) {
    EXPECT_TRUE(contains(statement, "'0'''")) << statement;
  }
}

TEST_F(Numbering, RefusesAnyOtherMode) {
  for (const int mode : {0, 1, 2, 4, -3}) {
    numbering.Modo = static_cast<std::int16_t>(mode);
    EXPECT_EQ(record(), kOtherMode) << mode;
  }
  EXPECT_TRUE(database->statements.empty());
}

TEST_F(Numbering, NeedsAConnection) {
  numbering.Connessione = nullptr;
  EXPECT_EQ(record(), kMissingData);
}

TEST_F(Numbering, NeedsAWholeNumberAsCompanyAndCode) {
  for (const Variant& bad :
       {Variant{}, Variant{kNull}, Variant{""}, Variant{"dieci"}, Variant{"10x"},
        Variant{"10; DROP TABLE CG70_NUMERDOC"}, Variant{*Decimal::parse("10.5")}, Variant{10.5},
        Variant{Date{}}, anObject(), Variant{*Decimal::parse("99999999999999999999999999")}}) {
    numbering.Ditta = bad;
    numbering.Codice = std::int32_t{57};
    EXPECT_EQ(record(), kMissingData) << "company of kind " << static_cast<int>(bad.kind());
    numbering.Ditta = std::int32_t{10};
    numbering.Codice = bad;
    EXPECT_EQ(record(), kMissingData) << "code of kind " << static_cast<int>(bad.kind());
  }
  EXPECT_TRUE(database->statements.empty());
}

TEST_F(Numbering, ReportsARefusedQuery) {
  database->failures["query"] = [] { refuse("no table"); };
  EXPECT_NO_THROW(EXPECT_EQ(record(), kDatabaseError));
  EXPECT_TRUE(changes().empty());
}

TEST_F(Numbering, ReportsARefusedInsertion) {
  database->failures["change"] = [] { refuse("duplicate key"); };
  EXPECT_NO_THROW(EXPECT_EQ(record(), kDatabaseError));
}

TEST_F(Numbering, ReportsARefusedUpdate) {
  lastNumber({std::int32_t{1}});
  database->failures["change"] = [] { refuse("read only"); };
  EXPECT_NO_THROW(EXPECT_EQ(record(), kDatabaseError));
}

TEST_F(Numbering, ReportsAClosedConnection) {
  numbering.Connessione = std::make_shared<FakeConnection>(false);
  EXPECT_NO_THROW(EXPECT_EQ(record(), kDatabaseError));
}

TEST_F(Numbering, ReportsALastNumberThatIsNone) {
  lastNumber({"x"});
  EXPECT_NO_THROW(EXPECT_EQ(record(), kDatabaseError));
  EXPECT_TRUE(changes().empty());
}

TEST_F(Numbering, ForgetsTheOutcomeOfTheLastTime) {
  numbering.Modo = 1;
  EXPECT_EQ(record(), kOtherMode);
  numbering.Modo = 3;
  EXPECT_EQ(record(), kRecorded);
  database->failures["query"] = [] { refuse("gone"); };
  EXPECT_EQ(record(), kDatabaseError);
  database->failures.clear();
  EXPECT_EQ(record(), kRecorded);
}

}  // namespace
}  // namespace azcoll::frame_tests
