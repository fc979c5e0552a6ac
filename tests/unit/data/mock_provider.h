#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>

#include "gmock/gmock.h"

#include "data/connection.h"

namespace azcoll {

class MockConnection : public Connection {
 public:
  MOCK_METHOD(void, setConnectionString, (std::string text), (override));
  MOCK_METHOD(std::string, connectionString, (), (const, override));
  MOCK_METHOD(void, setCommandTimeout, (int seconds), (override));
  MOCK_METHOD(void, setCursorLocation, (CursorLocation location), (override));
  MOCK_METHOD(void, open, (std::string_view user, std::string_view password, CommandOption options),
              (override));
  MOCK_METHOD(void, close, (), (override));
  MOCK_METHOD(bool, isOpen, (), (const, override));
  MOCK_METHOD(std::shared_ptr<Recordset>, execute,
              (std::string_view text, std::int64_t& affected, CommandOption options), (override));
  MOCK_METHOD(void, beginTrans, (), (override));
  MOCK_METHOD(void, commitTrans, (), (override));
  MOCK_METHOD(void, rollbackTrans, (), (override));
  MOCK_METHOD(Errors&, errors, (), (override));
  MOCK_METHOD(std::shared_ptr<Recordset>, newRecordset, (), (override));
  MOCK_METHOD(std::shared_ptr<Command>, newCommand, (), (override));
};

class MockRecordset : public Recordset {
 public:
  MOCK_METHOD(void, setActiveConnection, (std::shared_ptr<Connection> connection), (override));
  MOCK_METHOD(void, setSource, (std::string text), (override));
  MOCK_METHOD(void, setCursorLocation, (CursorLocation location), (override));
  MOCK_METHOD(void, setCursorType, (CursorType type), (override));
  MOCK_METHOD(void, setLockType, (LockType type), (override));
  MOCK_METHOD(void, open, (CursorType type, LockType lock, CommandOption options), (override));
  MOCK_METHOD(void, open,
              (std::string source, std::shared_ptr<Connection> connection, CursorType type,
               LockType lock, CommandOption options),
              (override));
  MOCK_METHOD(void, close, (), (override));
  MOCK_METHOD(bool, isOpen, (), (const, override));
  MOCK_METHOD(std::int64_t, recordCount, (), (const, override));
  MOCK_METHOD(bool, atStart, (), (const, override));
  MOCK_METHOD(bool, atEnd, (), (const, override));
  MOCK_METHOD(void, moveFirst, (), (override));
  MOCK_METHOD(void, moveNext, (), (override));
  MOCK_METHOD(Fields&, fields, (), (override));
  MOCK_METHOD(void, setFilter, (std::string_view criteria), (override));
  MOCK_METHOD(void, find,
              (std::string_view criteria, std::int64_t skip, SearchDirection direction,
               Bookmark start),
              (override));
  MOCK_METHOD(void, addNew, (), (override));
  MOCK_METHOD(void, update, (), (override));
  MOCK_METHOD(void, cancelUpdate, (), (override));
  MOCK_METHOD(void, updateBatch, (Affect affect), (override));
  MOCK_METHOD(std::shared_ptr<Recordset>, nextRecordset, (), (override));
};

class MockFields : public Fields {
 public:
  MOCK_METHOD(std::size_t, count, (), (const, override));
  MOCK_METHOD(Field&, item, (std::string_view name), (override));
  MOCK_METHOD(Field&, item, (std::size_t index), (override));
};

class MockParameter : public Parameter {
 public:
  MOCK_METHOD(std::string, name, (), (const, override));
  MOCK_METHOD(ParameterDirection, direction, (), (const, override));
  MOCK_METHOD(Variant, value, (), (const, override));
  MOCK_METHOD(void, setValue, (const Variant& value), (override));
};

class MockParameters : public Parameters {
 public:
  MOCK_METHOD(std::size_t, count, (), (override));
  MOCK_METHOD(Parameter&, item, (std::string_view name), (override));
  MOCK_METHOD(Parameter&, item, (std::size_t index), (override));
};

class MockCommand : public Command {
 public:
  MOCK_METHOD(void, setActiveConnection, (std::shared_ptr<Connection> connection), (override));
  MOCK_METHOD(void, setCommandText, (std::string text), (override));
  MOCK_METHOD(void, setCommandType, (CommandOption type), (override));
  MOCK_METHOD(void, setCommandTimeout, (int seconds), (override));
  MOCK_METHOD(void, setPrepared, (bool prepared), (override));
  MOCK_METHOD(Parameters&, parameters, (), (override));
  MOCK_METHOD(std::shared_ptr<Recordset>, execute, (std::int64_t & affected, CommandOption options),
              (override));
};

}  // namespace azcoll
