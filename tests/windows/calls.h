#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdlib>
#include <cstring>
#include <gtest/gtest.h>
#include <string>

#include "windows/client.h"

namespace azcoll::test {

/// The example database in a file of its own for each test: AZCOLL_TEST_DATABASE is copied.
class CallsOfTheDll : public ::testing::Test {
 protected:
  void SetUp() override {
    const char* const original = std::getenv("AZCOLL_TEST_DATABASE");
    ASSERT_NE(original, nullptr) << "tools/windows-tests.sh sets it";
    file_ = std::string{original} + "." +
            ::testing::UnitTest::GetInstance()->current_test_info()->name();
    std::ranges::replace(file_.begin() + static_cast<std::ptrdiff_t>(std::strlen(original)),
                         file_.end(), '/', '_');
    ASSERT_TRUE(CopyFileA(original, file_.c_str(), FALSE));
    caller.open(file_);
    input.putRef(L"Connessione", caller.object());
    input.put(L"AnnoSolare", 2025);
    caller.clearRegister();
  }
  void TearDown() override {
    input.putRef(L"Connessione", nullptr);
    caller.connection().call(L"Close");
    DeleteFileA(file_.c_str());
  }

  void duplicate(int company, int code) {
    input.put(L"Pvar_Ditta", company);
    input.put(L"Pvar_CliFor", code);
    service.call(L"DuplicaCliFor");
  }

  /// The first column of the first row.
  Variant single(const std::string& sql) {
    ado::Dispatch rows{caller.connection().getObject(L"Execute", {sql})};
    ado::Dispatch field{rows.getObject(L"Fields", {0})};
    return read(field, L"Value");
  }

  std::string file_;
  AdoCaller caller;
  ado::Dispatch service = created(kService);
  ado::Dispatch input{service.getObject(L"CPInput")};
  ado::Dispatch output{service.getObject(L"CPOutput")};
};

}  // namespace azcoll::test
