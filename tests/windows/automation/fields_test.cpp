// The fields of the three objects as late-bound callers see them.

#include <gtest/gtest.h>
#include <string>

#include "ado/wide_text.h"
#include "data/error.h"
#include "service/members.h"
#include "windows/client.h"

namespace azcoll::test {
namespace {

TEST(FieldsOfTheDll, StartEmpty) {
  ado::Dispatch input = created(kInput);
  for (const InputField& field : kInputFields) {
    const Variant value = read(input, ado::wideText(field.name));
    switch (field.kind()) {
      case FieldKind::Variant:
        EXPECT_TRUE(value.isEmpty()) << field.name;
        break;
      case FieldKind::Text:
        EXPECT_EQ(value, Variant{""}) << field.name;
        break;
      case FieldKind::Boolean:
        EXPECT_EQ(value, Variant{false}) << field.name;
        break;
      case FieldKind::TipoCF:
      case FieldKind::TipoMsg:
        EXPECT_EQ(value, Variant{0}) << field.name;
        break;
      default:
        EXPECT_EQ(value.kind(), Variant::Kind::Object) << field.name;
        EXPECT_EQ(value.object(), nullptr) << field.name;
    }
  }
}

TEST(FieldsOfTheDll, GiveBackEveryKindOfValue) {
  ado::Dispatch input = created(kInput);
  for (const Variant& value :
       {Variant{kNull}, Variant{std::int16_t{5}}, Variant{70000}, Variant{"Città 𝄞"}, Variant{2.5},
        Variant{Date::of(2025, 3, 31, 8, 15, 0).value()}, Variant{Decimal::parse("12.50").value()},
        Variant{true}, Variant{}}) {
    input.put(L"Pvar_Ditta", value);
    EXPECT_EQ(read(input, L"Pvar_Ditta"), value);
  }
  input.put(L"StringaConnessione", "Provider=SQLOLEDB;città");
  EXPECT_EQ(input.getText(L"StringaConnessione"), "Provider=SQLOLEDB;città");
  input.put(L"Pbol_InTransaction", true);
  EXPECT_TRUE(input.getFlag(L"Pbol_InTransaction"));
}

TEST(FieldsOfTheDll, AnswerAccentedNamesInAnyLetterCase) {
  ado::Dispatch input = created(kInput);
  input.put(L"CodiceAttività", "4711");
  EXPECT_EQ(input.getText(L"CODICEATTIVITÀ"), "4711");
  input.put(L"StrSelectSQLAttività", "SELECT 1");
  EXPECT_EQ(input.getText(L"strselectsqlattività"), "SELECT 1");
  EXPECT_THROW(input.getText(L"CodiceInesistente"), Error);
}

TEST(FieldsOfTheDll, TakeAnyNumberIntoAnEnumerationButNoText) {
  ado::Dispatch input = created(kInput);
  input.put(L"Pint_TipoCF", std::int16_t{1});
  EXPECT_EQ(input.getNumber(L"Pint_TipoCF"), 1);
  input.put(L"Pint_TipoCF", 7);
  EXPECT_EQ(input.getNumber(L"Pint_TipoCF"), 7);
  try {
    input.put(L"Pint_TipoCF", "fornitore");
    ADD_FAILURE() << "a text was taken";
  } catch (const Error& error) {
    EXPECT_EQ(error.description(), "Tipo non corrispondente (0x80020005): Pint_TipoCF");
    EXPECT_EQ(error.info().source, "AZCOLLSRV.CLSCO_INPUTAZCOLL");
  }
  EXPECT_EQ(input.getNumber(L"Pint_TipoCF"), 7);
}

TEST(FieldsOfTheDll, RefuseAnArrayInAVariantFieldWithADescription) {
  ado::Dispatch input = created(kInput);
  SAFEARRAYBOUND bound{2, 0};
  ado::ScopedVariant array;
  array.raw().parray = SafeArrayCreate(VT_I4, 1, &bound);
  array.raw().vt = VT_ARRAY | VT_I4;
  DISPID assigned = DISPID_PROPERTYPUT;
  DISPPARAMS parameters{&array.raw(), &assigned, 1, 1};
  EXCEPINFO exception{};
  constexpr DISPID kCompanyField = 3;
  EXPECT_EQ(input.object()->Invoke(kCompanyField, IID_NULL, LOCALE_USER_DEFAULT,
                                   DISPATCH_PROPERTYPUT, &parameters, nullptr, &exception, nullptr),
            DISP_E_EXCEPTION);
  EXPECT_EQ(ado::textOf(exception.bstrDescription), "Tipo non corrispondente");
  SysFreeString(exception.bstrDescription);
  SysFreeString(exception.bstrSource);
  SysFreeString(exception.bstrHelpFile);
  EXPECT_TRUE(read(input, L"Pvar_Ditta").isEmpty());
}

TEST(FieldsOfTheDll, HandTheCallersOwnObjectsBack) {
  ado::Dispatch input = created(kInput);
  const AdoCaller caller;
  input.putRef(L"Connessione", caller.object());
  EXPECT_EQ(input.getObject(L"Connessione").get(), caller.object());
  input.putRef(L"ActiveInterface", caller.object());
  EXPECT_EQ(input.getObject(L"ActiveInterface").get(), caller.object());
  input.putRef(L"Connessione", nullptr);
  EXPECT_FALSE(input.getObject(L"Connessione"));
}

TEST(FieldsOfTheDll, TakeObjectsByValueFromCallersThatKnowNoReferences) {
  ado::Dispatch input = created(kInput);
  const AdoCaller caller;
  input.put(L"Connessione", caller.object());
  EXPECT_EQ(input.getObject(L"Connessione").get(), caller.object());
  EXPECT_THROW(input.put(L"Connessione", "Provider=SQLOLEDB"), Error);
}

TEST(ServiceOfTheDll, TakesOtherParameterObjectsOfTheLibraryOnly) {
  ado::Dispatch service = created(kService);
  const ado::Dispatch own = created(kInput);
  service.putRef(L"CPInput", own.object().get());
  EXPECT_EQ(service.getObject(L"CPInput").get(), own.object().get());
  const ado::Dispatch output = created(kOutput);
  EXPECT_THROW(service.putRef(L"CPInput", output.object().get()), Error);
  const AdoCaller caller;
  EXPECT_THROW(service.putRef(L"CPInput", caller.object()), Error);
  EXPECT_EQ(service.getObject(L"CPInput").get(), own.object().get());
}

TEST(ServiceOfTheDll, StartsWithStateZeroAndNoMessage) {
  ado::Dispatch service = created(kService);
  EXPECT_EQ(read(service, L"Stato"), Variant{std::int16_t{0}});
  EXPECT_TRUE(read(service, L"Errore").isEmpty());
}

}  // namespace
}  // namespace azcoll::test
