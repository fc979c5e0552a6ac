#pragma once

#include <string>
#include <vector>

#include "embedded/bind/scope.h"
#include "embedded/bind/translation.h"
#include "embedded/plan/slots.h"
#include "embedded/values/conversions.h"
#include "embedded/values/types.h"
#include "tsql/ast.h"

namespace azcoll::embedded {

/// Constants, variables and markers on their way into a statement. They get their text only when
/// the other operand is known, because it decides the type to which they are converted: once, when
/// the statement is bound, instead of row by row. A plan is shared by all texts of its shape, so
/// whatever is read off a constant here (its type, its digits, its text) is guarded: a text whose
/// constant differs gets a plan of its own.
class Constants {
 public:
  Constants(const BindContext& context, Translation& translation)
      : context_(context), translation_(translation) {}

  /// A constant that waits for what it meets.
  [[nodiscard]] BoundExpression bindLiteral(const tsql::Literal& literal) const;
  /// The text of an expression in its own type. Refuses a marker: nothing determines its type.
  [[nodiscard]] std::string inOwnType(BoundExpression& expression);
  /// The text of an expression converted to `type`; throws `SqlError` 206 or 257 where T-SQL has no
  /// such conversion.
  [[nodiscard]] std::string coerce(BoundExpression& expression, const Type& type,
                                   Conversion conversion);
  /// The text of an expression that is compared with others in their common type.
  [[nodiscard]] std::string coerceToCompare(BoundExpression& expression, const Type& common);
  /// The type in which the operands of a comparison are compared.
  [[nodiscard]] Type unify(const std::vector<BoundExpression*>& operands,
                           const tsql::Position& position);
  /// The type that holds the values of both; refuses decimals for which there is none.
  [[nodiscard]] Type requireCommonType(const Type& left, const Type& right,
                                       const tsql::Position& position) const;
  /// Throws `SqlError` 206 or 257 where T-SQL has no such conversion.
  void requireConvertible(const Type& from, const Type& to, const tsql::Position& position) const;
  /// The plan holds for constants like this one only.
  void guard(const BoundExpression& expression, Guard::Kind kind, const Type& type);
  /// The plan holds for this very constant only.
  void guardText(const tsql::Literal& literal);

 private:
  [[nodiscard]] Type unifyPending(const BoundExpression& pending, const Type& known,
                                  const tsql::Position& position);
  [[nodiscard]] std::string emitSlot(const BoundExpression& expression, const Type& target,
                                     Conversion conversion);
  [[nodiscard]] std::string emitConstant(const BoundExpression& expression, const Type& target,
                                         Conversion conversion) const;

  const BindContext& context_;
  Translation& translation_;
};

}  // namespace azcoll::embedded
