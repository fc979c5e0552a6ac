#pragma once

#ifdef AZCOLL_WITH_ODBC

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>

#include "platform/provider_factory.h"
#include "providers/provider.h"

namespace azcoll::test {

inline constexpr const char* kPassword = "Segret@9";

inline std::string faultString(const std::string& behaviour) {
  return std::string{"Driver="} + AZCOLL_FAULT_DRIVER + ";UID=prova;PWD=" + kPassword + ";" +
         behaviour;
}

/// The ODBC provider on a driver that misbehaves on demand (`fault_driver/`).
class Faults : public testing::Test {
 protected:
  /// Connects to a driver of that behaviour.
  void connect(const std::string& behaviour = {}) {
    connection_ = newConnectionFor(faultString(behaviour));
    connection_->open("", "", CommandOption::Unspecified);
  }

  std::shared_ptr<Recordset> run(std::string_view text) {
    return connection_->execute(text, affected_, CommandOption::Text);
  }

  Variant value(std::string_view text) { return run(text)->fields().item(std::size_t{0}).value(); }

  /// `AUTOCOMMIT|COMMITS|ROLLBACKS` as the driver sees them.
  std::string state() {
    const auto rows = run("STATE");
    std::string text;
    for (std::size_t column = 0; column < 3; ++column) {
      text += (column == 0 ? "" : "|") + rows->fields().item(column).value().text();
    }
    return text;
  }

  std::shared_ptr<Connection> connection_;
  std::int64_t affected_ = 0;
};

}  // namespace azcoll::test

#endif
