// The texts of the copies: which value of the source row is written how.

#include "clifor/copies.h"

#include <string_view>

#include "data/tables.h"
#include "data/text.h"
#include "text/joining.h"

namespace azcoll::clifor {
namespace {

/// A value as it stands, unquoted.
std::string key(Fields& row, std::string_view column) {
  return join(row.item(column).value(), ", ");
}

/// A value as it stands, or the word Null when it is missing.
std::string sqlNumber(Call& call, const Variant& value) {
  return join(call.ValoreDefault(value, "Null"), ", ");
}

/// A Unicode literal. Callers rely on it: apostrophes in the value are not doubled, so that a text
/// with one makes the statement invalid and the whole duplication is rolled back.
std::string sqlText(Call& call, const Variant& value) {
  return call.isMissing(value) ? "Null, " : join("N'", value, "', ");
}

/// A date literal, written whether or not there is a date.
std::string sqlDate(Call& call, const Variant& value) {
  return join("'", call.DataDB(value), "', ");
}

/// A value by the rule of its column.
std::string sqlValue(Call& call, tables::ValueRule rule, const Variant& main,
                     const Variant& value) {
  switch (rule) {
    case tables::ValueRule::Company:
      return join(main, ", ");
    case tables::ValueRule::Key:
      return join(value, ", ");
    case tables::ValueRule::Text:
      return sqlText(call, value);
    case tables::ValueRule::Number:
      return sqlNumber(call, value);
    case tables::ValueRule::Date:
      return sqlDate(call, value);
    case tables::ValueRule::DateOrNull:
      return call.isMissing(value) ? "Null, " : sqlDate(call, value);
  }
  return {};
}

}  // namespace

std::string masterInsertHead() {
  return join("INSERT INTO CG44_CLIFOR (", joinAll(tables::kMasterColumns, ", "), ")", " VALUES (");
}

std::string fullMasterInsert(Call& call, const Variant& main, Fields& source,
                             const Variant& agent) {
  const auto value = [&](std::string_view column) { return source.item(column).value(); };
  return join(masterInsertHead(), main, ", ",                  //
              key(source, "CG44_TIPOCF"),                      //
              key(source, "CG44_CLIFOR"),                      //
              key(source, "CG44_CODICE_CG16"),                 //
              sqlNumber(call, value("CG44_GRUPPO_CG10")),      //
              sqlText(call, value("CG44_CONTO_CG24")),         //
              sqlText(call, value("CG44_CONTOR_CG24")),        //
              sqlText(call, value("CG44_CODPAG_CG62")),        //
              sqlNumber(call, value("CG44_GGSCADFIX")),        //
              sqlNumber(call, value("CG44_CODABI_CG12")),      //
              sqlNumber(call, value("CG44_CODCAB_CG13")),      //
              sqlNumber(call, value("CG44_TIPOCF_CG40")),      //
              sqlNumber(call, value("CG44_INTERMEDIO_CG40")),  //
              sqlText(call, value("CG44_CODICE_CG08")),        //
              sqlText(call, value("CG44_CODICE_CG28")),        //
              sqlNumber(call, agent),                          //
              sqlNumber(call, value("CG44_CODSEDE_CG31")),     //
              sqlNumber(call, value("CG44_IDMEDIA_CG99")),     //
              "1", ")");
}

std::string reducedMasterTail(Call& call, Fields& source) {
  const auto value = [&](std::string_view column) { return source.item(column).value(); };
  return join(", ",                                        //
              key(source, "CG44_TIPOCF"),                  //
              key(source, "CG44_CLIFOR"),                  //
              key(source, "CG44_CODICE_CG16"),             //
              sqlNumber(call, value("CG44_GRUPPO_CG10")),  //
              " Null, Null, Null, Null, Null, Null, ",     // accounts, payment terms, due day, bank
              sqlNumber(call, value("CG44_TIPOCF_CG40")),  //
              sqlNumber(call, value("CG44_INTERMEDIO_CG40")),  //
              sqlText(call, value("CG44_CODICE_CG08")),        //
              sqlText(call, value("CG44_CODICE_CG28")),        //
              " Null,",                                        // agent
              sqlNumber(call, value("CG44_CODSEDE_CG31")),     //
              " Null,",                                        // media
              " 0", ")");
}

std::string salesDataInsert(Call& call, const Variant& main, Fields& source) {
  const std::string columns = joinAll(
      tables::kSalesColumns, ", ", [](const tables::SalesColumn& column) { return column.name; });
  std::string values;
  for (const tables::SalesColumn& column : tables::kSalesColumns) {
    values += sqlValue(call, column.rule, main, source.item(column.name).value());
  }
  // Every value ends with its separator; the last one has none.
  values.resize(values.size() - 2);
  return join("INSERT INTO MG19_CLIFORVA (", columns, ")", " VALUES (", values, ")");
}

}  // namespace azcoll::clifor
