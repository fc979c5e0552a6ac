#pragma once

#include <cstdlib>
#include <string>

#include "cli_test.h"

namespace azcoll::cli {

/// A test on the example database to which it can add companies and links by T-SQL.
class GroupTest : public DatabaseTest {
 protected:
  template <typename... Args>
  Outcome gruppo(int company, const Args&... args) {
    return azcoll("gruppo", "--ditta", std::to_string(company), "--db", db_, args...);
  }

  void sql(const std::string& text) {
    const Outcome outcome = azcollWith(text, {"sql", "--db", db_});
    ASSERT_EQ(outcome.code, ExitCode::Ok) << outcome.err;
  }

  static std::string insertCompany(int company, const std::string& name) {
    const std::string code = std::to_string(company);
    return "INSERT INTO CG16_ANAGGEN (CG16_CODICE, CG16_RAGSOANAG) VALUES (9" + code + ", N'" +
           name + "')\nINSERT INTO CG18_ANADITTABASE (CG18_DITTA, CG18_CODICE_CG16) VALUES (" +
           code + ", 9" + code + ")\n";
  }

  static std::string insertLink(int year, const std::string& type, int main, int linked) {
    return "INSERT INTO CG86_AZIENDECOLL (CG86_INDTIPO, CG86_ANNOIVA, CG86_INDTIPOCONT,"
           " CG86_DITTA_CG18, CG86_DITTACOLL_CG18) VALUES (0, " +
           std::to_string(year) + ", " + type + ", " + std::to_string(main) + ", " +
           std::to_string(linked) + ")\n";
  }

  /// A group of the main company 1000 with `count` linked companies from 1001 on, in 2024; every
  /// ninth has the accounting type 1.
  void makeGroup(int count) {
    // One transaction: a few hundred of their own take seconds.
    std::string text = "BEGIN TRANSACTION\n" + insertCompany(1000, "Capogruppo & Figli <Nord>");
    for (int i = 1; i <= count; ++i) {
      text += insertCompany(1000 + i, "Azienda «" + std::to_string(i) + "» dell''Est");
      text += insertLink(2024, i % 9 == 0 ? "1" : "0", 1000, 1000 + i);
    }
    text += "COMMIT TRANSACTION\n";
    sql(text);
  }
};

/// Puts another value into an environment variable until the end of its life.
class Environment {
 public:
  Environment(const char* name, const std::string& value) : name_{name} {
    const char* const before = std::getenv(name);
    before_ = before == nullptr ? "" : before;
    setenv(name, value.c_str(), 1);
  }
  Environment(const Environment&) = delete;
  Environment(Environment&&) = delete;
  Environment& operator=(const Environment&) = delete;
  Environment& operator=(Environment&&) = delete;
  ~Environment() { setenv(name_, before_.c_str(), 1); }

 private:
  const char* name_;
  std::string before_;
};

}  // namespace azcoll::cli
