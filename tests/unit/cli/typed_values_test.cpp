#include "cli/commands/typed_values.h"

#include <limits>

#include "gmock/gmock.h"
#include "gtest/gtest.h"

#include "cli/console.h"
#include "cli/print/field_values.h"

namespace azcoll::cli {
namespace {

using testing::AllOf;
using testing::HasSubstr;
using testing::Throws;
using testing::ThrowsMessage;

Variant any(std::string_view text) { return typedValue(text, FieldUse::Any); }

TEST(TypedValue, MakesWholeNumbersIntegersOfTheSmallestKindThatHoldsThem) {
  EXPECT_EQ(any("0"), Variant{std::int32_t{0}});
  EXPECT_EQ(any("-5"), Variant{std::int32_t{-5}});
  EXPECT_EQ(any("+5"), Variant{std::int32_t{5}});
  EXPECT_EQ(any("2147483647"), Variant{std::numeric_limits<std::int32_t>::max()});
  EXPECT_EQ(any("-2147483648"), Variant{std::numeric_limits<std::int32_t>::min()});
  EXPECT_EQ(any("2147483648"), Variant{std::int64_t{2147483648}});
  EXPECT_EQ(any("-2147483649"), Variant{std::int64_t{-2147483649}});
  EXPECT_EQ(any("9223372036854775807"), Variant{std::numeric_limits<std::int64_t>::max()});
  EXPECT_EQ(any("9223372036854775808"), Variant{*Decimal::parse("9223372036854775808")});
}

TEST(TypedValue, KeepsANumberBeyondEveryKindAsText) {
  const std::string digits(39, '9');
  EXPECT_EQ(any(digits), Variant{digits});
}

TEST(TypedValue, KeepsLeadingZeros) {
  EXPECT_EQ(any("007"), Variant{"007"});
  EXPECT_EQ(any("-0"), Variant{std::int32_t{0}});
}

TEST(TypedValue, MakesTrueAndFalseBooleans) {
  EXPECT_EQ(any("true"), Variant{true});
  EXPECT_EQ(any("False"), Variant{false});
}

TEST(TypedValue, TakesAnythingElseAsText) {
  for (const char* text :
       {"", "-", "+", "12.5", "1e3", "0x10", "vero", "2024-01-31", " 1", "A01"}) {
    EXPECT_EQ(any(text), Variant{text}) << text;
  }
}

TEST(TypedValue, ReadsDatesInDateFieldsOnly) {
  EXPECT_EQ(typedValue("2024-01-31", FieldUse::Date), Variant{*Date::of(2024, 1, 31)});
  EXPECT_EQ(typedValue("31/01/2024", FieldUse::Date), Variant{*Date::of(2024, 1, 31)});
  EXPECT_EQ(typedValue("2024-02-30", FieldUse::Date), Variant{"2024-02-30"});
  EXPECT_EQ(typedValue("2024", FieldUse::Date), Variant{std::int32_t{2024}});
}

TEST(SetField, FillsEveryKindOfField) {
  CLSCO_INPUTAZCOLL input;
  setField(input, "Pvar_Ditta=10");
  setField(input, "DataInizioElaborazione=2024-01-31");
  setField(input, "StrSelectSQLAttività=CG86_IDATTIVITA AS A=B");
  setField(input, "Pbol_InTransaction=1");
  setField(input, "Pint_TipoCF=Fornitore");
  setField(input, "TipoMsgAziendeColl=1");
  EXPECT_EQ(input.Pvar_Ditta, Variant{std::int32_t{10}});
  EXPECT_EQ(input.DataInizioElaborazione, Variant{*Date::of(2024, 1, 31)});
  EXPECT_EQ(input.StrSelectSQLAttività, "CG86_IDATTIVITA AS A=B");
  EXPECT_TRUE(input.Pbol_InTransaction);
  EXPECT_EQ(input.Pint_TipoCF, Fornitore);
  EXPECT_EQ(input.TipoMsgAziendeColl, MsgProvenienzaPrimaNota);
}

TEST(SetField, TakesTheTextOfATextFieldAsItIs) {
  CLSCO_INPUTAZCOLL input;
  setField(input, "StringaConnessione=007");
  EXPECT_EQ(input.StringaConnessione, "007");
  setField(input, "StringaConnessione=");
  EXPECT_EQ(input.StringaConnessione, "");
}

TEST(SetField, AcceptsANameWithoutAccents) {
  CLSCO_INPUTAZCOLL input;
  setField(input, "CodiceAttivita=1001");
  EXPECT_EQ(input.CodiceAttività, Variant{std::int32_t{1001}});
}

TEST(SetField, AcceptsEveryNumberForAnEnumeration) {
  CLSCO_INPUTAZCOLL input;
  setField(input, "Pint_TipoCF=5");
  EXPECT_EQ(static_cast<std::int32_t>(input.Pint_TipoCF), 5);
  setField(input, "Pint_TipoCF=cliente");
  EXPECT_EQ(input.Pint_TipoCF, Cliente);
}

TEST(SetField, NamesTheNearestFieldForAnUnknownOne) {
  CLSCO_INPUTAZCOLL input;
  EXPECT_THAT([&] { setField(input, "Pvar_Dita=1"); },
              ThrowsMessage<UsageError>(
                  AllOf(HasSubstr("Pvar_Dita"), HasSubstr("Forse intendevi «Pvar_Ditta»?"))));
  EXPECT_THAT([&] { setField(input, "CodiceAtivita=1"); },
              ThrowsMessage<UsageError>(HasSubstr("«CodiceAttività»")));
  EXPECT_THAT([&] { setField(input, "=1"); }, Throws<UsageError>());
}

TEST(SetField, RefusesAnAssignmentWithoutItsSign) {
  CLSCO_INPUTAZCOLL input;
  EXPECT_THAT([&] { setField(input, "Pvar_Ditta"); },
              ThrowsMessage<UsageError>(HasSubstr("CAMPO=VALORE")));
}

TEST(SetField, RefusesAnObject) {
  CLSCO_INPUTAZCOLL input;
  for (const char* assignment : {"Connessione=x", "ActiveInterface=x"}) {
    EXPECT_THAT([&] { setField(input, assignment); },
                ThrowsMessage<UsageError>(HasSubstr("è un oggetto")))
        << assignment;
  }
}

TEST(SetField, RefusesWhatIsNoBoolean) {
  CLSCO_INPUTAZCOLL input;
  for (const char* text : {"", "2", "vero", "true "}) {
    EXPECT_THAT([&] { setField(input, std::string{"Pbol_InTransaction="} + text); },
                ThrowsMessage<UsageError>(HasSubstr("true o false")))
        << text;
  }
}

TEST(SetField, NamesTheNearestMemberForAnUnknownOne) {
  CLSCO_INPUTAZCOLL input;
  EXPECT_THAT([&] { setField(input, "Pint_TipoCF=Fornitrice"); },
              ThrowsMessage<UsageError>(AllOf(HasSubstr("Forse intendevi «Fornitore»?"),
                                              HasSubstr("Valori: Cliente, Fornitore."))));
  EXPECT_THAT([&] { setField(input, "Pint_TipoCF=AziendeColl"); }, Throws<UsageError>());
  EXPECT_THAT([&] { setField(input, "Pint_TipoCF="); }, Throws<UsageError>());
  EXPECT_THAT([&] { setField(input, "Pint_TipoCF=99999999999"); }, Throws<UsageError>());
}

TEST(SetFieldNull, SetsVariantFieldsOnly) {
  CLSCO_INPUTAZCOLL input;
  setFieldNull(input, "Pvar_CliFor");
  EXPECT_TRUE(input.Pvar_CliFor.isNull());
  for (const char* name : {"StringaConnessione", "Pbol_InTransaction", "Pint_TipoCF",
                           "TipoMsgAziendeColl", "Connessione", "ActiveInterface"}) {
    EXPECT_THAT([&] { setFieldNull(input, name); },
                ThrowsMessage<UsageError>(HasSubstr("solo i campi Variant")))
        << name;
  }
  EXPECT_THAT([&] { setFieldNull(input, "Pvar_CliFro"); },
              ThrowsMessage<UsageError>(HasSubstr("«Pvar_CliFor»")));
}

TEST(FieldValue, GivesEveryKindAsAVariant) {
  CLSCO_INPUTAZCOLL input;
  input.Pint_TipoCF = Fornitore;
  input.ActiveInterface = std::make_shared<Object>();
  EXPECT_EQ(fieldValue(input, inputFieldNamed("Pint_TipoCF")), Variant{std::int32_t{1}});
  EXPECT_EQ(fieldValue(input, inputFieldNamed("StringaConnessione")), Variant{""});
  EXPECT_EQ(fieldValue(input, inputFieldNamed("Pbol_InTransaction")), Variant{false});
  EXPECT_TRUE(fieldValue(input, inputFieldNamed("Pvar_Ditta")).isEmpty());
  EXPECT_EQ(fieldValue(input, inputFieldNamed("ActiveInterface")).object(), input.ActiveInterface);
  EXPECT_EQ(fieldValue(input, inputFieldNamed("Connessione")).object(), nullptr);
}

}  // namespace
}  // namespace azcoll::cli
