#include "unit/service_frame/fakes.h"

#include <utility>

#include "data/error.h"
#include "data/variant.h"
#include "text/trimming.h"

namespace azcoll::frame_tests {

void refuse(std::string_view description) {
  ErrorInfo info;
  info.description = std::string{description};
  throw Error::provider(std::move(info));
}

Field& FakeFields::item(std::string_view name) {
  for (const auto& field : row_) {
    if (field->name() == name) {
      return *field;
    }
  }
  throw Error{"no column " + std::string{name}};
}

Field& FakeFields::item(std::size_t index) {
  if (index >= row_.size()) {
    throw Error{"no such column"};
  }
  return *row_[index];
}

void FakeFields::load(const Rows& rows, std::size_t position) {
  row_.clear();
  for (std::size_t column = 0; column < rows.columns.size(); ++column) {
    row_.push_back(
        std::make_unique<FakeField>(rows.columns[column], rows.values.at(position).at(column)));
  }
}

void FakeRecordset::setActiveConnection(std::shared_ptr<Connection> connection) {
  connection_ = std::move(connection);
}

void FakeRecordset::open(CursorType /*type*/, LockType /*lock*/, CommandOption /*options*/) {
  failIfAsked(failures, "open");
  if (home == nullptr || connection_ != home) {
    refuse("recordset without a connection");
  }
  rows = home->query(source_)->rows;
  position_ = 0;
  open_ = true;
}

void FakeRecordset::open(std::string source, std::shared_ptr<Connection> connection,
                         CursorType type, LockType lock, CommandOption options) {
  setSource(std::move(source));
  setActiveConnection(std::move(connection));
  open(type, lock, options);
}

std::int64_t FakeRecordset::recordCount() const {
  failIfAsked(failures, "recordCount");
  return static_cast<std::int64_t>(rows.values.size());
}

bool FakeRecordset::atStart() const {
  failIfAsked(failures, "atStart");
  return rows.values.empty();
}

bool FakeRecordset::atEnd() const {
  failIfAsked(failures, "atEnd");
  return position_ >= rows.values.size();
}

void FakeRecordset::moveFirst() {
  failIfAsked(failures, "moveFirst");
  position_ = 0;
}

void FakeRecordset::moveNext() {
  failIfAsked(failures, "moveNext");
  ++position_;
}

Fields& FakeRecordset::fields() {
  failIfAsked(failures, "fields");
  if (position_ >= rows.values.size()) {
    throw Error{"no current row"};
  }
  fields_.load(rows, position_);
  return fields_;
}

void FakeRecordset::setFilter(std::string_view /*criteria*/) { refuse("not expected: filter"); }

void FakeRecordset::find(std::string_view criteria, std::int64_t /*skip*/,
                         SearchDirection /*direction*/, Bookmark /*start*/) {
  failIfAsked(failures, "find");
  const std::size_t equals = criteria.find('=');
  const std::string_view column = trim(criteria.substr(0, equals));
  const std::int64_t wanted = Variant{trim(criteria.substr(equals + 1))}.toInt64();
  for (position_ = 0; position_ < rows.values.size(); ++position_) {
    if (sameValue(fields().item(column).value(), Variant{wanted})) {
      return;
    }
  }
}

FakeParameters::FakeParameters() {
  for (const char* name : {"@CodiceDitta", "@DataInizioElaborazione", "@GestioneDuplicazioneCliFor",
                           "@EscludiDittaPrincipale", "@EscludiDittaCorrente", "@TipoCF",
                           "@CodIntermedio", "@CodSede", "@DitteCollegate"}) {
    parameters_.push_back(std::make_unique<FakeParameter>(name));
  }
}

Parameter& FakeParameters::item(std::string_view name) {
  for (const auto& parameter : parameters_) {
    if (parameter->name() == name) {
      return *parameter;
    }
  }
  throw Error{"no parameter " + std::string{name}};
}

Parameter& FakeParameters::item(std::size_t index) {
  if (index >= parameters_.size()) {
    throw Error{"no such parameter"};
  }
  return *parameters_[index];
}

void FakeCommand::setActiveConnection(std::shared_ptr<Connection> connection) {
  connection_ = std::move(connection);
}

std::shared_ptr<Recordset> FakeCommand::execute(std::int64_t& recordsAffected,
                                                CommandOption /*options*/) {
  home_.requireOpen();
  failIfAsked(home_.failures, "command");
  home_.statements.emplace_back("procedure");
  recordsAffected = -1;
  auto result = std::make_shared<FakeRecordset>(home_.procedureRows);
  result->failures = home_.recordsetFailures;
  return result;
}

void FakeConnection::requireOpen() const {
  if (!open_) {
    refuse("connection is closed");
  }
}

std::shared_ptr<FakeRecordset> FakeConnection::query(std::string_view text) {
  requireOpen();
  failIfAsked(failures, "query");
  statements.emplace_back(text);
  return std::make_shared<FakeRecordset>(rows);
}

void FakeConnection::setConnectionString(std::string text) {
  log.push_back("string " + text);
  failIfAsked(failures, "string");
  string_ = std::move(text);
}

void FakeConnection::setCommandTimeout(int seconds) {
  log.push_back("timeout " + std::to_string(seconds));
  failIfAsked(failures, "timeout");
}

void FakeConnection::setCursorLocation(CursorLocation location) {
  log.push_back("cursor " + std::to_string(static_cast<int>(location)));
  failIfAsked(failures, "cursor");
}

void FakeConnection::open(std::string_view user, std::string_view password, CommandOption options) {
  log.push_back("open <" + std::string{user} + "> <" + std::string{password} + "> " +
                std::to_string(static_cast<int>(options)));
  failIfAsked(failures, "open");
  open_ = true;
}

void FakeConnection::close() {
  log.emplace_back("close");
  failIfAsked(failures, "close");
  open_ = false;
}

std::shared_ptr<Recordset> FakeConnection::execute(std::string_view commandText,
                                                   std::int64_t& recordsAffected,
                                                   CommandOption /*options*/) {
  requireOpen();
  if (commandText.starts_with("SELECT")) {
    recordsAffected = -1;
    return query(commandText);
  }
  failIfAsked(failures, "change");
  statements.emplace_back(commandText);
  recordsAffected = affected(commandText);
  return nullptr;
}

void FakeConnection::beginTrans() {
  log.emplace_back("begin");
  failIfAsked(failures, "begin");
}

std::shared_ptr<Recordset> FakeConnection::newRecordset() {
  failIfAsked(failures, "newRecordset");
  auto result = std::make_shared<FakeRecordset>(Rows{}, false);
  result->failures = recordsetFailures;
  result->home = shared_from_this();
  return result;
}

std::shared_ptr<Command> FakeConnection::newCommand() {
  failIfAsked(failures, "newCommand");
  return std::make_shared<FakeCommand>(*this);
}

std::shared_ptr<Connection> FakePlatform::newConnection(std::string_view connectionString) {
  requested.emplace_back(connectionString);
  failIfAsked(failures, "newConnection");
  return connection;
}

std::unique_ptr<DateConverter> FakePlatform::newDateConverter() {
  failIfAsked(failures, "newDateConverter");
  return converter ? converter() : Platform::newDateConverter();
}

Date FakePlatform::today() {
  failIfAsked(failures, "today");
  return day;
}

}  // namespace azcoll::frame_tests
