#include "cursor/client_recordset.h"
#include "data/error.h"
#include "data/messages.h"
#include "data/text.h"

namespace azcoll::cursor {
namespace {

/// A field may outlive the result that it was taken from: the recordset can be opened again on one
/// with fewer columns.
std::size_t existing(const ClientRecordset& recordset, std::size_t column) {
  if (column >= recordset.columns().size()) {
    throw Error(join(messages::kItemNotFound, column));
  }
  return column;
}

}  // namespace

std::string ClientField::name() const {
  return recordset_.columns()[existing(recordset_, column_)].name;
}

Variant ClientField::value() const { return recordset_.value(existing(recordset_, column_)); }

void ClientField::setValue(const Variant& value) {
  recordset_.setValue(existing(recordset_, column_), value);
}

std::size_t ClientFields::count() const { return recordset_.columns().size(); }

Field& ClientFields::item(std::string_view name) {
  const std::optional<std::size_t> column = recordset_.columnNamed(name);
  if (!column) {
    throw Error(join(messages::kItemNotFound, name));
  }
  return item(*column);
}

Field& ClientFields::item(std::size_t index) {
  existing(recordset_, index);
  // Callers hold references to fields: they are kept apart from the vector that grows.
  if (fields_.size() <= index) {
    fields_.resize(recordset_.columns().size());
  }
  if (!fields_[index]) {
    fields_[index] = std::make_unique<ClientField>(recordset_, index);
  }
  return *fields_[index];
}

}  // namespace azcoll::cursor
