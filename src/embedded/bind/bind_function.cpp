#include <algorithm>
#include <array>

#include "data/decimal.h"
#include "embedded/bind/ast_walk.h"
#include "embedded/bind/expression_binder.h"
#include "embedded/bind/scope.h"
#include "embedded/plan/slots.h"
#include "embedded/sqlite/sql_text.h"
#include "embedded/values/collation.h"
#include "embedded/values/conversions.h"
#include "embedded/values/date_values.h"
#include "embedded/values/sql_error.h"
#include "embedded/values/types.h"
#include "text/joining.h"
#include "text/letter_case.h"

namespace azcoll::embedded {

namespace {

Type textResult(const Type& type, std::int32_t length) {
  return {type.isUnicode() ? TypeKind::NVarChar : TypeKind::VarChar, length, 0, 0};
}

/// A function of texts and what it is in SQLite.
struct TextFunction {
  std::string_view name;
  std::string_view sqlName;
  std::size_t least;
  std::size_t most;
  std::size_t texts;  ///< leading arguments that are texts; the others are whole numbers
  bool givesWholeNumber;
};

constexpr std::size_t kMany = 254;

constexpr std::array<TextFunction, 17> kTextFunctions{{
    {"LEN", "ts_len", 1, 1, 1, true},
    {"LEFT", "ts_left", 2, 2, 1, false},
    {"RIGHT", "ts_right", 2, 2, 1, false},
    {"SUBSTRING", "ts_substring", 3, 3, 1, false},
    {"UPPER", "ts_upper", 1, 1, 1, false},
    {"LOWER", "ts_lower", 1, 1, 1, false},
    {"LTRIM", "ts_ltrim", 1, 1, 1, false},
    {"RTRIM", "ts_rtrim", 1, 1, 1, false},
    {"TRIM", "ts_trim", 1, 1, 1, false},
    {"REPLACE", "ts_replace", 3, 3, 3, false},
    {"CHARINDEX", "ts_charindex", 2, 3, 2, true},
    {"REPLICATE", "ts_replicate", 2, 2, 1, false},
    {"SPACE", "ts_space", 1, 1, 0, false},
    {"REVERSE", "ts_reverse", 1, 1, 1, false},
    {"CONCAT", "ts_concat", 2, kMany, kMany, false},
    {"CHAR", "ts_char", 1, 1, 0, false},
    {"ASCII", "ts_ascii", 1, 1, 1, true},
}};

}  // namespace

void ExpressionBinder::requireArguments(const tsql::FunctionCall& call, std::size_t least,
                                        std::size_t most) {
  const std::size_t count = call.arguments.size();
  if (count >= least && count <= most) {
    return;
  }
  const std::string name = foldCase(call.name.parts.back());
  throw SqlError(174, "The " + name + " function requires " +
                          (least == most ? std::to_string(least)
                                         : std::to_string(least) + " to " + std::to_string(most)) +
                          " argument(s).");
}

BoundExpression ExpressionBinder::bindCall(const tsql::FunctionCall& call,
                                           const tsql::Position& position, const Clause& clause) {
  if (call.name.parts.size() > 1) {
    refuse(context_.text, position, "scalar functions of the database");
  }
  if (isAggregate(call)) {
    return bindAggregate(call, position, clause);
  }
  const std::string name = upperText(call.name.parts.front());
  if (call.distinct) {
    refuse(context_.text, position, "DISTINCT in the function " + name);
  }
  if (name == "ISNULL") {
    return bindIsNull(call, clause);
  }
  if (name == "COALESCE") {
    return bindCoalesce(call, position, clause);
  }
  if (name == "NULLIF") {
    return bindNullIf(call, position, clause);
  }
  if (name == "ABS") {
    return bindAbs(call, position, clause);
  }
  if (name == "SCOPE_IDENTITY") {
    requireArguments(call, 0, 0);
    BoundExpression bound;
    bound.pending.emplace();
    bound.pending->source = SlotSource::Identity;
    bound.type = decimalType(38, 0);
    return bound;
  }
  if (auto date = bindDateCall(name, call, position, clause)) {
    return *date;
  }
  return bindTextCall(name, call, position, clause);
}

BoundExpression ExpressionBinder::bindIsNull(const tsql::FunctionCall& call, const Clause& clause) {
  requireArguments(call, 2, 2);
  BoundExpression checked = bind(*call.arguments[0], clause);
  BoundExpression replacement = bind(*call.arguments[1], clause);
  // NULL has no type of its own to convert the replacement to.
  if (checked.type.kind == TypeKind::Null) {
    replacement.reach |= checked.reach;
    return replacement;
  }
  // Unlike COALESCE, ISNULL has the type of its first argument, and cuts the second one to it.
  const Type type = checked.type;
  const std::string first = constants_.inOwnType(checked);
  return computed(
      "ifnull(" + first + "," + constants_.coerce(replacement, type, Conversion::Cut) + ")", type,
      checked.reach | replacement.reach);
}

BoundExpression ExpressionBinder::bindNullIf(const tsql::FunctionCall& call,
                                             const tsql::Position& position, const Clause& clause) {
  requireArguments(call, 2, 2);
  BoundExpression value = bind(*call.arguments[0], clause);
  BoundExpression other = bind(*call.arguments[1], clause);
  const Type type = value.type;
  const Type common = constants_.unify({&value, &other}, position);
  // NULLIF gives its first argument as it was, which could not be compared as it is.
  if (!sameForm(type, common)) {
    refuse(context_.text, position, "NULLIF of different types");
  }
  const bool collate = common.isText() && !value.isColumn;
  const std::string first = value.pending ? constants_.inOwnType(value) : value.sql;
  return computed("nullif(" + first + (collate ? std::string(kCollateClause) : "") + "," +
                      constants_.coerceToCompare(other, common) + ")",
                  type, value.reach | other.reach);
}

BoundExpression ExpressionBinder::bindAbs(const tsql::FunctionCall& call,
                                          const tsql::Position& position, const Clause& clause) {
  requireArguments(call, 1, 1);
  BoundExpression value = bind(*call.arguments[0], clause);
  if (!value.type.isNumber()) {
    refuse(context_.text, position, "ABS of a value that is not a number");
  }
  const std::string sql = constants_.inOwnType(value);
  if (value.type.isWide()) {
    return computed("ts_wide_abs(" + sql + ")", value.type, value.reach);
  }
  const std::string absolute = "abs(" + sql + ")";
  return value.type.isInteger() ? computed("ts_integer(" + absolute + "," +
                                               std::to_string(encodeType(value.type)) + ")",
                                           value.type, value.reach)
                                : computed(absolute, value.type, value.reach);
}

BoundExpression ExpressionBinder::bindCoalesce(const tsql::FunctionCall& call,
                                               const tsql::Position& position,
                                               const Clause& clause) {
  std::vector<BoundExpression> values;
  Type type;
  Reach reach;
  for (const tsql::ExpressionPtr& argument : call.arguments) {
    values.push_back(bind(*argument, clause));
    if (values.back().pending && values.back().type.isNumber()) {
      constants_.guard(values.back(), Guard::Kind::SameType, values.back().type);
    }
    reach |= values.back().reach;
    type = constants_.requireCommonType(type, values.back().type, position);
  }
  if (values.size() < 2 || type.kind == TypeKind::Null) {
    throw SqlError(4127,
                   "At least one of the arguments to COALESCE must be an expression that is "
                   "not the NULL constant.");
  }
  std::string sql = "coalesce(";
  for (BoundExpression& value : values) {
    sql += (sql.back() == '(' ? "" : ",") + constants_.coerce(value, type, Conversion::Compare);
  }
  return computed(sql + ")", type, reach);
}

/// The style of a CONVERT: dates are written in those that `isDateStyle` has and read in the ISO
/// ones; where no date meets a text there is only the style 0.
int ExpressionBinder::bindStyle(const tsql::Expression& expression, const Type& from,
                                const Type& to) {
  const auto* const literal = std::get_if<tsql::Literal>(&expression.node);
  if (literal == nullptr || literal->kind != tsql::LiteralKind::Integer) {
    refuse(context_.text, expression.position, "CONVERT with a style that is not a constant");
  }
  constants_.guardText(*literal);
  const auto number = Decimal::parse(literal->text);
  const std::int64_t style = number ? number->toInteger().value_or(-1) : -1;
  const bool writes = from.isDate() && to.isText() && isDateStyle(style);
  const bool reads = from.isText() && to.isDate() &&
                     (style == 112 || style == 120 || style == 121 || style == 126);
  if (style != 0 && !writes && !reads) {
    refuse(context_.text, expression.position, "CONVERT with the style " + literal->text);
  }
  return static_cast<int>(style);
}

BoundExpression ExpressionBinder::bindCast(const tsql::Cast& node, const tsql::Position& position,
                                           const Clause& clause) {
  const Type type = castType(node.type, context_.text);
  BoundExpression operand = bind(*node.operand, clause);
  if (operand.type.isDate() && type.isNumber()) {
    refuse(context_.text, position, "a date as a number");
  }
  constants_.requireConvertible(operand.type, type, position);
  if (node.style) {
    const int style = bindStyle(*node.style, operand.type, type);
    if (operand.type.isDate() && type.isText()) {
      const std::string date = constants_.inOwnType(operand);
      BoundExpression text =
          computed("ts_date_text(" + date + "," + std::to_string(encodeType(operand.type)) + "," +
                       std::to_string(style) + ")",
                   kVarChar, operand.reach);
      return computed(constants_.coerce(text, type, Conversion::Cut), type, operand.reach);
    }
  }
  if (operand.type.kind == TypeKind::Null && !operand.pending) {
    return computed("NULL", type, operand.reach);
  }
  return computed(constants_.coerce(operand, type, Conversion::Cut), type, operand.reach);
}

/// The expression as a text; `type` stays what it was before.
BoundExpression ExpressionBinder::bindText(const tsql::Expression& expression,
                                           const Clause& clause) {
  BoundExpression bound = bind(expression, clause);
  if (bound.type.isText()) {
    bound.sql = constants_.inOwnType(bound);
  } else {
    constants_.requireConvertible(bound.type, kVarChar, expression.position);
    bound.sql = constants_.coerce(bound, kVarChar, Conversion::Compare);
  }
  return bound;
}

BoundExpression ExpressionBinder::bindTextCall(std::string_view name,
                                               const tsql::FunctionCall& call,
                                               const tsql::Position& position,
                                               const Clause& clause) {
  const auto* const found = std::find_if(kTextFunctions.begin(), kTextFunctions.end(),
                                         [name](const auto& each) { return each.name == name; });
  if (found == kTextFunctions.end()) {
    refuse(context_.text, position, "the function " + std::string(name));
  }
  requireArguments(call, found->least, found->most);
  std::vector<std::string> arguments;
  Reach reach;
  bool unicode = false;
  std::int32_t length = kUnlimited;
  for (std::size_t i = 0; i < call.arguments.size(); ++i) {
    if (i < found->texts) {
      const BoundExpression text = bindText(*call.arguments[i], clause);
      arguments.push_back(text.sql);
      reach |= text.reach;
      unicode = unicode || text.type.isUnicode();
      // Functions that do not build give no text longer than their first one.
      length = i == 0 && text.type.isText() ? text.type.length : length;
    } else {
      BoundExpression number = bind(*call.arguments[i], clause);
      constants_.requireConvertible(number.type, kBigInt, position);
      arguments.push_back(constants_.coerce(number, kBigInt, Conversion::Compare));
      reach |= number.reach;
    }
  }
  const Type kind = unicode ? kNVarChar : kVarChar;
  // The length of what these build is not known beforehand.
  const bool grows = name == "REPLACE" || name == "REPLICATE" || name == "CONCAT";
  return computed(std::string(found->sqlName) + "(" + joinAll(arguments, ",") + ")",
                  found->givesWholeNumber ? kInt : textResult(kind, grows ? kUnlimited : length),
                  reach);
}

}  // namespace azcoll::embedded
