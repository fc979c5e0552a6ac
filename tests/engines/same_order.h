#pragma once

#include <memory>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "cursor/native_connection.h"

namespace azcoll::test {

/// A native connection whose answers do not depend on what a database may choose.
///
/// Rows without ORDER BY come in the order of their values. Where an ORDER BY of the service leaves
/// rows level, or a TOP has no order, a last criterion decides between them. So two engines can be
/// compared although T-SQL leaves the choice to each of them. Nothing else is changed.
///
/// It is open from the start and stays so: a service that "opens" or "closes" it has no effect.
class SameOrderConnection final : public NativeConnection {
 public:
  /// `native` is open, and one of a native provider.
  explicit SameOrderConnection(const std::shared_ptr<Connection>& native)
      : native_{nativeOf(native)} {}

  [[nodiscard]] std::string_view provider() const override { return native_->provider(); }
  void setConnectionString(std::string /*text*/) override {}
  [[nodiscard]] std::string connectionString() const override { return {}; }
  void setCommandTimeout(int /*seconds*/) override {}
  void setCursorLocation(CursorLocation /*location*/) override {}
  void open(std::string_view /*user*/, std::string_view /*password*/,
            CommandOption /*options*/) override {}
  void close() override {}
  [[nodiscard]] bool isOpen() const override { return native_->isOpen(); }
  std::shared_ptr<Recordset> execute(std::string_view commandText, std::int64_t& recordsAffected,
                                     CommandOption options) override;
  void beginTrans() override { native_->beginTrans(); }
  void commitTrans() override { native_->commitTrans(); }
  void rollbackTrans() override { native_->rollbackTrans(); }
  [[nodiscard]] Errors& errors() override { return native_->errors(); }

  ExecutionResult run(std::string_view text) override;
  std::int64_t runChange(std::string_view text, const std::vector<Variant>& parameters) override {
    return native_->runChange(text, parameters);
  }
  [[nodiscard]] std::shared_ptr<NativeProcedure> findProcedure(std::string_view name) override {
    return native_->findProcedure(name);
  }
  [[nodiscard]] std::vector<ColumnInfo> completeColumns(const std::vector<ColumnInfo>& columns,
                                                        const ResultOrigin& origin) override {
    return native_->completeColumns(columns, origin);
  }
  void record(std::vector<ErrorInfo> entries) override { native_->record(std::move(entries)); }

 private:
  std::shared_ptr<NativeConnection> native_;
};

/// `text` with a last criterion wherever the service leaves the order of rows open.
[[nodiscard]] std::string decided(std::string text);

}  // namespace azcoll::test
