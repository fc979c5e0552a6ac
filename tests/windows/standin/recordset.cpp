#include "data/error.h"
#include "data/messages.h"
#include "windows/standin/objects.h"

namespace azcoll::test {
namespace {

/// A column; keeps the recordset's rows alive, as ADO's does.
class StandInField final : public LateObject {
 public:
  StandInField(std::shared_ptr<Recordset> rows, Field& field)
      : LateObject{"Field " + field.name()}, rows_{std::move(rows)}, field_{field} {
    setMembers({{L"Value",
                 [this](const CallArguments& arguments) {
                   if (!arguments.assigns()) {
                     return result(field_.value());
                   }
                   field_.setValue(arguments.value(0));
                   return nothing();
                 }},
                {L"Name", [this](const auto&) { return result(field_.name()); }}});
  }

 private:
  std::shared_ptr<Recordset> rows_;
  Field& field_;
};

IDispatch* fieldOf(const std::shared_ptr<Recordset>& rows, const Variant& key) {
  Fields& fields = rows->fields();
  Field& field = key.kind() == Variant::Kind::Text
                     ? fields.item(key.text())
                     : fields.item(static_cast<std::size_t>(key.toInt64()));
  return new StandInField{rows, field};
}

class StandInFields final : public LateObject {
 public:
  explicit StandInFields(std::shared_ptr<Recordset> rows)
      : LateObject{"Fields"}, rows_{std::move(rows)} {
    setMembers({{L"Item",
                 [this](const CallArguments& arguments) {
                   return result(fieldOf(rows_, arguments.value(0)));
                 }},
                {L"Count", [this](const auto&) {
                   return result(static_cast<std::int32_t>(rows_->fields().count()));
                 }}});
  }

 private:
  std::shared_ptr<Recordset> rows_;
};

/// A member without arguments that only acts.
template <typename Work>
LateMember action(const wchar_t* name, Work work) {
  return {name, [work](const CallArguments&) {
            work();
            return nothing();
          }};
}

/// A number that is set and read.
template <typename Enumeration>
LateMember setting(const wchar_t* name, Enumeration& value) {
  return {name, [&value](const CallArguments& arguments) {
            if (!arguments.assigns()) {
              return result(static_cast<std::int32_t>(value));
            }
            value = static_cast<Enumeration>(arguments.number(0, 0));
            return nothing();
          }};
}

}  // namespace

StandInRecordset::StandInRecordset(std::shared_ptr<Recordset> rows, IDispatch* connection)
    : LateObject{"Recordset"},
      rows_{std::move(rows)},
      connection_{ado::ComPtr<IDispatch>::share(connection)} {
  Members members = settings();
  for (LateMember& member : rowMembers()) {
    members.push_back(std::move(member));
  }
  setMembers(std::move(members));
}

Recordset& StandInRecordset::rows() {
  if (!rows_) {
    throw Error(std::string{messages::kRecordsetClosed});
  }
  return *rows_;
}

void StandInRecordset::setConnection(IDispatch* connection) {
  connection_ = ado::ComPtr<IDispatch>::share(connection);
  if (isOpen()) {
    rows_->setActiveConnection(connection == nullptr ? nullptr
                                                     : StandInConnection::from(connection).inner());
  }
}

// What was set before stays for the engine's recordset to settle, as ADO's own settles it.
void StandInRecordset::open(const CallArguments& arguments) {
  const auto cursor = static_cast<CursorType>(arguments.number(2, -1));
  const auto lock = static_cast<LockType>(arguments.number(3, -1));
  const auto options = static_cast<CommandOption>(arguments.number(4, -1));
  const bool given = arguments.at(1) != nullptr;
  if (given) {
    connection_ = ado::ComPtr<IDispatch>::share(arguments.object(1));
  }
  if (!connection_) {
    throw Error(std::string{messages::kNoConnection});
  }
  const std::shared_ptr<Connection>& inner = StandInConnection::from(connection_.get()).inner();
  std::shared_ptr<Recordset> rows = inner->newRecordset();
  rows->setCursorLocation(location_);
  rows->setCursorType(cursor_);
  rows->setLockType(lock_);
  if (arguments.at(0) != nullptr) {
    source_ = arguments.text(0);
  }
  if (given) {
    rows->open(source_, inner, cursor, lock, options);
  } else {
    rows->setActiveConnection(inner);
    rows->setSource(source_);
    rows->open(cursor, lock, options);
  }
  rows_ = std::move(rows);
}

LateObject::Members StandInRecordset::settings() {
  return {{L"Fields",
           [this](const CallArguments& arguments) {
             static_cast<void>(rows());  // closed: an error
             if (arguments.count() > 0) {
               return result(fieldOf(rows_, arguments.value(0)));
             }
             return result(new StandInFields{rows_});
           }},
          {L"ActiveConnection",
           [this](const CallArguments& arguments) {
             if (arguments.assigns()) {
               setConnection(arguments.object(0));
               return nothing();
             }
             return result(ado::ComPtr<IDispatch>{connection_}.detach());
           }},
          {L"Source",
           [this](const CallArguments& arguments) {
             if (!arguments.assigns()) {
               return result(source_);
             }
             source_ = arguments.text(0);
             return nothing();
           }},
          setting(L"CursorLocation", location_),
          setting(L"CursorType", cursor_),
          setting(L"LockType", lock_),
          {L"State", [this](const auto&) { return result(isOpen() ? 1 : 0); }},
          {L"Open",
           [this](const CallArguments& arguments) {
             open(arguments);
             return nothing();
           }},
          action(L"Close", [this] { rows().close(); })};
}

LateObject::Members StandInRecordset::rowMembers() {
  return {{L"RecordCount",
           [this](const auto&) { return result(static_cast<std::int32_t>(rows().recordCount())); }},
          {L"BOF", [this](const auto&) { return result(rows().atStart()); }},
          {L"EOF", [this](const auto&) { return result(rows().atEnd()); }},
          action(L"MoveFirst", [this] { rows().moveFirst(); }),
          action(L"MoveNext", [this] { rows().moveNext(); }),
          {L"Filter",
           [this](const CallArguments& arguments) {
             rows().setFilter(arguments.text(0));
             return nothing();
           }},
          {L"Find",
           [this](const CallArguments& arguments) {
             rows().find(arguments.text(0), arguments.number(1, 0),
                         static_cast<SearchDirection>(arguments.number(2, 1)),
                         static_cast<Bookmark>(arguments.number(3, 0)));
             return nothing();
           }},
          action(L"AddNew", [this] { rows().addNew(); }),
          action(L"Update", [this] { rows().update(); }),
          action(L"CancelUpdate", [this] { rows().cancelUpdate(); }),
          {L"UpdateBatch",
           [this](const CallArguments& arguments) {
             rows().updateBatch(static_cast<Affect>(arguments.number(0, 3)));
             return nothing();
           }},
          {L"NextRecordset", [this](const auto&) {
             std::shared_ptr<Recordset> next = rows().nextRecordset();
             if (!next) {
               return result(static_cast<IDispatch*>(nullptr));
             }
             return result(new StandInRecordset{std::move(next), connection_.get()});
           }}};
}

}  // namespace azcoll::test
