#include "views/group.h"

#include <algorithm>
#include <cstdint>
#include <iterator>
#include <memory>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

#include "gmock/gmock.h"
#include "gtest/gtest.h"

#include "support/test_database.h"
#include "views/activities.h"
#include "views/group_history.h"

namespace azcoll::views {
namespace {

using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::SizeIs;
using ::testing::ThrowsMessage;

class Views : public ::testing::Test {
 protected:
  void execute(const std::string& statement) const {
    std::int64_t affected = 0;
    connection_->execute(statement, affected, CommandOption::Text);
  }

  /// Links a company to the group of another.
  void link(int year, int main, int linked) const {
    execute(
        "INSERT INTO CG86_AZIENDECOLL (CG86_INDTIPO, CG86_ANNOIVA, CG86_INDTIPOCONT,"
        " CG86_DITTA_CG18, CG86_DITTACOLL_CG18) VALUES (0, " +
        std::to_string(year) + ", 0, " + std::to_string(main) + ", " + std::to_string(linked) +
        ")");
  }

  static std::vector<std::int32_t> companiesOf(const Group& group) {
    std::vector<std::int32_t> companies;
    std::ranges::transform(group.members, std::back_inserter(companies), &GroupMember::company);
    return companies;
  }

  std::shared_ptr<Connection> connection_ = test::openExample();
};

TEST_F(Views, AGroupIsItsMainCompanyThenTheLinkedOnesByCode) {
  const GroupView view = readGroups(connection_, 12, {2024, 2024});
  EXPECT_THAT(view.linkedYears, ElementsAre(2024, 2025));
  ASSERT_THAT(view.years, SizeIs(1));
  ASSERT_THAT(view.years[0].groups, SizeIs(1));
  EXPECT_EQ(view.years[0].groups[0].main, 10);
  EXPECT_THAT(companiesOf(view.years[0].groups[0]), ElementsAre(10, 5, 12, 15));
  EXPECT_TRUE(isIn(view.years[0].groups[0], 15));
  EXPECT_FALSE(isIn(view.years[0].groups[0], 20));
}

TEST_F(Views, TheGroupThatCountsComesFirst) {
  link(2024, 30, 12);
  const GroupView view = readGroups(connection_, 12, {2024, 2024});
  ASSERT_THAT(view.years[0].groups, SizeIs(2));
  EXPECT_EQ(view.years[0].groups[0].main, 10);
  const Group& other = view.years[0].groups[1];
  const auto member = std::ranges::find(other.members, 12, &GroupMember::company);
  ASSERT_NE(member, other.members.end());
  EXPECT_EQ(member->sharing.group, 10);
  EXPECT_THAT(member->otherGroups, ElementsAre(10));
}

TEST_F(Views, AYearWithoutLinksHasNoGroup) {
  const GroupView view = readGroups(connection_, 10, {2018, 2019});
  ASSERT_THAT(view.years, SizeIs(2));
  EXPECT_THAT(view.years[0].groups, IsEmpty());
  EXPECT_THAT(view.years[1].groups, IsEmpty());
}

TEST_F(Views, ACompanyThatIsNotThereHasNoView) {
  EXPECT_THAT(
      [&] {
        static_cast<void>(readGroups(connection_, 99, {2024, 2024}));
      },
      ThrowsMessage<std::runtime_error>(HasSubstr("L'azienda 99 non esiste")));
  EXPECT_THAT([&] { static_cast<void>(readActivities(connection_, 99, 2024)); },
              ThrowsMessage<std::runtime_error>(HasSubstr("L'azienda 99 non esiste")));
}

TEST_F(Views, TheHistoryOfAGroupMarksWhoJoinsLeavesAndChanges) {
  link(2025, 10, 20);
  execute(
      "DELETE FROM CG86_AZIENDECOLL WHERE CG86_ANNOIVA = 2025 AND CG86_DITTA_CG18 = 10"
      " AND CG86_DITTACOLL_CG18 = 15");
  const std::vector<GroupHistory> groups = historiesOf(readGroups(connection_, 10, {2024, 2025}));
  ASSERT_THAT(groups, SizeIs(1));
  std::vector<std::pair<std::int32_t, Change>> changes;
  for (const CompanyHistory& company : groups.front()) {
    EXPECT_EQ(company.change(0), Change::None);
    changes.emplace_back(company.company, company.change(1));
  }
  EXPECT_THAT(changes, ElementsAre(std::pair{10, Change::None}, std::pair{5, Change::None},
                                   std::pair{12, Change::Altered}, std::pair{15, Change::Left},
                                   std::pair{20, Change::Joined}));
}

TEST(AccountingType, CountsAsZeroWhenItIsMissing) {
  EXPECT_EQ(accountingTypeText(kNull), "non indicato");
  EXPECT_EQ(accountingTypeText(std::int16_t{2}), "2");
  EXPECT_FALSE(stopsPropagation(kNull));
  EXPECT_FALSE(stopsPropagation(std::int16_t{0}));
  EXPECT_TRUE(stopsPropagation(std::int16_t{1}));
}

TEST_F(Views, ActivitiesAreComparedWithTheYearBeforeThroughTheirTextForm) {
  ActivityView view = readActivities(connection_, 10, 2024);
  ASSERT_THAT(view.current.activities, SizeIs(3));
  view.previous.activities = view.current.activities;
  EXPECT_THAT(changesOf(view), IsEmpty());
  view.previous.activities.front().settings.front() = "altro";
  view.current.activities.pop_back();
  const std::vector<ActivityChange> changes = changesOf(view);
  ASSERT_THAT(changes, SizeIs(2));
  EXPECT_EQ(std::ranges::count(changes, ActivityChangeKind::Altered, &ActivityChange::kind), 1);
  EXPECT_EQ(std::ranges::count(changes, ActivityChangeKind::Gone, &ActivityChange::kind), 1);
}

}  // namespace
}  // namespace azcoll::views
