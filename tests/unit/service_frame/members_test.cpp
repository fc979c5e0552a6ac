#include "service/members.h"

#include <cstddef>
#include <gtest/gtest.h>
#include <set>
#include <string>
#include <string_view>
#include <type_traits>
#include <vector>

namespace azcoll::frame_tests {
namespace {

using In = CLSCO_INPUTAZCOLL;
using Out = CLSCO_OUTPUTAZCOLL;

template <typename Class>
struct Expected {
  std::string_view name;
  FieldKind kind;
  std::string_view type;
  FieldMember<Class> member;
};

// Callers bind to these names in this order; the lists are written out so that a change of the
// tables shows up here.

const std::vector<Expected<In>> kExpectedInput{
    {"Connessione", FieldKind::Connection, "Connection", &In::Connessione},
    {"StringaConnessione", FieldKind::Text, "String", &In::StringaConnessione},
    {"Pvar_Ditta", FieldKind::Variant, "Variant", &In::Pvar_Ditta},
    {"Pint_TipoCF", FieldKind::TipoCF, "EnumTipoCF", &In::Pint_TipoCF},
    {"Pvar_CliFor", FieldKind::Variant, "Variant", &In::Pvar_CliFor},
    {"DataInizioElaborazione", FieldKind::Variant, "Variant", &In::DataInizioElaborazione},
    {"CodiceSede", FieldKind::Variant, "Variant", &In::CodiceSede},
    {"CodiceIntermedio", FieldKind::Variant, "Variant", &In::CodiceIntermedio},
    {"AnnoSolare", FieldKind::Variant, "Variant", &In::AnnoSolare},
    {"Pbol_InTransaction", FieldKind::Boolean, "Boolean", &In::Pbol_InTransaction},
    {"ActiveInterface", FieldKind::Object, "Object", &In::ActiveInterface},
    {"AnnoSolareDaDuplicare", FieldKind::Variant, "Variant", &In::AnnoSolareDaDuplicare},
    {"StrSelectSQLAttività", FieldKind::Text, "String", &In::StrSelectSQLAttività},
    {"Pbol_AggiungiCampiDecodificheAttività", FieldKind::Boolean, "Boolean",
     &In::Pbol_AggiungiCampiDecodificheAttività},
    {"CodiceAttività", FieldKind::Variant, "Variant", &In::CodiceAttività},
    {"IdAttività", FieldKind::Variant, "Variant", &In::IdAttività},
    {"IndProvenienzaMultiAziende", FieldKind::Boolean, "Boolean", &In::IndProvenienzaMultiAziende},
    {"SelezionaAttivitàSingolaAzienda", FieldKind::Boolean, "Boolean",
     &In::SelezionaAttivitàSingolaAzienda},
    {"InserisciAttivitàDaPeriodoPrecedente", FieldKind::Boolean, "Boolean",
     &In::InserisciAttivitàDaPeriodoPrecedente},
    {"SelezionaSoloAnagraficheAttività", FieldKind::Boolean, "Boolean",
     &In::SelezionaSoloAnagraficheAttività},
    {"PopolaRecordsetInserimentoAttivitàMultiAzienda", FieldKind::Boolean, "Boolean",
     &In::PopolaRecordsetInserimentoAttivitàMultiAzienda},
    {"SelezionaAttivitàPrincipale", FieldKind::Boolean, "Boolean",
     &In::SelezionaAttivitàPrincipale},
    {"TipoMsgAziendeColl", FieldKind::TipoMsg, "EnumTipoMsgAziendeColl", &In::TipoMsgAziendeColl},
    {"Sezionale", FieldKind::Variant, "Variant", &In::Sezionale},
    {"Pbol_ValorizzaRecordsetSezionali", FieldKind::Boolean, "Boolean",
     &In::Pbol_ValorizzaRecordsetSezionali},
    {"AttivaGestioneDuplicazioneCliFor", FieldKind::Variant, "Variant",
     &In::AttivaGestioneDuplicazioneCliFor},
    {"MultiAziendaEscludiCollegate", FieldKind::Boolean, "Boolean",
     &In::MultiAziendaEscludiCollegate},
};

const std::vector<Expected<Out>> kExpectedOutput{
    {"Gbol_DittaPrincipale", FieldKind::Boolean, "Boolean", &Out::Gbol_DittaPrincipale},
    {"DitteCollegate", FieldKind::Variant, "Variant", &Out::DitteCollegate},
    {"Grst_DitteCollegate", FieldKind::Recordset, "Recordset", &Out::Grst_DitteCollegate},
    {"IndTipoCont", FieldKind::Variant, "Variant", &Out::IndTipoCont},
    {"Gvar_DittaPrincipale", FieldKind::Variant, "Variant", &Out::Gvar_DittaPrincipale},
    {"Grst_AttivitaCollegate", FieldKind::Recordset, "Recordset", &Out::Grst_AttivitaCollegate},
    {"GstrSQL_AttivitaCollegate", FieldKind::Text, "String", &Out::GstrSQL_AttivitaCollegate},
    {"CodiceAttività", FieldKind::Variant, "Variant", &Out::CodiceAttività},
    {"DescrAttività", FieldKind::Variant, "Variant", &Out::DescrAttività},
    {"IdAttività", FieldKind::Variant, "Variant", &Out::IdAttività},
};

template <typename Class, typename Table>
void expectTable(const std::vector<Expected<Class>>& expected, const Table& table) {
  ASSERT_EQ(table.size(), expected.size());
  for (std::size_t i = 0; i < expected.size(); ++i) {
    EXPECT_EQ(table[i].name, expected[i].name) << "position " << i;
    EXPECT_EQ(table[i].kind(), expected[i].kind) << expected[i].name;
    EXPECT_EQ(typeName(table[i].kind()), expected[i].type) << expected[i].name;
    EXPECT_TRUE(table[i].member == expected[i].member) << expected[i].name;
    EXPECT_FALSE(table[i].meaning.empty()) << expected[i].name;
  }
}

TEST(Members, InputFieldsStandInInterfaceOrder) { expectTable(kExpectedInput, kInputFields); }

TEST(Members, OutputFieldsStandInInterfaceOrder) { expectTable(kExpectedOutput, kOutputFields); }

TEST(Members, OnlyTheStartDateIsGivenAsADate) {
  for (const InputField& field : kInputFields) {
    EXPECT_EQ(field.use == FieldUse::Date, field.name == "DataInizioElaborazione") << field.name;
  }
  for (const OutputField& field : kOutputFields) {
    EXPECT_EQ(field.use, FieldUse::Any) << field.name;
  }
}

TEST(Members, TheServiceHasFourFields) {
  const std::vector<std::string_view> expected{"CPInput", "CPOutput", "Stato", "Errore"};
  EXPECT_EQ(std::vector<std::string_view>(kServiceFields.begin(), kServiceFields.end()), expected);
}

TEST(Members, ServiceFieldsHaveTheirPublishedTypes) {
  using Service = CLSCO_AZIENDECOLL;
  EXPECT_TRUE((std::is_same_v<decltype(Service::CPInput), std::shared_ptr<In>>));
  EXPECT_TRUE((std::is_same_v<decltype(Service::CPOutput), std::shared_ptr<Out>>));
  EXPECT_TRUE((std::is_same_v<decltype(Service::Stato), Variant>));
  EXPECT_TRUE((std::is_same_v<decltype(Service::Errore), Variant>));
}

TEST(Members, EnumerationsHaveTheirPublishedValues) {
  struct Member {
    std::string_view enumeration;
    std::string_view name;
    std::int32_t value;
  };
  const std::vector<Member> expected{
      {"EnumTipoCF", "Cliente", 0},
      {"EnumTipoCF", "Fornitore", 1},
      {"EnumTipoMsgAziendeColl", "MsgProvenienzaEserciziAzienda", 0},
      {"EnumTipoMsgAziendeColl", "MsgProvenienzaPrimaNota", 1},
      {"EnumTipoCollegamentoCG86", "AziendeColl", 0},
      {"EnumTipoCollegamentoCG86", "CliForColl", 99},
  };
  ASSERT_EQ(kEnumMembers.size(), expected.size());
  for (std::size_t i = 0; i < expected.size(); ++i) {
    EXPECT_EQ(kEnumMembers[i].enumeration, expected[i].enumeration);
    EXPECT_EQ(kEnumMembers[i].name, expected[i].name);
    EXPECT_EQ(kEnumMembers[i].value, expected[i].value) << expected[i].name;
  }
  EXPECT_EQ(Cliente, 0);
  EXPECT_EQ(Fornitore, 1);
  EXPECT_EQ(MsgProvenienzaEserciziAzienda, 0);
  EXPECT_EQ(MsgProvenienzaPrimaNota, 1);
  EXPECT_EQ(AziendeColl, 0);
  EXPECT_EQ(CliForColl, 99);
}

TEST(Members, EnumerationsAre32BitIntegers) {
  EXPECT_EQ(sizeof(EnumTipoCF), 4U);
  EXPECT_EQ(sizeof(EnumTipoMsgAziendeColl), 4U);
  EXPECT_EQ(sizeof(EnumTipoCollegamentoCG86), 4U);
}

const std::vector<std::string_view> kExpectedMethods{
    "DuplicaCliFor",
    "EliminaCliFor",
    "ControllaDittaPrincipale",
    "ControllaDittaCollegata",
    "DitteCollegate",
    "RecordsetDitteCollegate",
    "RecordsetDitteCollegateOPrincipale",
    "DitteCollegatePiuPrincipale",
    "RecordsetDitteCollegateOPrincipalePerSedi",
    "RecordsetDitteCollegateOPrincipalePerIntermedi",
    "RecordsetDitteCollegatePiuPrincipale",
    "RecordsetDitteCollegatePiuPrincipaleNoPrinc",
    "RecordsetDitteCollegatePiuPrincipalePiuDenunciaIva",
    "RecordsetDitteCollegatePiuPrincipalePerChiuApeEsercizio",
    "ModificaCliFor",
    "ControllaDittaNonCollegata",
    "GetDittaPrincipale",
    "RecordsetAttivitaCollegate",
    "StringaSQLAttivitaCollegate",
    "DuplicaAttività",
    "InserisciAttività",
    "AggiornaAttività",
    "AggiornaDatiGestionaliPerAttività",
    "StringaSQLEliminazioneAttività",
    "EliminaAttivitàSingolaCollegamentoMultiAzienda",
    "GetCodiceAttivitàDaSezionale",
    "AggiornaDatiGestionaliPerAnagraficaAttività",
    "InserisciAttivitàDaPeriodoPrecedente",
    "ControllaAttivitaNonCollegata",
    "GetCodiceAttività",
    "VerificaEsistenzaAttivita",
    "AggiornaDateRegistriAnagraficaAttività",
    "VerificaAnnoIvaEsercizioContabile",
    "StringaSQLAttivitàSingolaCollegamentoMultiAzienda",
};

TEST(Members, MethodsStandInInterfaceOrder) {
  std::vector<std::string_view> names;
  for (const MethodEntry& method : kMethods) {
    names.push_back(method.name);
    EXPECT_FALSE(method.meaning.empty()) << method.name;
  }
  EXPECT_EQ(names, kExpectedMethods);
}

TEST(Members, OneMethodGivesATextAndFourGiveABoolean) {
  const std::set<std::string_view> booleans{
      "ControllaDittaNonCollegata", "ControllaAttivitaNonCollegata", "VerificaEsistenzaAttivita",
      "VerificaAnnoIvaEsercizioContabile"};
  for (const MethodEntry& method : kMethods) {
    const MethodResult expected = method.name == "GetDittaPrincipale" ? MethodResult::Text
                                  : booleans.contains(method.name)    ? MethodResult::Boolean
                                                                      : MethodResult::None;
    EXPECT_EQ(method.result, expected) << method.name;
  }
  EXPECT_EQ(typeName(MethodResult::None), "");
  EXPECT_EQ(typeName(MethodResult::Boolean), "Boolean");
  EXPECT_EQ(typeName(MethodResult::Text), "String");
}

TEST(Members, AMethodIsCalledAsItsResultSays) {
  for (const MethodEntry& method : kMethods) {
    EXPECT_EQ(method.member.index(), static_cast<std::size_t>(method.result)) << method.name;
  }
}

const MethodEntry& methodNamed(std::string_view name) {
  for (const MethodEntry& method : kMethods) {
    if (method.name == name) {
      return method;
    }
  }
  throw std::invalid_argument{std::string{name}};
}

TEST(Members, AMethodsNameLeadsToItsFunction) {
  using Service = CLSCO_AZIENDECOLL;
  EXPECT_TRUE(methodNamed("DuplicaCliFor").member == MethodMember{&Service::DuplicaCliFor});
  EXPECT_TRUE(methodNamed("ControllaDittaPrincipale").member ==
              MethodMember{&Service::ControllaDittaPrincipale});
  EXPECT_TRUE(methodNamed("ControllaDittaCollegata").member ==
              MethodMember{&Service::ControllaDittaCollegata});
  EXPECT_TRUE(methodNamed("DitteCollegate").member == MethodMember{&Service::DitteCollegate});
  EXPECT_TRUE(methodNamed("GetDittaPrincipale").member ==
              MethodMember{&Service::GetDittaPrincipale});
}

}  // namespace
}  // namespace azcoll::frame_tests
