#include <algorithm>
#include <limits>
#include <utility>

#include "data/trace_report.h"

namespace azcoll::detail {
namespace {

int optionOf(std::int64_t value) {
  return static_cast<int>(std::clamp<std::int64_t>(value, std::numeric_limits<int>::min(),
                                                   std::numeric_limits<int>::max()));
}

/// Passes everything on to another recordset and reports what may touch the database.
class TracedRecordset final : public Recordset {
 public:
  TracedRecordset(std::shared_ptr<Recordset> inner, SharedHooks hooks)
      : inner_{std::move(inner)}, hooks_{std::move(hooks)} {}

  void setActiveConnection(std::shared_ptr<Connection> connection) override {
    inner_->setActiveConnection(innermost(connection));
  }
  void setSource(std::string text) override {
    inner_->setSource(text);
    source_ = std::move(text);
  }
  void setCursorLocation(CursorLocation location) override { inner_->setCursorLocation(location); }
  void setCursorType(CursorType type) override { inner_->setCursorType(type); }
  void setLockType(LockType type) override { inner_->setLockType(type); }

  void open(CursorType type, LockType lock, CommandOption options) override {
    traced(hooks_, openEntry(source_, type, lock, options), [&](TraceEntry& entry) {
      inner_->open(type, lock, options);
      entry.rows = rowsOf(inner_.get(), -1);
    });
  }
  void open(std::string source, std::shared_ptr<Connection> connection, CursorType type,
            LockType lock, CommandOption options) override {
    traced(hooks_, openEntry(source, type, lock, options), [&](TraceEntry& entry) {
      inner_->open(source, innermost(connection), type, lock, options);
      source_ = std::move(source);
      entry.rows = rowsOf(inner_.get(), -1);
    });
  }
  void close() override {
    tracedPlain("Close", [&] { inner_->close(); });
  }
  [[nodiscard]] bool isOpen() const override { return inner_->isOpen(); }

  [[nodiscard]] std::int64_t recordCount() const override { return inner_->recordCount(); }
  [[nodiscard]] bool atStart() const override { return inner_->atStart(); }
  [[nodiscard]] bool atEnd() const override { return inner_->atEnd(); }
  void moveFirst() override { inner_->moveFirst(); }
  void moveNext() override { inner_->moveNext(); }
  [[nodiscard]] Fields& fields() override { return inner_->fields(); }

  void setFilter(std::string_view criteria) override {
    traced(hooks_, {.operation = "Filter", .sql = std::string{criteria}},
           [&](TraceEntry&) { inner_->setFilter(criteria); });
  }
  void find(std::string_view criteria, std::int64_t skip, SearchDirection direction,
            Bookmark start) override {
    traced(hooks_,
           {.operation = "Find",
            .sql = std::string{criteria},
            .options = {optionOf(skip), static_cast<int>(direction), static_cast<int>(start)}},
           [&](TraceEntry&) { inner_->find(criteria, skip, direction, start); });
  }

  void addNew() override {
    tracedPlain("AddNew", [&] { inner_->addNew(); });
  }
  void update() override {
    tracedPlain("Update", [&] { inner_->update(); });
  }
  void cancelUpdate() override {
    tracedPlain("CancelUpdate", [&] { inner_->cancelUpdate(); });
  }
  void updateBatch(Affect affect) override {
    traced(hooks_, {.operation = "UpdateBatch", .options = {static_cast<int>(affect)}},
           [&](TraceEntry&) { inner_->updateBatch(affect); });
  }

  [[nodiscard]] std::shared_ptr<Recordset> nextRecordset() override {
    std::shared_ptr<Recordset> next;
    traced(hooks_, {.operation = "NextRecordset"}, [&](TraceEntry& entry) {
      next = inner_->nextRecordset();
      entry.rows = rowsOf(next.get(), -1);
    });
    return tracedRecordset(std::move(next), hooks_);
  }

 private:
  static TraceEntry openEntry(const std::string& source, CursorType type, LockType lock,
                              CommandOption options) {
    return {.operation = "Open",
            .sql = source,
            .options = {static_cast<int>(type), static_cast<int>(lock), static_cast<int>(options)}};
  }

  template <typename Work>
  void tracedPlain(const char* operation, const Work& work) {
    traced(hooks_, {.operation = operation}, [&](TraceEntry&) { work(); });
  }

  std::shared_ptr<Recordset> inner_;
  SharedHooks hooks_;
  std::string source_;
};

}  // namespace

std::shared_ptr<Recordset> tracedRecordset(std::shared_ptr<Recordset> inner, SharedHooks hooks) {
  if (!inner) {
    return nullptr;
  }
  return std::make_shared<TracedRecordset>(std::move(inner), std::move(hooks));
}

}  // namespace azcoll::detail
