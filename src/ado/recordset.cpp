#include "ado/recordset.h"

#include <utility>
#include <vector>

#include "ado/automated.h"
#include "ado/connection.h"
#include "ado/variants.h"
#include "ado/wide_text.h"
#include "data/error.h"

namespace azcoll::ado {
namespace {

constexpr std::int64_t kStateOpen = 1;

class AdoField final : public Field {
 public:
  explicit AdoField(ComPtr<IDispatch> object) : ado_{std::move(object)} {}

  [[nodiscard]] std::string name() const override { return ado_.getText(L"Name"); }
  [[nodiscard]] Variant value() const override { return fromVariant(ado_.get(L"Value").value()); }
  void setValue(const Variant& value) override { ado_.put(L"Value", value); }

 private:
  mutable Dispatch ado_;
};

/// The columns asked for so far. A field of ADO stays bound to its recordset's current row, so each
/// is fetched once and serves for all rows.
class AdoFields final : public Fields {
 public:
  explicit AdoFields(ComPtr<IDispatch> object) : ado_{std::move(object)} {}

  [[nodiscard]] std::size_t count() const override {
    const std::int64_t count = ado_.getNumber(L"Count");
    return count > 0 ? static_cast<std::size_t>(count) : 0;
  }

  [[nodiscard]] Field& item(std::string_view name) override {
    for (const auto& [known, field] : byName_) {
      if (known == name) {
        return *field;
      }
    }
    auto field = std::make_unique<AdoField>(ado_.getObject(L"Item", {name}));
    return *byName_.emplace_back(std::string{name}, std::move(field)).second;
  }

  [[nodiscard]] Field& item(std::size_t index) override {
    for (const auto& [known, field] : byIndex_) {
      if (known == index) {
        return *field;
      }
    }
    auto field = std::make_unique<AdoField>(ado_.getObject(L"Item", {static_cast<int>(index)}));
    return *byIndex_.emplace_back(index, std::move(field)).second;
  }

 private:
  mutable Dispatch ado_;
  std::vector<std::pair<std::string, std::unique_ptr<AdoField>>> byName_;
  std::vector<std::pair<std::size_t, std::unique_ptr<AdoField>>> byIndex_;
};

class AdoRecordset final : public Recordset, public Automated {
 public:
  explicit AdoRecordset(ComPtr<IDispatch> object) : ado_{std::move(object)} {}

  [[nodiscard]] const ComPtr<IDispatch>& dispatch() const override { return ado_.object(); }

  void setActiveConnection(std::shared_ptr<Connection> connection) override {
    ado_.putRef(L"ActiveConnection", dispatchOf(connection));
  }
  void setSource(std::string text) override { ado_.put(L"Source", text); }
  void setCursorLocation(CursorLocation location) override {
    ado_.put(L"CursorLocation", location);
  }
  void setCursorType(CursorType type) override { ado_.put(L"CursorType", type); }
  void setLockType(LockType type) override { ado_.put(L"LockType", type); }

  void open(CursorType type, LockType lock, CommandOption options) override {
    fields_.reset();
    ado_.call(L"Open", {Argument::missing(), Argument::missing(), type, lock, options});
  }
  void open(std::string source, std::shared_ptr<Connection> connection, CursorType type,
            LockType lock, CommandOption options) override {
    fields_.reset();
    ado_.call(L"Open", {source, dispatchOf(connection), type, lock, options});
  }
  void close() override {
    fields_.reset();
    ado_.call(L"Close");
  }
  [[nodiscard]] bool isOpen() const override { return stateIsOpen(ado_); }

  [[nodiscard]] std::int64_t recordCount() const override { return ado_.getNumber(L"RecordCount"); }
  [[nodiscard]] bool atStart() const override { return ado_.getFlag(L"BOF"); }
  [[nodiscard]] bool atEnd() const override { return ado_.getFlag(L"EOF"); }
  void moveFirst() override { ado_.call(L"MoveFirst"); }
  void moveNext() override { ado_.call(L"MoveNext"); }
  [[nodiscard]] Fields& fields() override {
    if (!fields_) {
      fields_ = std::make_unique<AdoFields>(ado_.getObject(L"Fields"));
    }
    return *fields_;
  }

  void setFilter(std::string_view criteria) override { ado_.put(L"Filter", criteria); }
  void find(std::string_view criteria, std::int64_t skip, SearchDirection direction,
            Bookmark start) override {
    ado_.call(L"Find", {criteria, static_cast<int>(skip), direction, start});
  }

  void addNew() override { ado_.call(L"AddNew"); }
  void update() override { ado_.call(L"Update"); }
  void cancelUpdate() override { ado_.call(L"CancelUpdate"); }
  void updateBatch(Affect affect) override { ado_.call(L"UpdateBatch", {affect}); }

  [[nodiscard]] std::shared_ptr<Recordset> nextRecordset() override {
    // Behind the last result stands Nothing, or a recordset that is closed.
    const ComPtr<IDispatch> next = ado_.getObject(L"NextRecordset");
    auto rows = next ? std::make_shared<AdoRecordset>(next) : nullptr;
    return rows && rows->isOpen() ? rows : nullptr;
  }

 private:
  mutable Dispatch ado_;
  std::unique_ptr<AdoFields> fields_;
};

}  // namespace

bool stateIsOpen(Dispatch& object) { return (object.getNumber(L"State") & kStateOpen) != 0; }

std::int64_t affectedRows(const ScopedVariant& written) {
  try {
    const Variant number = fromVariant(written.value());
    return number.isEmpty() ? -1 : number.toInt64();
  } catch (const Error&) {
    return -1;
  }
}

std::shared_ptr<Recordset> wrapRecordset(const ComPtr<IDispatch>& object) {
  return object ? std::make_shared<AdoRecordset>(object) : nullptr;
}

}  // namespace azcoll::ado
