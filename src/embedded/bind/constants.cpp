#include "embedded/bind/constants.h"

#include "embedded/plan/slots.h"
#include "embedded/sqlite/sql_text.h"
#include "embedded/values/conversions.h"
#include "embedded/values/literals.h"
#include "embedded/values/sql_error.h"
#include "embedded/values/types.h"
#include "embedded/values/value.h"

namespace azcoll::embedded {

namespace {

bool isLiteral(const BoundExpression& expression) {
  return expression.pending && expression.pending->source == SlotSource::Literal;
}

bool isMarker(const BoundExpression& expression) {
  return expression.pending && expression.pending->source == SlotSource::Marker;
}

/// Whether a value of `from` in SQLite is not yet one of `to`. Where it is one already, the text
/// stays a bare column and an index on it serves.
bool needsConversion(const Type& from, const Type& to, Conversion conversion) {
  if (from.kind == TypeKind::Null || to.kind == TypeKind::Null || from == to) {
    return false;
  }
  if (conversion == Conversion::Compare) {
    // Compared are values, whatever lengths and precisions their types allow.
    return !sameForm(from, to);
  }
  if (from.isText() && to.isText()) {
    const bool fits =
        to.length == kUnlimited || (from.length != kUnlimited && from.length <= to.length);
    return !fits || (to.isPadded() && !(from.isPadded() && from.length == to.length));
  }
  if (from.isInteger() && to.isInteger()) {
    return to.kind < from.kind;  // a narrower type has to refuse what it cannot hold
  }
  if (from.isDecimal() && to.isDecimal()) {
    return !sameForm(from, to) || to.precision < from.precision;
  }
  if (from.isInteger() && to.isDecimal()) {
    return !sameForm(from, to) || to.precision < integerDigits(from);
  }
  return !(from.kind == TypeKind::Real && to.kind == TypeKind::Float);
}

}  // namespace

BoundExpression Constants::bindLiteral(const tsql::Literal& literal) const {
  BoundExpression bound;
  bound.type = literalType(literal.kind, literal.text);
  // A NULL that is part of the shape need not be bound, and SQLite sees that it is one.
  if (literal.kind == tsql::LiteralKind::Null &&
      (literal.ordinal == tsql::kNotLifted || context_.constantsInside)) {
    bound.sql = "NULL";
    return bound;
  }
  bound.literal = &literal;
  bound.pending.emplace();
  bound.pending->source = SlotSource::Literal;
  bound.pending->index = static_cast<std::uint32_t>(literal.ordinal);
  return bound;
}

void Constants::guard(const BoundExpression& expression, Guard::Kind kind, const Type& type) {
  if (isLiteral(expression) && !context_.constantsInside) {
    translation_.guards->push_back({kind, expression.literal->ordinal, type, {}});
  }
}

void Constants::guardText(const tsql::Literal& literal) {
  if (!context_.constantsInside && literal.ordinal != tsql::kNotLifted) {
    translation_.guards->push_back({Guard::Kind::SameText, literal.ordinal, {}, literal.text});
  }
}

std::string Constants::emitConstant(const BoundExpression& expression, const Type& target,
                                    Conversion conversion) const {
  const tsql::Literal& literal = *expression.literal;
  const Type type = literalType(literal.kind, literal.text);
  Value value = literalValue(literal.kind, literal.text, type);
  if (expression.pending->negate) {
    value = negated(std::move(value));
  }
  try {
    return sqliteConstant(convert(std::move(value), type, target, conversion));
  } catch (const SqlError& error) {
    // The statement fails when it is reached, after the statements before it have run.
    if (!translation_.failure) {
      translation_.failure = error;
    }
    return "NULL";
  }
}

std::string Constants::emitSlot(const BoundExpression& expression, const Type& target,
                                Conversion conversion) {
  if (isLiteral(expression) && context_.constantsInside) {
    return emitConstant(expression, target, conversion);
  }
  Slot slot = *expression.pending;
  slot.target = target;
  slot.conversion = conversion;
  translation_.slots.push_back(slot);
  return "?" + std::to_string(translation_.slots.size());
}

std::string Constants::inOwnType(BoundExpression& expression) {
  if (!expression.pending) {
    return expression.sql;
  }
  if (isMarker(expression)) {
    throw SqlError(0, "Outside the supported T-SQL: a ? marker whose type cannot be determined.");
  }
  if (expression.type.kind == TypeKind::Null) {
    return "NULL";
  }
  // All texts have one type, and so have all floats; that of a number depends on its digits.
  if (!expression.type.isText() && !expression.type.isFloat()) {
    guard(expression, Guard::Kind::SameType, expression.type);
  }
  return emitSlot(expression, expression.type, Conversion::Compare);
}

void Constants::requireConvertible(const Type& from, const Type& to,
                                   const tsql::Position& position) const {
  if (isConvertible(from, to)) {
    return;
  }
  if (from.isFloat() && to.isText()) {
    refuse(context_.text, position, "a floating-point number as a text");
  }
  if (from.isDate() && (to.isInteger() || to.isDecimal())) {
    throw SqlError(257, "Implicit conversion from data type " + std::string(typeName(from)) +
                            " to " + std::string(typeName(to)) +
                            " is not allowed. Use the CONVERT function to run this query.");
  }
  throw SqlError(206, "Operand type clash: " + std::string(typeName(from)) +
                          " is incompatible with " + std::string(typeName(to)));
}

std::string Constants::coerce(BoundExpression& expression, const Type& type,
                              Conversion conversion) {
  if (expression.pending) {
    return emitSlot(expression, type, conversion);
  }
  requireConvertible(expression.type, type, {});
  if (!needsConversion(expression.type, type, conversion)) {
    return expression.sql;
  }
  return "ts_cast(" + expression.sql + "," + std::to_string(encodeType(expression.type)) + "," +
         std::to_string(encodeType(type)) + "," + std::to_string(static_cast<int>(conversion)) +
         ")";
}

Type Constants::requireCommonType(const Type& left, const Type& right,
                                  const tsql::Position& position) const {
  const std::optional<Type> type = commonType(left, right);
  if (!type) {
    refuse(context_.text, position, "decimals that have no common type of at most 38 digits");
  }
  requireConvertible(left, *type, position);
  requireConvertible(right, *type, position);
  return *type;
}

/// The common type of a constant or variable and of what it meets. As far as possible it is the
/// type of the other side, so that a column stays a bare column and its index serves.
Type Constants::unifyPending(const BoundExpression& pending, const Type& known,
                             const tsql::Position& position) {
  const Type& own = pending.type;
  if (isMarker(pending) || own.kind == TypeKind::Null || (known.isText() && own.isText())) {
    return known;
  }
  if (own.isText()) {
    return known;  // a text takes the type of the number or date that it meets
  }
  const bool whole = own.isInteger() || (own.isDecimal() && own.scale == 0 && !own.isWide());
  if (known.isInteger() && whole) {
    // SQLite's integers have 64 bits whatever the column's type is: any constant of at most 18
    // digits is compared as it is, and the column needs no conversion.
    guard(pending, Guard::Kind::SmallInteger, {});
    return known;
  }
  if (known.isDecimal() && own.isInteger()) {
    return known;
  }
  if (known.isDecimal() && own.isDecimal() && own.scale <= known.scale) {
    // More fractional digits than the column has would need a conversion of the column.
    guard(pending, Guard::Kind::Scale, known);
    return known;
  }
  // Every number becomes a FLOAT where it meets one: its digits do not matter to the plan.
  if (known.isFloat() && own.isNumber()) {
    return kFloat;
  }
  if (!own.isDate()) {
    guard(pending, Guard::Kind::SameType, own);
  }
  return requireCommonType(known, own, position);
}

Type Constants::unify(const std::vector<BoundExpression*>& operands,
                      const tsql::Position& position) {
  Type known;
  // What has a text decides: a constant can be converted now, a column only row by row.
  for (const BoundExpression* const operand : operands) {
    if (!operand->pending) {
      known = requireCommonType(known, operand->type, position);
    }
  }
  for (const BoundExpression* const operand : operands) {
    if (!operand->pending) {
      continue;
    }
    if (known.kind == TypeKind::Null) {
      if (!operand->type.isText() && operand->type.kind != TypeKind::Null) {
        guard(*operand, Guard::Kind::SameType, operand->type);
      }
      known = operand->type;
    } else {
      known = unifyPending(*operand, known, position);
    }
  }
  return known.kind == TypeKind::Null ? kInt : known;  // NULL alone counts as INT
}

std::string Constants::coerceToCompare(BoundExpression& expression, const Type& common) {
  if (!expression.pending) {
    return coerce(expression, common, Conversion::Compare);
  }
  const Type& own = expression.type;
  const bool number = own.isNumber() || isMarker(expression);
  // A constant is compared as it is: it must be neither cut to the length or precision of what it
  // meets nor refused for not fitting, only brought into the same form of storage.
  if (common.isText()) {
    return emitSlot(expression, common.isUnicode() ? kNVarChar : kVarChar, Conversion::Compare);
  }
  if (common.kind == TypeKind::Bit && isMarker(expression)) {
    return emitSlot(expression, common, Conversion::Compare);  // True is 1 here, not -1
  }
  if (common.isInteger() && number) {
    return emitSlot(expression, kBigInt, Conversion::Compare);
  }
  if (common.isDecimal()) {
    // A text that meets a decimal is read as that decimal, and what does not fit is an error.
    const Type widest = decimalType(common.isWide() ? 38 : 18, common.scale);
    return emitSlot(expression, number ? widest : common,
                    number ? Conversion::Compare : Conversion::Cut);
  }
  return emitSlot(expression, common, Conversion::Compare);
}

}  // namespace azcoll::embedded
