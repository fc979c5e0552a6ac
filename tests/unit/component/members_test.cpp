#include "component/members.h"

#include <gtest/gtest.h>
#include <string>
#include <vector>

namespace azcoll {
namespace {

using Lines = std::vector<std::string>;

template <typename Table>
Lines described(const Table& table) {
  Lines lines;
  for (const auto& entry : table) {
    lines.push_back(std::string{entry.name} + " " + std::string{typeName(entry.kind())});
  }
  return lines;
}

TEST(MemberTables, TheInputHasTheseFieldsInOrder) {
  EXPECT_EQ(described(kInputFields),
            (Lines{"Connessione Connection",
                   "StringaConnessione String",
                   "Pvar_Ditta Variant",
                   "Pint_TipoCF EnumTipoCF",
                   "Pvar_CliFor Variant",
                   "DataInizioElaborazione Variant",
                   "CodiceSede Variant",
                   "CodiceIntermedio Variant",
                   "AnnoSolare Variant",
                   "Pbol_InTransaction Boolean",
                   "ActiveInterface Object",
                   "AnnoSolareDaDuplicare Variant",
                   "StrSelectSQLAttività String",
                   "Pbol_AggiungiCampiDecodificheAttività Boolean",
                   "CodiceAttività Variant",
                   "IdAttività Variant",
                   "IndProvenienzaMultiAziende Boolean",
                   "SelezionaAttivitàSingolaAzienda Boolean",
                   "InserisciAttivitàDaPeriodoPrecedente Boolean",
                   "SelezionaSoloAnagraficheAttività Boolean",
                   "PopolaRecordsetInserimentoAttivitàMultiAzienda Boolean",
                   "SelezionaAttivitàPrincipale Boolean",
                   "TipoMsgAziendeColl EnumTipoMsgAziendeColl",
                   "Sezionale Variant",
                   "Pbol_ValorizzaRecordsetSezionali Boolean",
                   "AttivaGestioneDuplicazioneCliFor Variant",
                   "MultiAziendaEscludiCollegate Boolean"}));
}

TEST(MemberTables, TheOutputHasTheseFieldsInOrder) {
  EXPECT_EQ(
      described(kOutputFields),
      (Lines{"Gbol_DittaPrincipale Boolean", "DitteCollegate Variant",
             "Grst_DitteCollegate Recordset", "IndTipoCont Variant", "Gvar_DittaPrincipale Variant",
             "Grst_AttivitaCollegate Recordset", "GstrSQL_AttivitaCollegate String",
             "CodiceAttività Variant", "DescrAttività Variant", "IdAttività Variant"}));
}

TEST(MemberTables, TheServiceHasTheseMethodsInOrder) {
  Lines methods;
  for (const MethodEntry& method : kMethods) {
    const std::string_view result = typeName(method.result);
    methods.push_back(std::string{method.name} + (result.empty() ? "" : " " + std::string{result}));
  }
  EXPECT_EQ(methods, (Lines{"DuplicaCliFor",
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
                            "ControllaDittaNonCollegata Boolean",
                            "GetDittaPrincipale String",
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
                            "ControllaAttivitaNonCollegata Boolean",
                            "GetCodiceAttività",
                            "VerificaEsistenzaAttivita Boolean",
                            "AggiornaDateRegistriAnagraficaAttività",
                            "VerificaAnnoIvaEsercizioContabile Boolean",
                            "StringaSQLAttivitàSingolaCollegamentoMultiAzienda"}));
  EXPECT_EQ(Lines(kServiceFields.begin(), kServiceFields.end()),
            (Lines{"CPInput", "CPOutput", "Stato", "Errore"}));
}

TEST(MemberTables, EveryFieldIsReachedByItsOwnName) {
  CLSCO_INPUTAZCOLL input;
  input.Sezionale = "sezionale";
  input.CodiceSede = "sede";
  std::size_t found = 0;
  for (const InputField& field : kInputFields) {
    if (const auto* member = std::get_if<Variant CLSCO_INPUTAZCOLL::*>(&field.member)) {
      const Variant& value = input.*(*member);
      if (value == Variant{"sezionale"}) {
        EXPECT_EQ(field.name, "Sezionale");
        ++found;
      }
      if (value == Variant{"sede"}) {
        EXPECT_EQ(field.name, "CodiceSede");
        ++found;
      }
    }
  }
  EXPECT_EQ(found, 2U);
}

TEST(MemberTables, EnumerationsHaveTheirValues) {
  Lines members;
  for (const EnumMember& member : kEnumMembers) {
    members.push_back(std::string{member.enumeration} + "." + std::string{member.name} + " " +
                      std::to_string(member.value));
  }
  EXPECT_EQ(members, (Lines{"EnumTipoCF.Cliente 0", "EnumTipoCF.Fornitore 1",
                            "EnumTipoMsgAziendeColl.MsgProvenienzaEserciziAzienda 0",
                            "EnumTipoMsgAziendeColl.MsgProvenienzaPrimaNota 1",
                            "EnumTipoCollegamentoCG86.AziendeColl 0",
                            "EnumTipoCollegamentoCG86.CliForColl 99"}));
}

}  // namespace
}  // namespace azcoll
