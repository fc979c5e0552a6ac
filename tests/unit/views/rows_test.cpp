#include "views/rows.h"

#include <cstdint>
#include <memory>
#include <stdexcept>
#include <string_view>
#include <vector>

#include "gmock/gmock.h"
#include "gtest/gtest.h"

#include "data/error.h"
#include "support/test_database.h"
#include "views/query.h"

namespace azcoll::views {
namespace {

using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::SizeIs;
using ::testing::ThrowsMessage;

class Reading : public ::testing::Test {
 protected:
  [[nodiscard]] std::shared_ptr<Recordset> execute(std::string_view statement) const {
    std::int64_t affected = 0;
    return connection_->execute(statement, affected, CommandOption::Text);
  }

  std::shared_ptr<Connection> connection_ = test::openSchema();
};

TEST_F(Reading, GivesEveryRowFromTheFirstWhereverTheRecordsetStands) {
  const std::shared_ptr<Recordset> recordset =
      execute("SELECT 1 AS A, 'x' AS B UNION ALL SELECT 2, NULL ORDER BY A");
  recordset->moveNext();
  const Rows rows = readRows(*recordset);
  EXPECT_THAT(rows.columns, ElementsAre("A", "B"));
  EXPECT_THAT(rows.rows, ElementsAre(ElementsAre(Variant{1}, Variant{"x"}),
                                     ElementsAre(Variant{2}, Variant{kNull})));
}

TEST_F(Reading, NamesTheColumnsOfAResultWithoutRows) {
  const Rows rows = readRows(*execute("SELECT CG18_DITTA FROM CG18_ANADITTABASE WHERE 1 = 0"));
  EXPECT_THAT(rows.columns, ElementsAre("CG18_DITTA"));
  EXPECT_THAT(rows.rows, IsEmpty());
}

TEST_F(Reading, GivesEveryResultOfABatch) {
  const std::vector<Rows> results = readResults(execute("SELECT 1 AS A; SELECT 2 AS B, 3 AS C"));
  ASSERT_THAT(results, SizeIs(2));
  EXPECT_THAT(results[0].columns, ElementsAre("A"));
  EXPECT_THAT(results[1].columns, ElementsAre("B", "C"));
  EXPECT_THAT(readResults(nullptr), IsEmpty());
}

TEST_F(Reading, GivesNothingForAStatementWithoutResult) {
  const Rows rows = query(*connection_, "DELETE FROM CG38_PARCOGE WHERE 1 = 0");
  EXPECT_THAT(rows.columns, IsEmpty());
  EXPECT_THAT(rows.rows, IsEmpty());
}

TEST(ColumnIndex, FindsAColumnWhateverItsLetterCase) {
  const Rows rows{{"A", "cg86_Annoiva"}, {}};
  EXPECT_EQ(columnIndex(rows, "CG86_ANNOIVA"), 1U);
  EXPECT_THAT([&] { static_cast<void>(columnIndex(rows, "CG86_ANNOIV")); },
              ThrowsMessage<Error>(HasSubstr("Il risultato non ha la colonna CG86_ANNOIV")));
}

TEST(CompanyText, IsTheCodeAloneWithoutAName) {
  const CompanyNames names{{5, "Beta"}, {6, ""}};
  EXPECT_EQ(companyText(5, names), "5 Beta");
  EXPECT_EQ(companyText(6, names), "6");
  EXPECT_EQ(companyText(7, names), "7");
}

TEST(RequireCompany, RefusesACompanyThatIsNotThere) {
  const CompanyNames names{{5, "Beta"}};
  EXPECT_NO_THROW(requireCompany(5, names));
  EXPECT_THAT([&] { requireCompany(6, names); },
              ThrowsMessage<std::runtime_error>(HasSubstr("L'azienda 6 non esiste")));
}

}  // namespace
}  // namespace azcoll::views
