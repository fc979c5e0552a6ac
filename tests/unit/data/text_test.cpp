#include "data/text.h"

#include <cstdint>
#include <limits>
#include <string>

#include "gtest/gtest.h"

#include "data/error.h"
#include "data/error_list.h"

namespace azcoll {
namespace {

TEST(Join, PutsTextsNumbersAndVariantsTogether) {
  const std::string text = "B";
  EXPECT_EQ(join("A", text, std::string_view{"C"}, 1, std::int64_t{-2}, std::size_t{3},
                 Variant{std::int16_t{4}}, Variant{"D"}, Variant{true}),
            "ABC1-234DTrue");
  EXPECT_EQ(join(), "");
}

TEST(Join, TakesNullAndEmptyAsNothing) {
  EXPECT_EQ(join("[", Variant{}, "|", Variant{kNull}, "]"), "[|]");
}

TEST(Join, WritesTheLongestNumbers) {
  EXPECT_EQ(join(std::numeric_limits<std::int64_t>::min(), " ",
                 std::numeric_limits<std::uint64_t>::max()),
            "-9223372036854775808 18446744073709551615");
}

TEST(Join, TakesItsMemoryAtOnce) {
  const std::string part(100, 'x');
  const std::string joined = join(part, Variant{part}, part);
  EXPECT_EQ(joined.size(), 300U);
  EXPECT_EQ(joined.capacity(), 300U);
}

TEST(Join, RefusesAnObject) {
  EXPECT_THROW(static_cast<void>(join(Variant{std::shared_ptr<Object>{}})), Error);
}

TEST(Error, KeepsItsOwnFailuresApartFromTheProviders) {
  const Error own{"Tipo non corrispondente"};
  EXPECT_FALSE(own.fromProvider());
  EXPECT_STREQ(own.what(), "Tipo non corrispondente");
  EXPECT_EQ(own.info().source, "AZCOLLSRV");

  ErrorInfo info;
  info.description = "Violation of PRIMARY KEY constraint";
  info.nativeNumber = 2627;
  info.sqlState = "23000";
  const Error provider = Error::provider(info);
  EXPECT_TRUE(provider.fromProvider());
  EXPECT_EQ(provider.description(), "Violation of PRIMARY KEY constraint");
  EXPECT_EQ(provider.info().nativeNumber, 2627);
}

TEST(ErrorList, HoldsTheEntriesOfTheLastFailureUntilCleared) {
  ErrorList errors;
  EXPECT_EQ(errors.count(), 0U);
  errors.record({ErrorInfo{.description = "first"}, ErrorInfo{.description = "second"}});
  errors.record({ErrorInfo{.description = "third"}});
  ASSERT_EQ(errors.count(), 1U);
  EXPECT_EQ(errors.item(0).description, "third");
  EXPECT_THROW(static_cast<void>(errors.item(1)), Error);
  errors.clear();
  EXPECT_EQ(errors.count(), 0U);
}

TEST(ErrorList, NamesTheEntryThatIsMissing) {
  const ErrorList errors;
  try {
    static_cast<void>(errors.item(3));
    FAIL() << "no failure";
  } catch (const Error& error) {
    EXPECT_EQ(error.description(), "Elemento non trovato nella raccolta: 3");
  }
}

}  // namespace
}  // namespace azcoll
