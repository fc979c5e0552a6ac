#pragma once

#include <cstdint>
#include <gtest/gtest.h>
#include <memory>
#include <sstream>
#include <string>
#include <string_view>
#include <vector>

#include "ado/dispatch.h"
#include "ado/variants.h"

/// A late-bound caller of the registered library, as the suite's own programs are.
namespace azcoll::test {

inline constexpr wchar_t kService[] = L"AZCOLLSRV.CLSCO_AZIENDECOLL";
inline constexpr wchar_t kInput[] = L"AZCOLLSRV.CLSCO_INPUTAZCOLL";
inline constexpr wchar_t kOutput[] = L"AZCOLLSRV.CLSCO_OUTPUTAZCOLL";

inline ado::Dispatch created(const wchar_t* progId) {
  return ado::Dispatch{ado::createObject(progId)};
}

inline Variant read(ado::Dispatch& object, std::wstring_view member) {
  return ado::fromVariant(object.get(member).value());
}

/// A connection object of the caller's own, closed.
class AdoCaller {
 public:
  AdoCaller() : connection_{ado::createObject(L"ADODB.Connection")} {}

  ado::Dispatch& connection() { return connection_; }
  [[nodiscard]] IDispatch* object() const { return connection_.object().get(); }

  /// Opens the database file that the runner of the tests made, copied for this test alone.
  void open(const std::string& file) {
    connection_.call(L"Open", {"Provider=embedded;Data Source=" + file});
  }
  void clearRegister() { connection_.call(L"AzzeraRegistro"); }
  /// The calls on these objects since `clearRegister`, in order.
  std::vector<std::string> calls(const std::vector<std::string>& members) {
    std::istringstream lines{connection_.getText(L"Registro")};
    std::vector<std::string> result;
    for (std::string line; std::getline(lines, line);) {
      for (const std::string& member : members) {
        if (line.starts_with(member)) {
          result.push_back(line);
          break;
        }
      }
    }
    return result;
  }
  std::int64_t liveObjects() { return connection_.getNumber(L"OggettiVivi"); }

 private:
  ado::Dispatch connection_;
};

}  // namespace azcoll::test
