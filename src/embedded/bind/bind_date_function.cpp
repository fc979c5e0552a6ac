#include <array>

#include "embedded/bind/expression_binder.h"
#include "embedded/bind/scope.h"
#include "embedded/plan/slots.h"
#include "embedded/values/collation.h"
#include "embedded/values/conversions.h"
#include "embedded/values/sql_error.h"
#include "embedded/values/types.h"

namespace azcoll::embedded {

namespace {

/// The one-letter code by which the functions know a part of a date; 0 for a word that is none.
char partCode(const tsql::Expression& expression) {
  const auto* const word = std::get_if<tsql::ColumnReference>(&expression.node);
  if (word == nullptr || word->name.parts.size() != 1) {
    return 0;
  }
  const std::string name = upperText(word->name.parts.front());
  constexpr std::array<std::pair<std::string_view, char>, 24> kParts{{
      {"YEAR", 'y'},        {"YYYY", 'y'},   {"YY", 'y'},        {"MONTH", 'm'}, {"MM", 'm'},
      {"M", 'm'},           {"DAY", 'd'},    {"DD", 'd'},        {"D", 'd'},     {"HOUR", 'h'},
      {"HH", 'h'},          {"MINUTE", 'i'}, {"MI", 'i'},        {"N", 'i'},     {"SECOND", 's'},
      {"SS", 's'},          {"S", 's'},      {"QUARTER", 'q'},   {"QQ", 'q'},    {"Q", 'q'},
      {"MILLISECOND", 'l'}, {"MS", 'l'},     {"DAYOFYEAR", 'j'}, {"DY", 'j'},
  }};
  for (const auto& [known, code] : kParts) {
    if (name == known) {
      return code;
    }
  }
  return 0;
}

/// The same as a constant of SQLite; `text` is the batch, for messages.
std::string partText(const tsql::Expression& expression, std::string_view text) {
  const char code = partCode(expression);
  if (code == 0) {
    refuse(text, expression.position, "this part of a date");
  }
  return "'" + std::string(1, code) + "'";
}

}  // namespace

std::optional<BoundExpression> ExpressionBinder::bindDateCall(std::string_view name,
                                                              const tsql::FunctionCall& call,
                                                              const tsql::Position& position,
                                                              const Clause& clause) {
  // A text given for a date is read as a DATETIME.
  Reach reach;
  const auto bindDate = [&](const tsql::Expression& expression, Type& type) {
    BoundExpression date = bind(expression, clause);
    reach |= date.reach;
    type = date.type.isDate() ? date.type : kDateTime;
    constants_.requireConvertible(date.type, type, position);
    return constants_.coerce(date, type, Conversion::Compare);
  };
  Type type;
  if (name == "GETDATE" || name == "CURRENT_TIMESTAMP") {
    requireArguments(call, 0, 0);
    // A slot, not a call: one moment for all rows of the statement.
    BoundExpression now;
    now.type = kDateTime;
    now.pending.emplace();
    now.pending->source = SlotSource::Now;
    return now;
  }
  if (name == "YEAR" || name == "MONTH" || name == "DAY") {
    requireArguments(call, 1, 1);
    const std::string code = name == "YEAR" ? "'y'" : name == "MONTH" ? "'m'" : "'d'";
    const std::string date = bindDate(*call.arguments[0], type);
    return computed("ts_date_part(" + code + "," + date + ")", kInt, reach);
  }
  if (name == "DATEPART") {
    requireArguments(call, 2, 2);
    const std::string code = partText(*call.arguments.front(), context_.text);
    const std::string date = bindDate(*call.arguments[1], type);
    return computed("ts_date_part(" + code + "," + date + ")", kInt, reach);
  }
  if (name == "DATEADD") {
    requireArguments(call, 3, 3);
    const std::string code = partText(*call.arguments.front(), context_.text);
    BoundExpression count = bind(*call.arguments[1], clause);
    reach |= count.reach;
    // DATEADD takes an INT; a larger number is its overflow, not that of the date.
    const std::string number = constants_.coerce(count, kInt, Conversion::Cut);
    const std::string date = bindDate(*call.arguments[2], type);
    return computed("ts_date_add(" + code + "," + number + "," + date + "," +
                        std::to_string(encodeType(type)) + ")",
                    type, reach);
  }
  if (name == "DATEDIFF") {
    requireArguments(call, 3, 3);
    const std::string code = partText(*call.arguments.front(), context_.text);
    const std::string from = bindDate(*call.arguments[1], type);
    const std::string to = bindDate(*call.arguments[2], type);
    return computed("ts_date_difference(" + code + "," + from + "," + to + ")", kInt, reach);
  }
  return std::nullopt;
}

}  // namespace azcoll::embedded
