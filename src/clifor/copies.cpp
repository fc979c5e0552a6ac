// The texts of the copies: which value of the source row is written how.

#include "component/service.h"
#include "data/tables.h"
#include "data/text.h"

namespace azcoll {
namespace {

/// A value as it stands, unquoted.
std::string key(Fields& row, std::string_view column) {
  return join(row.item(column).value(), ", ");
}

}  // namespace

/// A value as it stands, or the word Null when it is missing.
std::string CLSCO_AZIENDECOLL::numeroSql(const Variant& valore) {
  return join(ValoreDefault(valore, "Null"), ", ");
}

/// A Unicode literal. Callers rely on it: apostrophes in the value are not doubled, so that a text
/// with one makes the statement invalid and the whole duplication is rolled back.
std::string CLSCO_AZIENDECOLL::testoSql(const Variant& valore) {
  return mancante(valore) ? "Null, " : join("N'", valore, "', ");
}

/// A date literal, written whether or not there is a date.
std::string CLSCO_AZIENDECOLL::dataSql(const Variant& valore) {
  return join("'", DataDB(valore), "', ");
}

std::string CLSCO_AZIENDECOLL::inizioInserimentoMaestro() {
  return join("INSERT INTO CG44_CLIFOR (", tables::joined(tables::kMasterColumns), ")",
              " VALUES (");
}

std::string CLSCO_AZIENDECOLL::inserimentoCompleto(const Variant& principale, Fields& sorgente,
                                                   const Variant& agente) {
  const auto value = [&](std::string_view column) { return sorgente.item(column).value(); };
  return join(inizioInserimentoMaestro(), principale, ", ",  //
              key(sorgente, "CG44_TIPOCF"),                  //
              key(sorgente, "CG44_CLIFOR"),                  //
              key(sorgente, "CG44_CODICE_CG16"),             //
              numeroSql(value("CG44_GRUPPO_CG10")),          //
              testoSql(value("CG44_CONTO_CG24")),            //
              testoSql(value("CG44_CONTOR_CG24")),           //
              testoSql(value("CG44_CODPAG_CG62")),           //
              numeroSql(value("CG44_GGSCADFIX")),            //
              numeroSql(value("CG44_CODABI_CG12")),          //
              numeroSql(value("CG44_CODCAB_CG13")),          //
              numeroSql(value("CG44_TIPOCF_CG40")),          //
              numeroSql(value("CG44_INTERMEDIO_CG40")),      //
              testoSql(value("CG44_CODICE_CG08")),           //
              testoSql(value("CG44_CODICE_CG28")),           //
              numeroSql(agente),                             //
              numeroSql(value("CG44_CODSEDE_CG31")),         //
              numeroSql(value("CG44_IDMEDIA_CG99")),         //
              "1", ")");
}

/// The reduced copy's values behind the company: the same for every linked company.
std::string CLSCO_AZIENDECOLL::codaInserimentoRidotto(Fields& sorgente) {
  const auto value = [&](std::string_view column) { return sorgente.item(column).value(); };
  return join(", ",                                      //
              key(sorgente, "CG44_TIPOCF"),              //
              key(sorgente, "CG44_CLIFOR"),              //
              key(sorgente, "CG44_CODICE_CG16"),         //
              numeroSql(value("CG44_GRUPPO_CG10")),      //
              " Null, Null, Null, Null, Null, Null, ",   // accounts, payment terms, due day, bank
              numeroSql(value("CG44_TIPOCF_CG40")),      //
              numeroSql(value("CG44_INTERMEDIO_CG40")),  //
              testoSql(value("CG44_CODICE_CG08")),       //
              testoSql(value("CG44_CODICE_CG28")),       //
              " Null,",                                  // agent
              numeroSql(value("CG44_CODSEDE_CG31")),     //
              " Null,",                                  // media
              " 0", ")");
}

std::string CLSCO_AZIENDECOLL::inserimentoDatiVendita(const Variant& principale, Fields& sorgente) {
  std::string columns;
  std::string values;
  for (const tables::SalesColumn& column : tables::kSalesColumns) {
    columns += columns.empty() ? "" : ", ";
    columns += column.name;
    values += valoreSql(column.rule, principale, sorgente.item(column.name).value());
  }
  // Every value ends with its separator; the last one has none.
  values.resize(values.size() - 2);
  return join("INSERT INTO MG19_CLIFORVA (", columns, ")", " VALUES (", values, ")");
}

std::string CLSCO_AZIENDECOLL::valoreSql(tables::ValueRule rule, const Variant& principale,
                                         const Variant& valore) {
  switch (rule) {
    case tables::ValueRule::Company:
      return join(principale, ", ");
    case tables::ValueRule::Key:
      return join(valore, ", ");
    case tables::ValueRule::Text:
      return testoSql(valore);
    case tables::ValueRule::Number:
      return numeroSql(valore);
    case tables::ValueRule::Date:
      return dataSql(valore);
    case tables::ValueRule::DateOrNull:
      return mancante(valore) ? "Null, " : dataSql(valore);
  }
  return {};
}

}  // namespace azcoll
