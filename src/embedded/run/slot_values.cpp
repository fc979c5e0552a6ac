// The values of a statement's parameters, as they are bound when it runs.

#include <charconv>
#include <string>
#include <utility>

#include "embedded/plan/guards.h"
#include "embedded/plan/slots.h"
#include "embedded/run/batch_runner.h"
#include "embedded/sqlite/column_values.h"
#include "embedded/values/collation.h"
#include "embedded/values/conversions.h"
#include "embedded/values/date_values.h"
#include "embedded/values/literals.h"
#include "embedded/values/number_values.h"
#include "embedded/values/types.h"
#include "embedded/values/value.h"
#include "tsql/shape.h"

namespace azcoll::embedded {

namespace {

/// Whether the text fits a column of the type as it stands.
bool fitsAsItIs(std::string_view text, const Slot& slot) {
  const Type& type = slot.target;
  if (slot.conversion == Conversion::Compare || type.length == kUnlimited) {
    return true;
  }
  const auto length = static_cast<std::size_t>(type.length);
  // A text has at least as many bytes as characters, so the cheap question comes first. A padded
  // type needs a text of its own.
  return !type.isPadded() && (text.size() <= length || utf16Length(text) <= length);
}

/// Whether every value of `from` is one of `to` as it stands.
bool isAlready(const Type& from, const Type& to) {
  return from == to || (from.isInteger() && to.kind == TypeKind::BigInt);
}

}  // namespace

void BatchRunner::bind(const PreparedStatement& prepared) {
  if (prepared.failure) {
    throw *prepared.failure;
  }
  int position = 0;
  for (const Slot& slot : prepared.slots) {
    bindSlot(prepared.statement.get(), ++position, slot);
  }
}

void BatchRunner::bindLiteral(sqlite3_stmt* statement, int position, const Slot& slot) {
  const tsql::LiteralToken& token = shape_->literals[slot.index];
  const Type& target = slot.target;
  if (token.kind == tsql::LiteralKind::Null) {
    sqlite3_bind_null(statement, position);
    return;
  }
  // The two kinds that nearly all constants are of take no detour.
  const std::size_t safeDigits = target.kind == TypeKind::BigInt ? 18 : 9;
  if (token.kind == tsql::LiteralKind::Integer && target.isInteger() &&
      target.kind != TypeKind::Bit && token.raw.size() <= safeDigits) {
    std::int64_t number = 0;
    std::from_chars(token.raw.data(), token.raw.data() + token.raw.size(), number);
    number = slot.negate ? -number : number;
    if (target.kind != TypeKind::BigInt) {
      number = checkedInteger(number, target);
    }
    sqlite3_bind_int64(statement, position, number);
    return;
  }
  const bool isText =
      token.kind == tsql::LiteralKind::Text || token.kind == tsql::LiteralKind::NationalText;
  if (isText && target.isText() && !token.hasDoubledQuotes && fitsAsItIs(token.raw, slot)) {
    // The text of the statement outlives its execution: no copy.
    sqlite3_bind_text64(statement, position, token.raw.empty() ? "" : token.raw.data(),
                        token.raw.size(), SQLITE_STATIC, SQLITE_UTF8);
    return;
  }
  const std::string text = literalText(token);
  const Type type = literalType(token.kind, text);
  Value value = literalValue(token.kind, text, type);
  if (slot.negate) {
    value = negated(std::move(value));
  }
  bindValue(statement, position, convert(std::move(value), type, target, slot.conversion));
}

void BatchRunner::bindSlot(sqlite3_stmt* statement, int position, const Slot& slot) {
  if (slot.source == SlotSource::Literal) {
    bindLiteral(statement, position, slot);
  } else if (slot.source == SlotSource::Variable && !slot.negate &&
             isAlready(plan_.variables.scalars[slot.index].type, slot.target)) {
    bindValue(statement, position, variables_[slot.index]);  // a text is copied once, not twice
  } else {
    bindValue(statement, position, slotValue(slot));
  }
}

Value BatchRunner::slotValue(const Slot& slot) const {
  Value value;
  Type type = kInt;
  switch (slot.source) {
    case SlotSource::Variable:
      value = variables_[slot.index];
      type = plan_.variables.scalars[slot.index].type;
      break;
    // Converted straight from the caller's value, whose own type counts.
    case SlotSource::Marker:
      value = valueFromVariant(parameters_->at(slot.index), slot.target, slot.conversion);
      type = slot.target;
      break;
    case SlotSource::Now:
      type = kDateTime;
      value = Value::ofText(storedDate(*fitDate(currentDate(), kDateTime), kDateTime));
      break;
    case SlotSource::RowCount:
      value = Value::ofInteger(session_.rowCount);
      break;
    case SlotSource::TransactionCount:
      // Transactions do not nest here.
      value = Value::ofInteger(session_.database.inTransaction() ? 1 : 0);
      break;
    // @@IDENTITY and SCOPE_IDENTITY() are NUMERIC(38, 0), NULL before the first insert.
    default:
      type = decimalType(38, 0);
      if (session_.lastIdentity) {
        value = Value::ofDigits(*session_.lastIdentity, type.precision);
      }
      break;
  }
  if (slot.negate) {
    value = negated(std::move(value));
  }
  return convert(std::move(value), type, slot.target, slot.conversion);
}

}  // namespace azcoll::embedded
