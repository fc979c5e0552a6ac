#include <cstdint>
#include <limits>
#include <memory>
#include <stdexcept>
#include <string>
#include <vector>

#include "data/text.h"
#include "unit/service_frame/support.h"

namespace azcoll::frame_tests {
namespace {

class DefaultValue : public ServiceTest {
 protected:
  Variant orDefault(const Variant& value) const {
    return call().ValoreDefault(value, Variant{"missing"});
  }
};

TEST_F(DefaultValue, NullEmptyAndBlankTextGiveTheDefault) {
  for (const Variant& value : {Variant{}, Variant{kNull}, Variant{""}, Variant{std::string{}}}) {
    EXPECT_EQ(orDefault(value), Variant{"missing"});
  }
  expectOutcome(kSucceeded, Variant{});
}

TEST_F(DefaultValue, EveryOtherValueComesBackUnchanged) {
  const std::vector<Variant> values{Variant{false},
                                    Variant{true},
                                    Variant{std::int16_t{0}},
                                    Variant{std::int32_t{0}},
                                    Variant{std::int64_t{5000000000}},
                                    Variant{0.0},
                                    Variant{*Decimal::parse("12.50")},
                                    Variant{Date{.year = 2024, .month = 2, .day = 29}},
                                    Variant{"0"},
                                    Variant{" "},
                                    Variant{"è"}};
  for (const Variant& value : values) {
    EXPECT_EQ(orDefault(value), value);
  }
  expectOutcome(kSucceeded, Variant{});
}

TEST_F(DefaultValue, TheDefaultMayBeOfAnyKind) {
  EXPECT_EQ(call().ValoreDefault(kNull, std::int16_t{-1}), Variant{std::int16_t{-1}});
  EXPECT_EQ(call().ValoreDefault(kNull, kNull), Variant{kNull});
  EXPECT_EQ(call().ValoreDefault(kNull, Variant{}), Variant{});
  EXPECT_NE(call().ValoreDefault("", anObject()).object(), nullptr);
  expectOutcome(kSucceeded, Variant{});
}

TEST_F(DefaultValue, AnObjectIsAFailureThatLeavesTheMessage) {
  service->Errore = "before";
  EXPECT_EQ(orDefault(anObject()), Variant{});
  expectOutcome(kTrappedFailure, Variant{"before"});
}

TEST_F(DefaultValue, AReferenceToNoObjectIsAFailureToo) {
  EXPECT_EQ(orDefault(Variant{std::shared_ptr<Object>{}}), Variant{});
  expectOutcome(kTrappedFailure, Variant{});
}

class ReferenceYear : public ServiceTest {
 protected:
  [[nodiscard]] Variant year(bool numeric) const {
    return call().AnnoRiferimento(numeric ? ZeroYear::IsMissing : ZeroYear::IsAYear);
  }
  void expectYear(std::int64_t expected) const {
    for (const bool numeric : {true, false}) {
      const Variant found = year(numeric);
      EXPECT_TRUE(sameValue(found, Variant{expected}))
          << "numeric " << numeric << ", kind " << static_cast<int>(found.kind());
    }
    expectOutcome(kSucceeded, Variant{});
  }
};

TEST_F(ReferenceYear, TheGivenYearComesBackUnchanged) {
  input().DataInizioElaborazione = "05/03/1999";
  for (const Variant& given : {Variant{std::int16_t{2024}}, Variant{std::int32_t{2024}},
                               Variant{"2024"}, Variant{*Decimal::parse("2024")}}) {
    input().AnnoSolare = given;
    EXPECT_EQ(year(true), given);
    EXPECT_EQ(year(false), given);
  }
}

TEST_F(ReferenceYear, AMissingYearIsThatOfTheStartDate) {
  input().DataInizioElaborazione = Date{.year = 2019, .month = 12, .day = 31};
  for (const Variant& missing : {Variant{}, Variant{kNull}, Variant{""}}) {
    input().AnnoSolare = missing;
    expectYear(2019);
  }
}

TEST_F(ReferenceYear, TheStartDateMayBeAText) {
  for (const char* text : {"31/12/2019", "2019-12-31", "20191231", "31/12/2019 23:59:59"}) {
    input().DataInizioElaborazione = text;
    expectYear(2019);
  }
}

TEST_F(ReferenceYear, WithoutADateItIsTheYearOfTheDayOfThePlatform) {
  for (const Variant& missing : {Variant{}, Variant{kNull}, Variant{""}}) {
    input().DataInizioElaborazione = missing;
    expectYear(2031);
  }
}

TEST_F(ReferenceYear, ZeroIsNoYearUnderTheNumericMarker) {
  for (const Variant& zero :
       {Variant{std::int16_t{0}}, Variant{std::int32_t{0}}, Variant{std::int64_t{0}}, Variant{0.0},
        Variant{*Decimal::parse("0.00")}, Variant{"0"}, Variant{"00"}, Variant{"0.00"},
        Variant{"-0"}, Variant{false}}) {
    input().AnnoSolare = zero;
    input().DataInizioElaborazione = "31/12/2019";
    EXPECT_TRUE(sameValue(year(true), std::int32_t{2019}));
    input().DataInizioElaborazione = Variant{};
    EXPECT_TRUE(sameValue(year(true), std::int32_t{2031}));
  }
}

TEST_F(ReferenceYear, ZeroIsAYearUnderTheTextMarker) {
  input().DataInizioElaborazione = "31/12/2019";
  for (const Variant& zero : {Variant{std::int16_t{0}}, Variant{std::int32_t{0}}, Variant{"0"}}) {
    input().AnnoSolare = zero;
    EXPECT_EQ(year(false), zero);
  }
}

// A guess would have a method work on a year that nobody named.
TEST_F(ReferenceYear, AStartDateThatCannotBeReadGivesNoYear) {
  for (const Variant& bad :
       {Variant{"31/02/2024"}, Variant{"01-03-2025"}, Variant{"2024-02-31"}, Variant{"domani"},
        Variant{"2024"}, Variant{" "}, Variant{std::int32_t{2024}}, Variant{true}, Variant{2024.0},
        Variant{*Decimal::parse("20240301")}}) {
    input().DataInizioElaborazione = bad;
    for (const Variant& missing : {Variant{}, Variant{kNull}, Variant{""}}) {
      input().AnnoSolare = missing;
      EXPECT_TRUE(year(false).isEmpty()) << join(bad);
      EXPECT_TRUE(year(true).isEmpty()) << join(bad);
    }
    expectOutcome(kSucceeded, Variant{});
  }
}

TEST_F(ReferenceYear, AGivenYearNeedsNoDateThatCanBeRead) {
  input().DataInizioElaborazione = "domani";
  input().AnnoSolare = std::int32_t{2024};
  EXPECT_EQ(year(true), Variant{std::int32_t{2024}});
  EXPECT_EQ(year(false), Variant{std::int32_t{2024}});
}

TEST_F(ReferenceYear, AnObjectInsteadOfADateGivesNoYearAndLeavesTheOutcome) {
  service->Errore = "before";
  for (const Variant& none : {anObject(), Variant{std::shared_ptr<Object>{}}}) {
    input().DataInizioElaborazione = none;
    EXPECT_TRUE(year(true).isEmpty());
    EXPECT_TRUE(year(false).isEmpty());
    expectOutcome(kSucceeded, Variant{"before"});
  }
}

TEST_F(ReferenceYear, AClockThatFailsIsSwallowed) {
  platform->failures["today"] = [] { throw std::runtime_error{"no clock"}; };
  EXPECT_EQ(join(year(false)), "");
  EXPECT_EQ(year(true).toInt64(), 0);
  expectOutcome(kSucceeded, Variant{});
}

TEST_F(ReferenceYear, AnObjectInsteadOfAYearCountsAsMissing) {
  service->Errore = "before";
  input().AnnoSolare = anObject();
  input().DataInizioElaborazione = "31/12/2019";
  EXPECT_TRUE(sameValue(year(true), std::int32_t{2019}));
  EXPECT_TRUE(sameValue(year(false), std::int32_t{2019}));
  expectOutcome(kTrappedFailure, Variant{"before"});
}

TEST_F(ReferenceYear, AMissingInputIsSwallowed) {
  service->CPInput = nullptr;
  EXPECT_NO_THROW(static_cast<void>(year(true)));
  EXPECT_EQ(service->Errore, Variant{});
}

TEST(EmptyRecordset, NoRecordsetIsEmpty) { EXPECT_TRUE(RecordsetVuoto(nullptr)); }

TEST(EmptyRecordset, ARecordsetWithoutRowsIsEmpty) {
  EXPECT_TRUE(RecordsetVuoto(std::make_shared<FakeRecordset>()));
}

TEST(EmptyRecordset, ARecordsetOnARowIsNotEmpty) {
  EXPECT_FALSE(RecordsetVuoto(std::make_shared<FakeRecordset>(oneLink())));
}

TEST(EmptyRecordset, ARecordsetBehindItsLastRowIsNotEmpty) {
  const auto rs = std::make_shared<FakeRecordset>(oneLink());
  rs->moveNext();
  ASSERT_TRUE(rs->atEnd());
  EXPECT_FALSE(RecordsetVuoto(rs));
}

TEST(EmptyRecordset, AFailureLeavesItEmpty) {
  for (const char* operation : {"atStart", "atEnd"}) {
    // At its end, so that the second question is asked whichever comes first.
    const auto rs = std::make_shared<FakeRecordset>(Rows{});
    rs->failures[operation] = [] { refuse("closed"); };
    EXPECT_TRUE(RecordsetVuoto(rs)) << operation;
    rs->failures[operation] = [] { throw 3; };
    EXPECT_TRUE(RecordsetVuoto(rs)) << operation;
  }
}

std::string formatted(const Variant& value, int width) {
  return FormattaCampo(value, static_cast<std::int16_t>(width));
}

TEST(FixedWidth, TrimsThenPads) { EXPECT_EQ(formatted("  AB ", 4), "AB  "); }

TEST(FixedWidth, NullAndEmptyAreBlanks) {
  EXPECT_EQ(formatted(kNull, 3), "   ");
  EXPECT_EQ(formatted(Variant{}, 3), "   ");
  EXPECT_EQ(formatted("", 3), "   ");
  EXPECT_EQ(formatted("     ", 3), "   ");
}

TEST(FixedWidth, CutsALongerValue) {
  EXPECT_EQ(formatted("ABCDEF", 4), "ABCD");
  EXPECT_EQ(formatted("ABCD", 4), "ABCD");
  EXPECT_EQ(formatted("  ABCDEF", 4), "ABCD");
}

TEST(FixedWidth, KeepsInnerBlanks) {
  EXPECT_EQ(formatted(" A B ", 5), "A B  ");
  EXPECT_EQ(formatted("A  B", 3), "A  ");
}

TEST(FixedWidth, AnAccentedLetterIsOneCharacter) {
  EXPECT_EQ(formatted("Attività", 10), "Attività  ");
  EXPECT_EQ(formatted("Attività", 8), "Attività");
  EXPECT_EQ(formatted("àèìòù", 3), "àèì");
  EXPECT_EQ(formatted("€", 2), "€ ");
}

TEST(FixedWidth, NumbersAndDatesUseTheirTextForm) {
  EXPECT_EQ(formatted(std::int32_t{12}, 4), "12  ");
  EXPECT_EQ(formatted(std::int16_t{-5}, 3), "-5 ");
  EXPECT_EQ(formatted(*Decimal::parse("12.50"), 6), "12.50 ");
  EXPECT_EQ(formatted(Date{.year = 2024, .month = 3, .day = 5}, 12), "05/03/2024  ");
  EXPECT_EQ(formatted(true, 5), "True ");
}

TEST(FixedWidth, NoWidthGivesNoText) {
  EXPECT_EQ(formatted("ABC", 0), "");
  EXPECT_EQ(formatted(kNull, 0), "");
}

TEST(FixedWidth, ANegativeWidthGivesNoText) {
  for (const int width : {-1, -32768}) {
    EXPECT_EQ(formatted("ABC", width), "");
    EXPECT_EQ(formatted(kNull, width), "");
  }
}

TEST(FixedWidth, TheWidestFieldIsFilled) {
  EXPECT_EQ(formatted("A", 32767).size(), 32767U);
  EXPECT_EQ(formatted(kNull, 32767), std::string(32767, ' '));
  EXPECT_EQ(formatted(std::string(40000, 'x'), 32767), std::string(32767, 'x'));
}

TEST(FixedWidth, AnObjectIsSwallowed) {
  EXPECT_NO_THROW(static_cast<void>(formatted(anObject(), 3)));
}

class DuplicationFlag : public ServiceTest {
 protected:
  [[nodiscard]] int flag(const Variant& given) const {
    input().AttivaGestioneDuplicazioneCliFor = given;
    return call().ValoreGestioneDuplicazioneCliFor();
  }
};

TEST_F(DuplicationFlag, TruthValuesAreOneAndZero) {
  EXPECT_EQ(flag(true), 1);
  EXPECT_EQ(flag(false), 0);
}

TEST_F(DuplicationFlag, NumbersGiveTheirAbsoluteValue) {
  EXPECT_EQ(flag(std::int16_t{1}), 1);
  EXPECT_EQ(flag(std::int16_t{-1}), 1);
  EXPECT_EQ(flag(std::int32_t{0}), 0);
  EXPECT_EQ(flag(std::int64_t{-1}), 1);
  EXPECT_EQ(flag(1.0), 1);
  EXPECT_EQ(flag(*Decimal::parse("-1.00")), 1);
}

TEST_F(DuplicationFlag, TextsThatHoldANumberConvert) {
  EXPECT_EQ(flag("1"), 1);
  EXPECT_EQ(flag("-1"), 1);
  EXPECT_EQ(flag("0"), 0);
}

TEST_F(DuplicationFlag, AGivenValueWinsOverTheFlagOfTheService) {
  session.Mbol_GestioneDuplicazioneCliFor = true;
  EXPECT_EQ(flag(false), 0);
  EXPECT_EQ(flag("0"), 0);
  EXPECT_EQ(flag(std::int16_t{0}), 0);
  session.Mbol_GestioneDuplicazioneCliFor = false;
  EXPECT_EQ(flag(true), 1);
}

TEST_F(DuplicationFlag, AMissingValueFallsBackToTheFlagOfTheService) {
  for (const Variant& missing : {Variant{}, Variant{kNull}, Variant{""}}) {
    session.Mbol_GestioneDuplicazioneCliFor = true;
    EXPECT_EQ(flag(missing), 1);
    session.Mbol_GestioneDuplicazioneCliFor = false;
    EXPECT_EQ(flag(missing), 0);
  }
}

TEST_F(DuplicationFlag, AValueThatDoesNotConvertGivesZero) {
  for (const bool fallback : {true, false}) {
    session.Mbol_GestioneDuplicazioneCliFor = fallback;
    EXPECT_EQ(flag("forse"), 0);
    EXPECT_EQ(flag(std::int32_t{40000}), 0);
    EXPECT_EQ(flag(std::int64_t{-5000000000}), 0);
    EXPECT_EQ(flag(std::numeric_limits<double>::quiet_NaN()), 0);
    EXPECT_EQ(flag(1e300), 0);
  }
  expectOutcome(kSucceeded, Variant{});
}

TEST_F(DuplicationFlag, AnAbsoluteValueBeyond16BitsGivesZero) {
  EXPECT_EQ(flag(std::numeric_limits<std::int16_t>::min()), 0);
  EXPECT_EQ(flag("-32768"), 0);
  EXPECT_EQ(flag(std::int16_t{-32767}), 32767);
}

TEST_F(DuplicationFlag, AMissingInputGivesZero) {
  service->CPInput = nullptr;
  EXPECT_EQ(call().ValoreGestioneDuplicazioneCliFor(), 0);
  EXPECT_EQ(service->Errore, Variant{});
}

}  // namespace
}  // namespace azcoll::frame_tests
